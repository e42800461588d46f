#ifndef TESSARITY_FILTERS_MORPHOLOGY_GEODESIC_H
#define TESSARITY_FILTERS_MORPHOLOGY_GEODESIC_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// Grows the regions of a label image over the background, one step a turn in four directions:
// each unlabelled pixel takes the label of the seed that reaches it first.
class Geodesic : public FilterPrimitive {
public:
    Geodesic();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
