#ifndef TESSARITY_FILTERS_MORPHOLOGY_MORPHOLOGY_FILTERS_H
#define TESSARITY_FILTERS_MORPHOLOGY_MORPHOLOGY_FILTERS_H

#include "filters/filter_factories.h"

namespace Tessarity {
namespace Filters {

// Dilation, Erosion, Labelize, ImprovedLabelize and Geodesic.
void addMorphologyFilters(FilterFactories& factories);

}  // namespace Filters
}  // namespace Tessarity

#endif
