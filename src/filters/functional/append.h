#ifndef TESSARITY_FILTERS_FUNCTIONAL_APPEND_H
#define TESSARITY_FILTERS_FUNCTIONAL_APPEND_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// A new Array: the elements of the optional "array", shared, then "item". The input array
// is left as it is, so feeding "out" back into "array" grows a list one element a run.
class Append : public FilterPrimitive {
public:
    Append();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
