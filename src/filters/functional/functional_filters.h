#ifndef TESSARITY_FILTERS_FUNCTIONAL_FUNCTIONAL_FILTERS_H
#define TESSARITY_FILTERS_FUNCTIONAL_FUNCTIONAL_FILTERS_H

#include "filters/filter_factories.h"

namespace Tessarity {
namespace Filters {

// Apply, Curry, Append and Accum.
void addFunctionalFilters(FilterFactories& factories);

}  // namespace Filters
}  // namespace Tessarity

#endif
