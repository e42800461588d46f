#include "graph/node_source.h"

#include <boost/make_shared.hpp>

#include "common/logging.h"
#include "graph/port.h"

namespace Tessarity {

namespace {
const char* const kLogCategory = "tessarity.nodeSource";
const char* const kLogFile = "src/nodesource";
}  // namespace

NodeSource::NodeSource(const std::string& name) : Node(name), _uid(0) {
    addOutput(boost::make_shared<Port>("out", boost::shared_ptr<Port>(), this));
}

NodeSource::~NodeSource() {
    if (!_snapshotCounts.empty())
        TES_LOG(kelvo::log::Fatal, getName()
                                       << "->~NodeSource(): There is still count to entry cache:"
                                       << "\n"
                                       << _describeCounts(_snapshotCounts));
}

void NodeSource::addEvent(boost::shared_ptr<Event> event) { _events.add(event); }

void NodeSource::addDependency(const std::string& process) { _dependencies.push_back(process); }

void NodeSource::_synchronize(const Type::Time&, const Type::Duration&, const StringHash& process,
                              const StringHash&, long long) {
    boost::mutex::scoped_lock lock(_sourceMutex);
    _countSnapshot(process);
}

bool NodeSource::_countSnapshot(const StringHash& process) {
    auto count = _snapshotCounts.find(process.getHash());
    const bool first = count == _snapshotCounts.end();
    if (first) {
        count = _snapshotCounts.emplace(process.getHash(), 0).first;
        _snapshots[process.getHash()] = _lastData;
    }
    ++count->second;
    return first;
}

void NodeSource::_synchronizeRelease(const StringHash& process, const StringHash&, long long) {
    {
        boost::mutex::scoped_lock lock(_sourceMutex);
        auto count = _snapshotCounts.find(process.getHash());
        if (count != _snapshotCounts.end()) {
            if (--count->second == 0) {
                _snapshotCounts.erase(count);
                _snapshots.erase(process.getHash());
            }
            return;
        }
    }
    // Logged without the lock: the log handler is the application's code.
    TES_LOG(kelvo::log::Fatal, getName() << "->_synchronizeRelease(" << process
                                         << "): Invalid release on process " << process);
}

boost::shared_ptr<Data> NodeSource::requestData(const StringHash& process, const StringHash&,
                                                long long, boost::shared_ptr<Port>) {
    {
        boost::mutex::scoped_lock lock(_sourceMutex);
        auto snapshot = _snapshots.find(process.getHash());
        if (snapshot != _snapshots.end()) return snapshot->second;
    }
    TES_LOG(kelvo::log::Fatal, getName() << "->requestData(" << process << "): No cache found.");
    return boost::shared_ptr<Data>();
}

void NodeSource::requestEmpty(const StringHash& process, const StringHash&, long long,
                              boost::shared_ptr<Port>) {
    bool cached;
    {
        boost::mutex::scoped_lock lock(_sourceMutex);
        cached = _snapshots.find(process.getHash()) != _snapshots.end();
    }
    if (!cached)
        TES_LOG(kelvo::log::Fatal, getName()
                                       << "->requestEmpty(" << process << "): no cache found.");
}

void NodeSource::setData(const boost::shared_ptr<Data>& data) {
    {
        boost::mutex::scoped_lock lock(_sourceMutex);
        ++_uid;
        _lastData = data;
    }
    // Outside the lock, so that a callback may set this very source again.
    if (data) _raise(data);
}

void NodeSource::_raise(const boost::shared_ptr<Data>& data) { _events.raise(data); }

boost::shared_ptr<Data> NodeSource::getData(const Type::Time&, const Type::Duration&) const {
    boost::mutex::scoped_lock lock(_sourceMutex);
    return _lastData;
}

unsigned long long NodeSource::getUid() const {
    boost::mutex::scoped_lock lock(_sourceMutex);
    return _uid;
}

}  // namespace Tessarity
