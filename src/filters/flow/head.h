#ifndef TESSARITY_FILTERS_FLOW_HEAD_H
#define TESSARITY_FILTERS_FLOW_HEAD_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// Passes the first element of the Array on "in", shared, leaving the array as is.
class Head : public FilterPrimitive {
public:
    Head();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
