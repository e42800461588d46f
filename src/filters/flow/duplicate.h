#ifndef TESSARITY_FILTERS_FLOW_DUPLICATE_H
#define TESSARITY_FILTERS_FLOW_DUPLICATE_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// Passes "in" to both "left" and "right", sharing the value.
class Duplicate : public FilterPrimitive {
public:
    Duplicate();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
