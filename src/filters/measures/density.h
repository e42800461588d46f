#ifndef TESSARITY_FILTERS_MEASURES_DENSITY_H
#define TESSARITY_FILTERS_MEASURES_DENSITY_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// Clears from a label image the regions whose pixel count lies outside "min".."max".
class Density : public FilterPrimitive {
public:
    Density();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
