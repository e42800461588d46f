#ifndef TESSARITY_CV_BRIDGE_H
#define TESSARITY_CV_BRIDGE_H

#include <tessarity/export.h>

#include <boost/shared_ptr.hpp>
#include <opencv2/core.hpp>

#include <tessarity/data.h>
#include <tessarity/datatype.h>

namespace Tessarity {

// The bridge between image values and OpenCV, for the six image classes ColorImage,
// GrayscaleImage, BinaryImage, LabelImage, DepthImage and XYZImage. Neither direction copies
// a pixel: the matrix and the image share one buffer by OpenCV's reference count, so a value
// handed on must be treated as read-only through either side.

// The image's matrix; the metadata stays behind. Throws std::runtime_error "Cannot convert
// Tessarity data to cv::Mat" for anything else. A null image pointer gives an empty matrix.
TESSARITY_EXPORT cv::Mat dataToCvMat(const boost::shared_ptr<Data>& data);

// A new image of the class `type` names around `mat`, with the colour space, time and angles
// of the image in `model` (the classes need not match). Throws std::runtime_error "Cannot
// convert Tessarity Data Tessarity Image" if `model` holds no image of the six, and "Cannot
// convert Tessarity data to cv::Mat" if `type` is not one of them. The matrix's type is not
// checked against `type`.
TESSARITY_EXPORT boost::shared_ptr<Data> cvMatToData(const cv::Mat& mat, const DataType& type,
                                                     const boost::shared_ptr<Data>& model);

}  // namespace Tessarity

#endif
