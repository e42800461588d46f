#ifndef TESSARITY_GRAPH_NODE_H
#define TESSARITY_GRAPH_NODE_H

#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include <tessarity/data.h>
#include <tessarity/duration.h>
#include <tessarity/stringhash.h>
#include <tessarity/time.h>

#include "graph/request_slots.h"

namespace Tessarity {

class Port;

// What a node keeps of one request between the passes of a run.
struct RequestState {
    // The synchronize count; `synchronized` is set from the first visit of a run to the last
    // release, so that a visit that comes back to the node through a cycle stops there.
    bool synchronized = false;
    int synchronizeCount = 0;
    // Filter nodes: the consumers that remain, the outputs of the run, and the request the
    // filter sees, made at the first run. The inputs are gathered in a vector kept for reuse.
    int resultCount = 0;
    bool computed = false;
    bool computing = false;
    std::vector<boost::shared_ptr<Data>> results;
    std::vector<boost::shared_ptr<Data>> inputs;
    StringHash filterRequest;
    bool hasFilterRequest = false;
};

// A vertex of a process graph. The synchronize pass counts, per request, how many consumers
// will pull from this node, so that a shared node computes once and is released by its last
// consumer.
class Node {
public:
    explicit Node(const std::string& name);
    virtual ~Node();

    virtual boost::shared_ptr<Data> requestData(const StringHash& process,
                                                const StringHash& request, long long depth,
                                                boost::shared_ptr<Port> port) = 0;
    virtual void requestEmpty(const StringHash& process, const StringHash& request, long long depth,
                              boost::shared_ptr<Port> port) = 0;

    const std::string& getName() const { return _name; }
    void setName(const std::string& name) { _name = name; }

    const std::vector<boost::shared_ptr<Port>>& getInputs() const { return _inputs; }
    const std::vector<boost::shared_ptr<Port>>& getOutputs() const { return _outputs; }
    void addInput(boost::shared_ptr<Port> port);
    void addOutput(boost::shared_ptr<Port> port);
    boost::shared_ptr<Port> getInput(const std::string& name) const;
    boost::shared_ptr<Port> getOutput(const std::string& name) const;

    void synchronize(const Type::Time& time, const Type::Duration& tolerance,
                     const StringHash& process, const StringHash& request, long long depth);
    void synchronizeRelease(const StringHash& process, const StringHash& request, long long depth);

protected:
    virtual void _synchronize(const Type::Time& time, const Type::Duration& tolerance,
                              const StringHash& process, const StringHash& request,
                              long long depth);
    virtual void _synchronizeRelease(const StringHash& process, const StringHash& request,
                                     long long depth);

    typedef std::vector<std::pair<unsigned long, int>> Counts;
    // The "process: HASH, count: N" lines that destructors log for counts left behind.
    static std::string _describeCounts(const Counts& counts);

    RequestSlots<RequestState> _requests;

private:
    std::string _name;
    std::vector<boost::shared_ptr<Port>> _inputs;
    std::vector<boost::shared_ptr<Port>> _outputs;
};

}  // namespace Tessarity

#endif
