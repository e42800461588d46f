#ifndef TESSARITY_FILTERS_MEASURES_MEASURES_FILTERS_H
#define TESSARITY_FILTERS_MEASURES_MEASURES_FILTERS_H

#include "filters/filter_factories.h"

namespace Tessarity {
namespace Filters {

// Density, Ratio, Gravity, Histogram, BoundingBox and Otsu.
void addMeasuresFilters(FilterFactories& factories);

}  // namespace Filters
}  // namespace Tessarity

#endif
