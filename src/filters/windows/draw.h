#ifndef TESSARITY_FILTERS_WINDOWS_DRAW_H
#define TESSARITY_FILTERS_WINDOWS_DRAW_H

#include <string>

#include <tessarity/types/color.h>

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// A copy of a ColorImage with the Region2 outlines and Vector2 crosses of the Array "data"
// painted on it, in the colour named by the optional String "color". Without one, the first
// element drawn fixes the colour of the whole array: red if it is a region, black if a point.
// An element that would paint outside the picture refuses the whole call.
class Draw : public FilterPrimitive {
public:
    Draw();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

// "red", "green", "blue", "black" and "white" by name; any other text is red.
Type::Color _getColorRGBComponents(const std::string& name);

}  // namespace Filters
}  // namespace Tessarity

#endif
