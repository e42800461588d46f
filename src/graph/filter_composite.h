#ifndef TESSARITY_GRAPH_FILTER_COMPOSITE_H
#define TESSARITY_GRAPH_FILTER_COMPOSITE_H

#include <map>
#include <string>

#include "graph/filter.h"

namespace Tessarity {

class NodeFilter;

// A filter whose body is a graph of filter nodes, evaluated by the same pull as a process.
// One composite may serve several callers at once: nothing inside it is per caller, and
// callers are told apart by the request each call brings, which keys the loaded inputs, the
// inner results and the counts.
class FilterComposite : public Filter {
public:
    explicit FilterComposite(const std::string& name);

    boost::shared_ptr<NodeFilter> getNode(const std::string& name) const;
    const std::map<std::string, boost::shared_ptr<NodeFilter>>& getNodes() const { return _nodes; }
    bool addNode(boost::shared_ptr<NodeFilter> node);
    // An exported input is optional to the outside, so that a missing value reaches the inner
    // node, which alone decides whether it can run without it.
    bool exportInput(const std::string& nodeName, const std::string& portName,
                     const std::string& exportName);
    bool exportOutput(const std::string& nodeName, const std::string& portName,
                      const std::string& exportName);

    void synchronize(const Type::Time& time, const Type::Duration& tolerance,
                     const StringHash& process, const StringHash& request,
                     long long depth) override;
    void synchronizeRelease(const StringHash& process, const StringHash& request,
                            long long depth) override;
    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
    void abortFilter(const StringHash& process, const StringHash& request,
                     long long depth) override;
    std::string dumpToDot(long& id, int depth) const override;

private:
    std::map<std::string, boost::shared_ptr<NodeFilter>> _nodes;
};

}  // namespace Tessarity

#endif
