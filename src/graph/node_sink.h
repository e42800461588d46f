#ifndef TESSARITY_GRAPH_NODE_SINK_H
#define TESSARITY_GRAPH_NODE_SINK_H

#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>
#include <boost/thread/mutex.hpp>

#include "graph/event_list.h"
#include "graph/node.h"

namespace Tessarity {

class Event;

// Where a pull starts and its result stays: the last value of one output of a process.
class NodeSink : public Node {
public:
    explicit NodeSink(const std::string& name);

    // Pulls "in", releases it and this sink's own count, stores the result (null included:
    // a run that gave nothing overwrites the run before) and raises the events if not null.
    // `port` is not used.
    boost::shared_ptr<Data> requestData(const StringHash& process, const StringHash& request,
                                        long long depth, boost::shared_ptr<Port> port) override;
    void requestEmpty(const StringHash& process, const StringHash& request, long long depth,
                      boost::shared_ptr<Port> port) override;

    void addEvent(boost::shared_ptr<Event> event);
    boost::shared_ptr<Data> getLastData() const;
    bool reset();

private:
    boost::shared_ptr<Data> _lastData;
    mutable boost::mutex _sinkMutex;
    EventList _events;
};

}  // namespace Tessarity

#endif
