#ifndef TESSARITY_FILTERS_WINDOWS_MASK_H
#define TESSARITY_FILTERS_WINDOWS_MASK_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// "in" where "mask" is not 0 and 0 elsewhere, in a new image of the class and metadata of
// "in". A mask of another size than the image is OpenCV's to refuse, by its exception.
class Mask : public FilterPrimitive {
public:
    Mask();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
