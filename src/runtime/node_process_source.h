#ifndef TESSARITY_RUNTIME_NODE_PROCESS_SOURCE_H
#define TESSARITY_RUNTIME_NODE_PROCESS_SOURCE_H

#include <string>

#include <boost/shared_ptr.hpp>

#include "graph/node_source.h"

namespace Tessarity {

class Process;

// Reads a sink of another process. The dependent's synchronize pass runs that process for the
// run's own time, on the same thread, if it is due; this is the whole ordering between
// dependent processes. The source process must not read, directly or not, the dependent:
// the pull would wait on a lock it holds.
class NodeProcessSource : public NodeSource {
public:
    // Records the source process as a dependency of this node.
    NodeProcessSource(const std::string& name, boost::shared_ptr<Process> process,
                      const std::string& sinkName);

    // Always 0: a watching process cannot tell whether the other process has a new value,
    // so it must never take this source for unchanged.
    unsigned long long getUid() const override;

protected:
    // Runs the source process under _sourceMutex: a second reader waits for that run.
    void _synchronize(const Type::Time& time, const Type::Duration& tolerance,
                      const StringHash& process, const StringHash& request,
                      long long depth) override;

private:
    boost::shared_ptr<Process> _process;
    std::string _sinkName;
};

}  // namespace Tessarity

#endif
