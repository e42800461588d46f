#ifndef TESSARITY_FILTERS_COLOUR_LUMINANCE_H
#define TESSARITY_FILTERS_COLOUR_LUMINANCE_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// The weighted luminance of each pixel, (66 r + 128 g + 25 b + 128) >> 8: 0 for black, 218 for
// white. A GrayscaleImage with the metadata of "in".
class Luminance : public FilterPrimitive {
public:
    Luminance();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
