#ifndef TESSARITY_FILTERS_MORPHOLOGY_IMAGE_INPUT_H
#define TESSARITY_FILTERS_MORPHOLOGY_IMAGE_INPUT_H

#include <boost/shared_ptr.hpp>
#include <opencv2/core.hpp>

#include <tessarity/data.h>

namespace Tessarity {
namespace Filters {

// Whether an image's matrix is a plane of pixels of the matrix type `type`, or has no pixels.
// The image classes take the caller's word for their matrix, and the image filters read pixels
// by the type of their class, so they refuse a matrix that says otherwise.
inline bool isPlaneOf(const cv::Mat& mat, int type) {
    return mat.dims <= 2 && (mat.empty() || mat.type() == type);
}

// The matrix of the image in `data` if it is one of the six classes that cross to OpenCV and its
// matrix fits its class; null otherwise, an image without payload included.
const cv::Mat* bridgedMat(const boost::shared_ptr<Data>& data);

}  // namespace Filters
}  // namespace Tessarity

#endif
