#include "runtime/node_process_source.h"

#include "runtime/process.h"

namespace Tessarity {

NodeProcessSource::NodeProcessSource(const std::string& name, boost::shared_ptr<Process> process,
                                     const std::string& sinkName)
    : NodeSource(name), _process(process), _sinkName(sinkName) {
    if (_process) addDependency(_process->getName());
}

unsigned long long NodeProcessSource::getUid() const { return 0; }

void NodeProcessSource::_synchronize(const Type::Time& time, const Type::Duration&,
                                     const StringHash& process, const StringHash&, long long) {
    boost::mutex::scoped_lock lock(_sourceMutex);
    auto count = _snapshotCounts.find(process.getHash());
    if (count == _snapshotCounts.end()) {
        // Pulled before the entry is made, so that an exception of the source process leaves
        // no entry without a snapshot behind.
        boost::shared_ptr<Data> value;
        if (_process) value = _process->getData(_sinkName, time);
        count = _snapshotCounts.emplace(process.getHash(), 0).first;
        _snapshots[process.getHash()] = value;
    }
    ++count->second;
}

}  // namespace Tessarity
