#include "nodepulse.h"

namespace Tessarity {

NodePulse::NodePulse(const std::string& name) : NodeSource(name) {}

void NodePulse::setDefaultData(boost::shared_ptr<Data> data) {
    boost::mutex::scoped_lock lock(_sourceMutex);
    _defaultData = data;
    _lastData = data;
}

boost::shared_ptr<Data> NodePulse::getDefaultData() const {
    boost::mutex::scoped_lock lock(_sourceMutex);
    return _defaultData;
}

void NodePulse::_synchronize(const Type::Time&, const Type::Duration&, const StringHash& process,
                             const StringHash&, long long) {
    boost::mutex::scoped_lock lock(_sourceMutex);
    auto count = _snapshotCounts.find(process.getHash());
    if (count == _snapshotCounts.end()) {
        count = _snapshotCounts.emplace(process.getHash(), 0).first;
        _snapshots[process.getHash()] = _lastData;
        // The value is spent by this run. A null pulse stays null and keeps its uid.
        if (_lastData) {
            _lastData = _defaultData;
            ++_uid;
        }
    }
    ++count->second;
}

}  // namespace Tessarity
