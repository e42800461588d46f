#ifndef TESSARITY_FILTERS_COLOUR_COLOUR_FILTERS_H
#define TESSARITY_FILTERS_COLOUR_COLOUR_FILTERS_H

#include "filters/filter_factories.h"

namespace Tessarity {
namespace Filters {

// Hue, Saturation, Luminance and ToColorImage.
void addColourFilters(FilterFactories& factories);

}  // namespace Filters
}  // namespace Tessarity

#endif
