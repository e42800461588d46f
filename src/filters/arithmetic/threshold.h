#ifndef TESSARITY_FILTERS_ARITHMETIC_THRESHOLD_H
#define TESSARITY_FILTERS_ARITHMETIC_THRESHOLD_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// A BinaryImage of the pixels of "in" above the Integer "ceil", with the metadata of "in". A
// gray or depth pixel above it is 255; a colour pixel is 1 when its three bytes sum to more
// than three times the ceiling, compared as unsigned 32-bit numbers, so a negative ceiling
// passes no colour pixel and every gray one.
class Threshold : public FilterPrimitive {
public:
    Threshold();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
