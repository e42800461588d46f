#ifndef TESSARITY_FILTERS_FLOW_FLOW_FILTERS_H
#define TESSARITY_FILTERS_FLOW_FLOW_FILTERS_H

#include "filters/filter_factories.h"

namespace Tessarity {
namespace Filters {

// Identity, Duplicate, Multiplex, Dispatch, IfChanged, Head, Print and Mandatory1 to 8.
void addFlowFilters(FilterFactories& factories);

}  // namespace Filters
}  // namespace Tessarity

#endif
