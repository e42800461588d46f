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
    Counts counts;
    _snapshots.forEach([&](unsigned long key, Snapshot& snapshot) {
        if (snapshot.taken) counts.emplace_back(key, snapshot.count);
    });
    if (!counts.empty())
        TES_LOG(kelvo::log::Fatal, getName()
                                       << "->~NodeSource(): There is still count to entry cache:"
                                       << "\n"
                                       << _describeCounts(counts));
}

void NodeSource::addEvent(boost::shared_ptr<Event> event) { _events.add(event); }

void NodeSource::addDependency(const std::string& process) { _dependencies.push_back(process); }

void NodeSource::_synchronize(const Type::Time&, const Type::Duration&, const StringHash& process,
                              const StringHash&, long long) {
    boost::mutex::scoped_lock lock(_sourceMutex);
    _countSnapshot(process);
}

NodeSource::Snapshot* NodeSource::_countSnapshot(const StringHash& process) {
    Snapshot& snapshot = _snapshots.get(process.getHash());
    const bool first = !snapshot.taken;
    if (first) {
        snapshot.taken = true;
        snapshot.count = 0;
        snapshot.data = _lastData;
    }
    ++snapshot.count;
    return first ? &snapshot : nullptr;
}

void NodeSource::_synchronizeRelease(const StringHash& process, const StringHash&, long long) {
    // Without _sourceMutex: a process's snapshot is touched by its own run only.
    Snapshot* snapshot = _snapshots.find(process.getHash());
    if (snapshot && snapshot->taken) {
        if (--snapshot->count == 0) {
            snapshot->taken = false;
            snapshot->data.reset();
        }
        return;
    }
    TES_LOG(kelvo::log::Fatal, getName() << "->_synchronizeRelease(" << process
                                         << "): Invalid release on process " << process);
}

boost::shared_ptr<Data> NodeSource::requestData(const StringHash& process, const StringHash&,
                                                long long, boost::shared_ptr<Port>) {
    const Snapshot* snapshot = _snapshots.find(process.getHash());
    if (snapshot && snapshot->taken) return snapshot->data;
    TES_LOG(kelvo::log::Fatal, getName() << "->requestData(" << process << "): No cache found.");
    return boost::shared_ptr<Data>();
}

void NodeSource::requestEmpty(const StringHash& process, const StringHash&, long long,
                              boost::shared_ptr<Port>) {
    const Snapshot* snapshot = _snapshots.find(process.getHash());
    if (!snapshot || !snapshot->taken)
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
