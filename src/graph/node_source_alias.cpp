#include "graph/node_source_alias.h"

namespace Tessarity {

NodeSourceAlias::NodeSourceAlias(const std::string& name, boost::shared_ptr<NodeSource> source)
    : NodeSource(name), _source(source) {}

boost::shared_ptr<Data> NodeSourceAlias::requestData(const StringHash& process,
                                                     const StringHash& request, long long depth,
                                                     boost::shared_ptr<Port> port) {
    boost::mutex::scoped_lock lock(_aliasMutex);
    if (!_source) return boost::shared_ptr<Data>();
    return _source->requestData(process, request, depth, port);
}

void NodeSourceAlias::requestEmpty(const StringHash& process, const StringHash& request,
                                   long long depth, boost::shared_ptr<Port> port) {
    boost::mutex::scoped_lock lock(_aliasMutex);
    if (_source) _source->requestEmpty(process, request, depth, port);
}

void NodeSourceAlias::setData(const boost::shared_ptr<Data>& data) {
    boost::mutex::scoped_lock lock(_aliasMutex);
    if (_source) _source->setData(data);
}

boost::shared_ptr<Data> NodeSourceAlias::getData(const Type::Time& time,
                                                 const Type::Duration& tolerance) const {
    boost::mutex::scoped_lock lock(_aliasMutex);
    if (!_source) return boost::shared_ptr<Data>();
    return _source->getData(time, tolerance);
}

unsigned long long NodeSourceAlias::getUid() const {
    boost::mutex::scoped_lock lock(_aliasMutex);
    return _source ? _source->getUid() : 0;
}

void NodeSourceAlias::setSource(boost::shared_ptr<NodeSource> source) {
    boost::mutex::scoped_lock lock(_aliasMutex);
    // Stored atomically: the synchronize pass reads it without _aliasMutex.
    boost::atomic_store(&_source, source);
}

boost::shared_ptr<NodeSource> NodeSourceAlias::getSource() const {
    boost::mutex::scoped_lock lock(_aliasMutex);
    return _source;
}

void NodeSourceAlias::_synchronize(const Type::Time& time, const Type::Duration& tolerance,
                                   const StringHash& process, const StringHash& request,
                                   long long depth) {
    // The target's full synchronize, not its snapshot step alone, so that its own counts
    // match the releases forwarded below.
    boost::shared_ptr<NodeSource> source = boost::atomic_load(&_source);
    if (source) source->synchronize(time, tolerance, process, request, depth);
}

void NodeSourceAlias::_synchronizeRelease(const StringHash& process, const StringHash& request,
                                          long long depth) {
    boost::shared_ptr<NodeSource> source = boost::atomic_load(&_source);
    if (source) source->synchronizeRelease(process, request, depth);
}

}  // namespace Tessarity
