#ifndef TESSARITY_GRAPH_EVENT_LIST_H
#define TESSARITY_GRAPH_EVENT_LIST_H

#include <vector>

#include <boost/shared_ptr.hpp>
#include <boost/thread/mutex.hpp>

#include <tessarity/data.h>

namespace Tessarity {

class Event;

// The events of a source or a sink. The application may add one from any thread while a
// worker raises them, so the list is replaced whole on each add and raising walks the list
// as it stood, with no lock held while the events run.
class EventList {
public:
    EventList();

    void add(const boost::shared_ptr<Event>& event);
    // Raises every event in order of adding, on the caller's thread.
    void raise(const boost::shared_ptr<Data>& data) const;

private:
    typedef std::vector<boost::shared_ptr<Event>> Events;

    mutable boost::mutex _mutex;  // a leaf lock: held only to read or swap the pointer
    boost::shared_ptr<const Events> _events;
};

}  // namespace Tessarity

#endif
