#ifndef TESSARITY_FILTERS_MORPHOLOGY_IMPROVED_LABELIZE_H
#define TESSARITY_FILTERS_MORPHOLOGY_IMPROVED_LABELIZE_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// Closes small gaps by a dilation, then labels the dilated image as Labelize does, with
// separate tolerances across and down, keeping the regions whose area lies within the fractions
// "min".."max" of the image's area.
class ImprovedLabelize : public FilterPrimitive {
public:
    ImprovedLabelize();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
