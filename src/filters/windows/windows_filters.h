#ifndef TESSARITY_FILTERS_WINDOWS_WINDOWS_FILTERS_H
#define TESSARITY_FILTERS_WINDOWS_WINDOWS_FILTERS_H

#include "filters/filter_factories.h"

namespace Tessarity {
namespace Filters {

// SlidingWindow, SNN, ScaleDown, Mask, Extract and Draw.
void addWindowsFilters(FilterFactories& factories);

}  // namespace Filters
}  // namespace Tessarity

#endif
