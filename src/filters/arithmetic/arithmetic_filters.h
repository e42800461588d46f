#ifndef TESSARITY_FILTERS_ARITHMETIC_ARITHMETIC_FILTERS_H
#define TESSARITY_FILTERS_ARITHMETIC_ARITHMETIC_FILTERS_H

#include "filters/filter_factories.h"

namespace Tessarity {
namespace Filters {

// Add, Sub, Multiply, Min, Max, Invert and Threshold.
void addArithmeticFilters(FilterFactories& factories);

}  // namespace Filters
}  // namespace Tessarity

#endif
