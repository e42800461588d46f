#ifndef TESSARITY_FILTERS_FLOW_IDENTITY_H
#define TESSARITY_FILTERS_FLOW_IDENTITY_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// Passes "in" to "out" unchanged, sharing the value.
class Identity : public FilterPrimitive {
public:
    Identity();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
