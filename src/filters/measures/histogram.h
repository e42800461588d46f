#ifndef TESSARITY_FILTERS_MEASURES_HISTOGRAM_H
#define TESSARITY_FILTERS_MEASURES_HISTOGRAM_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// The counts of the byte values of a colour image (three interleaved channels) or of a gray
// image.
class Histogram : public FilterPrimitive {
public:
    Histogram();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
