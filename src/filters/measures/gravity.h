#ifndef TESSARITY_FILTERS_MEASURES_GRAVITY_H
#define TESSARITY_FILTERS_MEASURES_GRAVITY_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// The centroid of each region of a label image, in the order of the labels.
class Gravity : public FilterPrimitive {
public:
    Gravity();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
