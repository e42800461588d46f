#include "filters/measures/measures_filters.h"

#include "filters/measures/bounding_box.h"
#include "filters/measures/density.h"
#include "filters/measures/gravity.h"
#include "filters/measures/histogram.h"
#include "filters/measures/otsu.h"
#include "filters/measures/ratio.h"

namespace Tessarity {
namespace Filters {

void addMeasuresFilters(FilterFactories& factories) {
    factories["BoundingBox"] = makeFilter<BoundingBox>;
    factories["Density"] = makeFilter<Density>;
    factories["Gravity"] = makeFilter<Gravity>;
    factories["Histogram"] = makeFilter<Histogram>;
    factories["Otsu"] = makeFilter<Otsu>;
    factories["Ratio"] = makeFilter<Ratio>;
}

}  // namespace Filters
}  // namespace Tessarity
