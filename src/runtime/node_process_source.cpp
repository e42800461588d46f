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
    Snapshot& snapshot = _snapshots.get(process.getHash());
    if (!snapshot.taken) {
        // Pulled before the snapshot is marked taken, so that an exception of the source
        // process leaves no count without a snapshot behind.
        boost::shared_ptr<Data> value;
        if (_process) value = _process->getData(_sinkName, time);
        snapshot.taken = true;
        snapshot.count = 0;
        snapshot.data = value;
    }
    ++snapshot.count;
}

}  // namespace Tessarity
