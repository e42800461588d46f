#ifndef TESSARITY_FILTERS_WINDOWS_SNN_H
#define TESSARITY_FILTERS_WINDOWS_SNN_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// Symmetric-nearest-neighbour smoothing of a GrayscaleImage over a k by k square, k being
// "size" raised to an odd number: each pixel becomes the mean of itself and, from every pair of
// pixels mirrored through it, the one nearer to it in value. A border (k - 1) / 2 pixels wide
// stays 0. "out" declares BinaryImage though it carries a GrayscaleImage, and "in" admits a
// ColorImage that the body refuses: links are checked against the ports as they are.
class SNN : public FilterPrimitive {
public:
    SNN();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
