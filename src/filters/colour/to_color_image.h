#ifndef TESSARITY_FILTERS_COLOUR_TO_COLOR_IMAGE_H
#define TESSARITY_FILTERS_COLOUR_TO_COLOR_IMAGE_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// A picture of any image value or audio buffer, by the rendering of its class. A ColorImage
// is passed on as it is, the very same value.
class ToColorImage : public FilterPrimitive {
public:
    ToColorImage();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
