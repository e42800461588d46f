#ifndef TESSARITY_FILTERS_WINDOWS_SLIDING_WINDOW_H
#define TESSARITY_FILTERS_WINDOWS_SLIDING_WINDOW_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// The average of the last "size" images of a stream. The window lives in the memory of the
// process under the filter's request: filled with copies of the first image, which itself
// passes through, and then shifted by one image per call. A window whose length or image class
// no longer matches the input (a change of "size" included) answers nothing from then on.
class SlidingWindow : public FilterPrimitive {
public:
    SlidingWindow();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

// A new image of class C (ColorImage, GrayscaleImage or DepthImage) with the default metadata,
// the size of images[0], whose every sample is the sum over the `count` images, oldest first,
// of the sample divided by the count: each quotient truncated before the sum, the count taken
// at the sample's width. The images must share one size. Null if that count is 0.
template <class C>
boost::shared_ptr<Data> _applySlidingWindow(const C* const* images, unsigned int count);

}  // namespace Filters
}  // namespace Tessarity

#endif
