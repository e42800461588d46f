#ifndef TESSARITY_FILTERS_MEASURES_RATIO_H
#define TESSARITY_FILTERS_MEASURES_RATIO_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// Keeps the regions whose width-to-height ratio lies within "min".."max": those of a label
// image, measured between their extreme pixels, or the Region2 of an array.
class Ratio : public FilterPrimitive {
public:
    Ratio();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
