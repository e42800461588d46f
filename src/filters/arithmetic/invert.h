#ifndef TESSARITY_FILTERS_ARITHMETIC_INVERT_H
#define TESSARITY_FILTERS_ARITHMETIC_INVERT_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// The logical not of a Boolean, or 255 minus each byte of a colour or gray image. A binary
// image comes out as 0 where it was set (any non-zero byte) and 255 elsewhere. Images keep
// their metadata.
class Invert : public FilterPrimitive {
public:
    Invert();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
