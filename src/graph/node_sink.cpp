#include "graph/node_sink.h"

#include <boost/make_shared.hpp>

#include "graph/port.h"

namespace Tessarity {

NodeSink::NodeSink(const std::string& name) : Node(name) {
    addInput(boost::make_shared<Port>("in", boost::shared_ptr<Port>(), this));
}

boost::shared_ptr<Data> NodeSink::requestData(const StringHash& process, const StringHash& request,
                                              long long depth, boost::shared_ptr<Port>) {
    const boost::shared_ptr<Port>& in = getInputs().front();
    boost::shared_ptr<Data> result = in->requestData(process, request, depth + 1);
    in->synchronizeRelease(process, request, depth + 1);
    Node::synchronizeRelease(process, request, depth);
    {
        boost::mutex::scoped_lock lock(_sinkMutex);
        _lastData = result;
    }
    if (result) _events.raise(result);
    return result;
}

void NodeSink::requestEmpty(const StringHash& process, const StringHash& request, long long depth,
                            boost::shared_ptr<Port>) {
    const boost::shared_ptr<Port>& in = getInputs().front();
    in->requestEmpty(process, request, depth + 1);
    in->synchronizeRelease(process, request, depth + 1);
    Node::synchronizeRelease(process, request, depth);
}

void NodeSink::addEvent(boost::shared_ptr<Event> event) { _events.add(event); }

boost::shared_ptr<Data> NodeSink::getLastData() const {
    boost::mutex::scoped_lock lock(_sinkMutex);
    return _lastData;
}

bool NodeSink::reset() {
    boost::mutex::scoped_lock lock(_sinkMutex);
    _lastData.reset();
    return true;
}

}  // namespace Tessarity
