#include "graph/memory_manager.h"

namespace Tessarity {

MemoryManager::MemoryManager() {}

boost::shared_ptr<Data> MemoryManager::getData(const StringHash& process, const StringHash& key) {
    boost::mutex::scoped_lock lock(_mutex);
    return _processes[process.getHash()][key.getHash()];
}

void MemoryManager::setData(const StringHash& process, const StringHash& key,
                            boost::shared_ptr<Data> data) {
    boost::mutex::scoped_lock lock(_mutex);
    _processes[process.getHash()][key.getHash()] = data;
}

bool MemoryManager::renameProcess(const StringHash& oldName, const StringHash& newName) {
    boost::mutex::scoped_lock lock(_mutex);
    auto old = _processes.find(oldName.getHash());
    if (old == _processes.end()) return false;
    // Copied before the erase, so renaming a process onto itself keeps its data.
    ProcessMemory memory = old->second;
    _processes.erase(old);
    _processes[newName.getHash()] = memory;
    return true;
}

bool MemoryManager::removeProcess(const StringHash& process) {
    boost::mutex::scoped_lock lock(_mutex);
    _processes.erase(process.getHash());
    return true;
}

}  // namespace Tessarity
