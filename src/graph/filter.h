#ifndef TESSARITY_GRAPH_FILTER_H
#define TESSARITY_GRAPH_FILTER_H

#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include <tessarity/data.h>
#include <tessarity/duration.h>
#include <tessarity/stringhash.h>
#include <tessarity/time.h>

namespace Tessarity {

class MemoryManager;
class Port;

// A processing unit with ordered input and output ports. One object serves every node and
// process that uses it at once, so it keeps no state of a call in its members: what it
// remembers lives in the MemoryManager under (process, request).
class Filter {
public:
    explicit Filter(const std::string& name);
    virtual ~Filter();

    virtual std::string getDescription() const;
    // Called as a request is prepared and retired, so that a filter with an inner graph can
    // pass them on.
    virtual void synchronize(const Type::Time& time, const Type::Duration& tolerance,
                             const StringHash& process, const StringHash& request, long long depth);
    virtual void synchronizeRelease(const StringHash& process, const StringHash& request,
                                    long long depth);
    // One entry per input port, in order; null only on an optional port. Returns at most one
    // entry per output port; a missing or null entry means that output has no value.
    virtual std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) = 0;
    // Called instead of applyFilter when a required input is missing: undo the request.
    virtual void abortFilter(const StringHash& process, const StringHash& request,
                             long long depth) = 0;
    virtual std::string dumpToDot(long& id, int depth) const = 0;

    void bindMemoryManager(MemoryManager* memoryManager) { _memoryManager = memoryManager; }

    const std::string& getName() const { return _name; }
    const std::vector<boost::shared_ptr<Port>>& getInputs() const { return _inputs; }
    const std::vector<boost::shared_ptr<Port>>& getOutputs() const { return _outputs; }
    boost::shared_ptr<Port> getInput(const std::string& name) const;
    boost::shared_ptr<Port> getOutput(const std::string& name) const;

protected:
    MemoryManager* _getMemoryManager() const { return _memoryManager; }

    // Declared in this order so that destruction drops the outputs first.
    std::string _name;
    std::vector<boost::shared_ptr<Port>> _inputs;
    std::vector<boost::shared_ptr<Port>> _outputs;

private:
    MemoryManager* _memoryManager;
};

}  // namespace Tessarity

#endif
