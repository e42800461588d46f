#include "filters/arithmetic/invert.h"

#include <opencv2/core.hpp>

#include <tessarity/cv_bridge.h>

#include "filters/arithmetic/operands.h"
#include "graph/port.h"

namespace Tessarity {
namespace Filters {

namespace {

// 255 - v is the bitwise not of a byte, so one vector pass does it, colour or gray alike.
template <class C>
boost::shared_ptr<Data> complement(const boost::shared_ptr<Data>& in, DataType type) {
    const C* image = Operands::imageOf<C>(*in);
    if (!image) return boost::shared_ptr<Data>();
    cv::Mat out;
    cv::bitwise_not(image->mat, out);
    return cvMatToData(out, type, in);
}

// 255 where the input is 0, and 0 under every set byte, whatever its value: one comparison.
boost::shared_ptr<Data> cleared(const boost::shared_ptr<Data>& in) {
    const Type::BinaryImage* image = Operands::imageOf<Type::BinaryImage>(*in);
    if (!image) return boost::shared_ptr<Data>();
    // OpenCV refuses to compare a matrix without pixels with a number.
    cv::Mat out(image->mat.size(), CV_8UC1);
    if (!out.empty()) cv::compare(image->mat, 0, out, cv::CMP_EQ);
    return cvMatToData(out, BinaryImage, in);
}

}  // namespace

Invert::Invert() : FilterPrimitive("Invert") {
    _addInput("in")
        ->addType(Boolean)
        .addType(ColorImage)
        .addType(GrayscaleImage)
        .addType(BinaryImage);
    _addOutput("out");
}

std::vector<boost::shared_ptr<Data>> Invert::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    if (inputs.size() != 1 || !inputs[0]) return {};
    const boost::shared_ptr<Data>& in = inputs[0];
    switch (in->getType()) {
        case Boolean:
            return {boost::make_shared<Data>(!bool(*in))};
        case GrayscaleImage:
            return Operands::result(complement<Type::GrayscaleImage>(in, GrayscaleImage));
        case ColorImage:
            return Operands::result(complement<Type::ColorImage>(in, ColorImage));
        case BinaryImage:
            return Operands::result(cleared(in));
        default:
            return {};
    }
}

}  // namespace Filters
}  // namespace Tessarity
