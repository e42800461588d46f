#ifndef VISION_LABELING_H
#define VISION_LABELING_H

#include <opencv2/core.hpp>

// The library is built into a shared object compiled with hidden visibility.
#define VISION_EXPORT __attribute__((visibility("default")))

namespace vision {

// Labels the 4-connected regions of a CV_8UC1 or CV_16UC1 image. Pixels of value 0 are
// background and get label 0; two non-zero neighbours a and b belong to one region when
// |a - b| <= tolerance (a negative tolerance joins nothing). A region of fewer than minArea
// pixels (when minArea > 0) or more than maxArea pixels (when maxArea > 0) is set to 0. The
// other regions are numbered 1, 2, 3... in the raster order of their first pixel.
// labels gets a CV_32SC1 matrix of the image's size, written in place when it has that size
// already, like any OpenCV output; it is left empty when the image is empty or of another type.
VISION_EXPORT void connectedComponentLabeling(const cv::Mat& image, cv::Mat_<int>& labels,
                                              int tolerance, int minArea, int maxArea);

// The same, with toleranceH between left and right neighbours and toleranceV between upper
// and lower ones.
VISION_EXPORT void connectedComponentLabeling2(const cv::Mat& image, cv::Mat_<int>& labels,
                                               int toleranceH, int toleranceV, int minArea,
                                               int maxArea);

}  // namespace vision

#endif
