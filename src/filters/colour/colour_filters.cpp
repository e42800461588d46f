#include "filters/colour/colour_filters.h"

#include "filters/colour/hue.h"
#include "filters/colour/luminance.h"
#include "filters/colour/saturation.h"
#include "filters/colour/to_color_image.h"

namespace Tessarity {
namespace Filters {

void addColourFilters(FilterFactories& factories) {
    factories["Hue"] = makeFilter<Hue>;
    factories["Luminance"] = makeFilter<Luminance>;
    factories["Saturation"] = makeFilter<Saturation>;
    factories["ToColorImage"] = makeFilter<ToColorImage>;
}

}  // namespace Filters
}  // namespace Tessarity
