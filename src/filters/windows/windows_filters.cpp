#include "filters/windows/windows_filters.h"

#include "filters/windows/draw.h"
#include "filters/windows/extract.h"
#include "filters/windows/mask.h"
#include "filters/windows/scale_down.h"
#include "filters/windows/sliding_window.h"
#include "filters/windows/snn.h"

namespace Tessarity {
namespace Filters {

void addWindowsFilters(FilterFactories& factories) {
    factories["SlidingWindow"] = makeFilter<SlidingWindow>;
    factories["SNN"] = makeFilter<SNN>;
    factories["ScaleDown"] = makeFilter<ScaleDown>;
    factories["Mask"] = makeFilter<Mask>;
    factories["Extract"] = makeFilter<Extract>;
    factories["Draw"] = makeFilter<Draw>;
}

}  // namespace Filters
}  // namespace Tessarity
