#include "filters/morphology/image_input.h"

#include <tessarity/types/image.h>

namespace Tessarity {
namespace Filters {

namespace {

template <class C>
const cv::Mat* planeOf(const C* image) {
    return image && isPlaneOf(image->mat, C::MatType) ? &image->mat : nullptr;
}

}  // namespace

const cv::Mat* bridgedMat(const boost::shared_ptr<Data>& data) {
    const Data& value = *data;
    switch (value.getType()) {
        case ColorImage:
            return planeOf(static_cast<const Type::ColorImage*>(value));
        case GrayscaleImage:
            return planeOf(static_cast<const Type::GrayscaleImage*>(value));
        case BinaryImage:
            return planeOf(static_cast<const Type::BinaryImage*>(value));
        case LabelImage:
            return planeOf(static_cast<const Type::LabelImage*>(value));
        case DepthImage:
            return planeOf(static_cast<const Type::DepthImage*>(value));
        case XYZImage:
            return planeOf(static_cast<const Type::XYZImage*>(value));
        default:
            return nullptr;
    }
}

}  // namespace Filters
}  // namespace Tessarity
