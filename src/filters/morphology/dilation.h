#ifndef TESSARITY_FILTERS_MORPHOLOGY_DILATION_H
#define TESSARITY_FILTERS_MORPHOLOGY_DILATION_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// The greatest value under a square kernel of side "size" around each pixel.
class Dilation : public FilterPrimitive {
public:
    Dilation();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
