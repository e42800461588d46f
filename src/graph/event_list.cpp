#include "graph/event_list.h"

#include <boost/make_shared.hpp>

#include "graph/event.h"

namespace Tessarity {

EventList::EventList() : _events(boost::make_shared<const Events>()) {}

void EventList::add(const boost::shared_ptr<Event>& event) {
    boost::mutex::scoped_lock lock(_mutex);
    boost::shared_ptr<Events> longer = boost::make_shared<Events>(*_events);
    longer->push_back(event);
    _events = longer;
}

void EventList::raise(const boost::shared_ptr<Data>& data) const {
    boost::shared_ptr<const Events> events;
    {
        boost::mutex::scoped_lock lock(_mutex);
        events = _events;
    }
    for (const boost::shared_ptr<Event>& event : *events) event->raise(data);
}

}  // namespace Tessarity
