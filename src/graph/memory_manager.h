#ifndef TESSARITY_GRAPH_MEMORY_MANAGER_H
#define TESSARITY_GRAPH_MEMORY_MANAGER_H

#include <boost/shared_ptr.hpp>
#include <boost/thread/mutex.hpp>
#include <boost/unordered_map.hpp>

#include <tessarity/data.h>
#include <tessarity/stringhash.h>

namespace Tessarity {

// The state that filters keep between runs, per process and per filter request. Filters stay
// stateless and shareable because everything they remember lives here.
class MemoryManager {
public:
    MemoryManager();

    // A read creates the entries it asks for: after it the process holds a null value there.
    boost::shared_ptr<Data> getData(const StringHash& process, const StringHash& key);
    void setData(const StringHash& process, const StringHash& key, boost::shared_ptr<Data> data);
    // False if `oldName` has no entry; otherwise its data replaces whatever `newName` held.
    bool renameProcess(const StringHash& oldName, const StringHash& newName);
    bool removeProcess(const StringHash& process);

private:
    typedef boost::unordered_map<unsigned long, boost::shared_ptr<Data>> ProcessMemory;

    boost::mutex _mutex;
    boost::unordered_map<unsigned long, ProcessMemory> _processes;
};

}  // namespace Tessarity

#endif
