#ifndef TESSARITY_FILTERS_MORPHOLOGY_SQUARE_KERNEL_H
#define TESSARITY_FILTERS_MORPHOLOGY_SQUARE_KERNEL_H

#include <opencv2/core.hpp>

namespace Tessarity {
namespace Filters {

// cv::dilate or cv::erode.
typedef void (*Morphology)(cv::InputArray, cv::OutputArray, cv::InputArray, cv::Point, int, int,
                           const cv::Scalar&);

// `morphology` of `source` into `result` with a square kernel of ones whose side is `size`,
// raised to the next odd number if it is even (0 gives 1), anchored at its centre, in one
// iteration, over a border that never wins. False, and nothing done, for a negative size or an
// image without pixels.
bool squareMorphology(Morphology morphology, const cv::Mat& source, int size, cv::Mat& result);

}  // namespace Filters
}  // namespace Tessarity

#endif
