#include "filters/arithmetic/arithmetic_filters.h"

#include "filters/arithmetic/add.h"
#include "filters/arithmetic/invert.h"
#include "filters/arithmetic/max.h"
#include "filters/arithmetic/min.h"
#include "filters/arithmetic/multiply.h"
#include "filters/arithmetic/sub.h"
#include "filters/arithmetic/threshold.h"

namespace Tessarity {
namespace Filters {

void addArithmeticFilters(FilterFactories& factories) {
    factories["Add"] = makeFilter<Add>;
    factories["Invert"] = makeFilter<Invert>;
    factories["Max"] = makeFilter<Max>;
    factories["Min"] = makeFilter<Min>;
    factories["Multiply"] = makeFilter<Multiply>;
    factories["Sub"] = makeFilter<Sub>;
    factories["Threshold"] = makeFilter<Threshold>;
}

}  // namespace Filters
}  // namespace Tessarity
