#ifndef TESSARITY_FILTERS_MORPHOLOGY_IMAGE_INPUT_H
#define TESSARITY_FILTERS_MORPHOLOGY_IMAGE_INPUT_H

#include <boost/shared_ptr.hpp>
#include <opencv2/core.hpp>

#include <tessarity/data.h>

#include "filters/image_layout.h"

namespace Tessarity {
namespace Filters {

// The matrix of the image in `data` if it is one of the six classes that cross to OpenCV and its
// matrix fits its class; null otherwise, an image without payload included.
const cv::Mat* bridgedMat(const boost::shared_ptr<Data>& data);

}  // namespace Filters
}  // namespace Tessarity

#endif
