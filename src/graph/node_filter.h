#ifndef TESSARITY_GRAPH_NODE_FILTER_H
#define TESSARITY_GRAPH_NODE_FILTER_H

#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "graph/node.h"

namespace Tessarity {

class Filter;

// Places a filter at one spot of a graph. It computes once per request, keeps the outputs
// while consumers remain, and releases its inputs at the computing pull. The filter sees a
// request made longer by this node's own suffix, so one filter object in many nodes keeps
// its memory apart per node.
class NodeFilter : public Node {
public:
    NodeFilter(const std::string& name, boost::shared_ptr<Filter> filter);
    ~NodeFilter() override;

    boost::shared_ptr<Data> requestData(const StringHash& process, const StringHash& request,
                                        long long depth, boost::shared_ptr<Port> port) override;
    void requestEmpty(const StringHash& process, const StringHash& request, long long depth,
                      boost::shared_ptr<Port> port) override;

    const boost::shared_ptr<Filter>& getFilter() const { return _filter; }
    // Graphviz text of this node; with `depth` not 0 the filter inside is expanded too.
    std::string dumpToDot(long& id, int depth) const;

protected:
    void _synchronize(const Type::Time& time, const Type::Duration& tolerance,
                      const StringHash& process, const StringHash& request,
                      long long depth) override;
    void _synchronizeRelease(const StringHash& process, const StringHash& request,
                             long long depth) override;

private:
    // The request the filter sees: `request` followed by this node's suffix. Requests are
    // the same from run to run, so each one is made once and kept in its state.
    const StringHash& _filterRequest(RequestState& state, const StringHash& request);
    // Gathers the inputs and runs the filter, or aborts it, into `state.results`.
    void _compute(RequestState& state, const StringHash& process, const StringHash& request,
                  long long depth);

    std::string _contextSuffix;
    boost::shared_ptr<Filter> _filter;
};

}  // namespace Tessarity

#endif
