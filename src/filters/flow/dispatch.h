#ifndef TESSARITY_FILTERS_FLOW_DISPATCH_H
#define TESSARITY_FILTERS_FLOW_DISPATCH_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// Routes "in" to "ontrue" or "onfalse" by the Boolean "state"; the other output
// gets a null entry.
class Dispatch : public FilterPrimitive {
public:
    Dispatch();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
