#include "graph/node_pulse.h"

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
    // The value is spent by the first run that takes it. A null pulse stays null and keeps
    // its uid.
    if (_countSnapshot(process) && _lastData) {
        _lastData = _defaultData;
        ++_uid;
    }
}

}  // namespace Tessarity
