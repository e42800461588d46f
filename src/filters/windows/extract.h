#ifndef TESSARITY_FILTERS_WINDOWS_EXTRACT_H
#define TESSARITY_FILTERS_WINDOWS_EXTRACT_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// The part of a ColorImage within a Region2, all bounds inclusive, rounded and clamped into
// the picture.
class Extract : public FilterPrimitive {
public:
    Extract();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
