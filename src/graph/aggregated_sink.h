#ifndef TESSARITY_GRAPH_AGGREGATED_SINK_H
#define TESSARITY_GRAPH_AGGREGATED_SINK_H

#include <map>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>
#include <boost/thread/mutex.hpp>

#include <tessarity/data.h>

#include "graph/event_list.h"

namespace Tessarity {

class Event;
class NodeSink;

// A named group of sinks whose value is an Array of its members' last values, in the
// members' name order, once every member has one.
class AggregatedSink {
public:
    explicit AggregatedSink(const std::string& name);

    void addEvent(boost::shared_ptr<Event> event);
    // Members are added while a process is built, so no lock is taken. False, changing nothing, if
    // a sink of that name is a member already.
    bool addSink(boost::shared_ptr<NodeSink> sink);
    const std::map<std::string, boost::shared_ptr<NodeSink>>& getSinks() const { return _sinks; }
    std::string getName() const { return _name; }
    boost::shared_ptr<Data> getLastData() const;

    // Called once per run, after every sink of the process was pulled.
    void update();

private:
    EventList _events;
    std::map<std::string, boost::shared_ptr<NodeSink>> _sinks;
    std::string _name;
    boost::shared_ptr<Data> _lastData;
    mutable boost::mutex _sinkMutex;
};

}  // namespace Tessarity

#endif
