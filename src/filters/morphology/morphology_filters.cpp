#include "filters/morphology/morphology_filters.h"

#include "filters/morphology/dilation.h"
#include "filters/morphology/erosion.h"
#include "filters/morphology/geodesic.h"
#include "filters/morphology/improved_labelize.h"
#include "filters/morphology/labelize.h"

namespace Tessarity {
namespace Filters {

void addMorphologyFilters(FilterFactories& factories) {
    factories["Dilation"] = makeFilter<Dilation>;
    factories["Erosion"] = makeFilter<Erosion>;
    factories["Geodesic"] = makeFilter<Geodesic>;
    factories["ImprovedLabelize"] = makeFilter<ImprovedLabelize>;
    factories["Labelize"] = makeFilter<Labelize>;
}

}  // namespace Filters
}  // namespace Tessarity
