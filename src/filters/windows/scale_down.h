#ifndef TESSARITY_FILTERS_WINDOWS_SCALE_DOWN_H
#define TESSARITY_FILTERS_WINDOWS_SCALE_DOWN_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// Shrinks "in" by the whole "factor" in both directions, sampling the nearest pixel, for every
// image class but XYZImage and MatrixImage. A negative factor passes "in" on first, ahead of an
// image shrunk to nothing; a factor of 0 gives nothing.
class ScaleDown : public FilterPrimitive {
public:
    ScaleDown();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
