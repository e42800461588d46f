#ifndef TESSARITY_FILTERS_COLOUR_HUE_H
#define TESSARITY_FILTERS_COLOUR_HUE_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// How close each pixel's hue is to the reference hue "color", in degrees: 255 on it, falling
// to 128 at the opposite hue. A gray pixel counts as red. The output is a GrayscaleImage with
// the metadata of "in".
class Hue : public FilterPrimitive {
public:
    Hue();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
