#ifndef TESSARITY_FILTERS_MEASURES_OTSU_H
#define TESSARITY_FILTERS_MEASURES_OTSU_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// Thresholds a gray image at the value that best splits its histogram in two (Otsu's).
class Otsu : public FilterPrimitive {
public:
    Otsu();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
