#ifndef TESSARITY_GRAPH_LAMBDA_P_H
#define TESSARITY_GRAPH_LAMBDA_P_H

#include <utility>
#include <vector>

#include <boost/shared_ptr.hpp>

#include <tessarity/data.h>

namespace Tessarity {

class Filter;
class NodeFilter;
class NodeSource;

namespace Type {

// The graph of a lambda: one node around the filter, a source before each of its inputs,
// driven by hand through the ordinary pull. Every run uses one process and request that no
// real process has, and the node's own suffix in the filter's request keeps the memory of
// each lambda apart.
class Lambda_p {
public:
    explicit Lambda_p(boost::shared_ptr<Filter> filter);

    std::vector<boost::shared_ptr<Data>> apply(const std::vector<boost::shared_ptr<Data>>& values);
    void curry(const std::vector<boost::shared_ptr<Data>>& values);
    boost::shared_ptr<Lambda_p> clone() const;

private:
    boost::shared_ptr<Filter> _filter;
    boost::shared_ptr<NodeFilter> _node;
    // Per input port: whether it is bound, and the bound value.
    std::vector<std::pair<bool, boost::shared_ptr<Data>>> _arguments;
    std::vector<boost::shared_ptr<NodeSource>> _sources;
};

}  // namespace Type
}  // namespace Tessarity

#endif
