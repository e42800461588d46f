#include "filters/functional/functional_filters.h"

#include "filters/functional/accum.h"
#include "filters/functional/append.h"
#include "filters/functional/apply.h"
#include "filters/functional/curry.h"

namespace Tessarity {
namespace Filters {

void addFunctionalFilters(FilterFactories& factories) {
    factories["Accum"] = makeFilter<Accum>;
    factories["Append"] = makeFilter<Append>;
    factories["Apply"] = makeFilter<Apply>;
    factories["Curry"] = makeFilter<Curry>;
}

}  // namespace Filters
}  // namespace Tessarity
