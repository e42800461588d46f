#ifndef TESSARITY_FILTERS_FUNCTIONAL_APPLY_H
#define TESSARITY_FILTERS_FUNCTIONAL_APPLY_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// Runs the lambda on "fun" with the elements of the Array on "param" as its free inputs, and
// answers with its outputs (only the first can reach "out").
class Apply : public FilterPrimitive {
public:
    Apply();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
