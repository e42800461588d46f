#ifndef TESSARITY_GRAPH_EVENT_H
#define TESSARITY_GRAPH_EVENT_H

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/weak_ptr.hpp>

#include <tessarity/data.h>

namespace Tessarity {

class JobQueue;
class Process;

// What a source or a sink does when a new value arrives: call the application, or put a
// job for a process at the head of the scheduler's queue. An event never keeps a process or
// a scheduler alive.
class Event {
public:
    typedef boost::function1<void, boost::shared_ptr<Data>> Callback;

    Event(const boost::weak_ptr<Process>& process, const boost::weak_ptr<JobQueue>& scheduler);
    explicit Event(Callback callback);

    // Runs on the raiser's thread; the raiser holds none of its own locks. Callers raise
    // only with non-null data.
    void raise(boost::shared_ptr<Data> data);

private:
    bool _isCallback;
    boost::weak_ptr<Process> _process;
    boost::weak_ptr<JobQueue> _scheduler;
    Callback _callback;
};

}  // namespace Tessarity

#endif
