#include "graph/aggregated_sink.h"

#include <boost/make_shared.hpp>

#include "graph/node_sink.h"

namespace Tessarity {

AggregatedSink::AggregatedSink(const std::string& name) : _name(name) {}

void AggregatedSink::addEvent(boost::shared_ptr<Event> event) { _events.add(event); }

bool AggregatedSink::addSink(boost::shared_ptr<NodeSink> sink) {
    return _sinks.emplace(sink->getName(), sink).second;
}

boost::shared_ptr<Data> AggregatedSink::getLastData() const {
    boost::mutex::scoped_lock lock(_sinkMutex);
    return _lastData;
}

void AggregatedSink::update() {
    std::vector<boost::shared_ptr<Data>> values;
    values.reserve(_sinks.size());
    for (const auto& sink : _sinks) {
        boost::shared_ptr<Data> value = sink.second->getLastData();
        if (!value) {
            // The group holds a value only when every member has one.
            boost::mutex::scoped_lock lock(_sinkMutex);
            _lastData.reset();
            return;
        }
        values.push_back(value);
    }
    boost::shared_ptr<Data> combined = boost::make_shared<Data>(values);
    {
        boost::mutex::scoped_lock lock(_sinkMutex);
        _lastData = combined;
    }
    _events.raise(combined);
}

}  // namespace Tessarity
