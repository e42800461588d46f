#ifndef TESSARITY_FILTERS_COLOUR_SATURATION_H
#define TESSARITY_FILTERS_COLOUR_SATURATION_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// The HSV saturation of each pixel, (max - min) * 255 / max truncated, 0 for black, as a
// GrayscaleImage with the metadata of "in".
class Saturation : public FilterPrimitive {
public:
    Saturation();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
