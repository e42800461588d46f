#ifndef TESSARITY_GRAPH_FILTER_ADAPTER_H
#define TESSARITY_GRAPH_FILTER_ADAPTER_H

#include <boost/thread/mutex.hpp>

#include <tessarity/userfilter.h>

#include "graph/filter_primitive.h"

namespace Tessarity {

// Stands between a UserFilter and the graph: it turns the port declarations into ports once,
// here, and forwards each application of the filter, with its state swapped in and out of
// the memory of the engine when it keeps one.
class FilterAdapter : public FilterPrimitive {
public:
    explicit FilterAdapter(boost::shared_ptr<UserFilter> filter);

    std::string getDescription() const override;
    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;

private:
    void _declareInput(const std::string& declaration);

    boost::shared_ptr<UserFilter> _userFilter;
    boost::mutex _localDataMutex;  // one state slot in the user filter serves every key
};

}  // namespace Tessarity

#endif
