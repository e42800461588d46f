#ifndef TESSARITY_FILTERS_MORPHOLOGY_LABELIZE_H
#define TESSARITY_FILTERS_MORPHOLOGY_LABELIZE_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// The connected regions of an image: neighbours join within "tolerance" of each other, and
// any two lit neighbours of a binary image.
class Labelize : public FilterPrimitive {
public:
    Labelize();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
