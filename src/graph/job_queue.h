#ifndef TESSARITY_GRAPH_JOB_QUEUE_H
#define TESSARITY_GRAPH_JOB_QUEUE_H

#include <boost/shared_ptr.hpp>

#include <tessarity/time.h>

namespace Tessarity {

class Process;

// Where an event of the process form puts its job: the scheduler, seen from the graph, which
// knows processes only by name.
class JobQueue {
public:
    // The job runs `process` for `time`; it is the next job a worker takes.
    virtual bool addProcessToScheduledProcessList(const boost::shared_ptr<Process>& process,
                                                  const Type::Time& time) = 0;

protected:
    ~JobQueue() = default;
};

}  // namespace Tessarity

#endif
