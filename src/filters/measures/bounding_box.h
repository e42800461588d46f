#ifndef TESSARITY_FILTERS_MEASURES_BOUNDING_BOX_H
#define TESSARITY_FILTERS_MEASURES_BOUNDING_BOX_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// The box of each region of a label image, from its first to its last pixel, and the size of
// the image.
class BoundingBox : public FilterPrimitive {
public:
    BoundingBox();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
