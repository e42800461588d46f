#include "filters/arithmetic/threshold.h"

#include <cstdint>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <tessarity/cv_bridge.h>

#include "filters/arithmetic/operands.h"
#include "graph/port.h"

namespace Tessarity {
namespace Filters {

namespace {

// The largest sum of three bytes.
const unsigned int kBrightest = 3 * 255;

// out = 1 where r + g + b > bound, else 0, over `count` pixels, for a bound below 765: then
// bound - sum lies within 16 signed bits, whose sign is the answer, with no comparison to
// vectorise.
TESSARITY_PIXEL_LOOP void brighterThan(const uchar* __restrict pixels, uchar* __restrict out,
                                       int count, unsigned int bound) {
    const std::uint16_t limit = static_cast<std::uint16_t>(bound);
    for (int i = 0; i < count; ++i) {
        const std::uint16_t sum = pixels[3 * i] + pixels[3 * i + 1] + pixels[3 * i + 2];
        out[i] = static_cast<uchar>(static_cast<std::uint16_t>(limit - sum) >> 15);
    }
}

// A BinaryImage of 0 and 1, with the metadata of the colour image.
boost::shared_ptr<Data> colourAbove(const Data& in, int ceiling) {
    const Type::ColorImage* image = Operands::imageOf<Type::ColorImage>(in);
    if (!image) return boost::shared_ptr<Data>();
    auto out = boost::make_shared<Type::BinaryImage>(image->getWidth(), image->getHeight(),
                                                     image->colorSpace, image->timestamp,
                                                     image->horizontalAngle, image->verticalAngle);
    // Three times the ceiling in 32-bit unsigned arithmetic: a negative ceiling wraps to a
    // bound that no sum passes.
    const unsigned int bound = 3u * static_cast<unsigned int>(ceiling);
    if (bound >= kBrightest) {
        out->mat.setTo(cv::Scalar::all(0));
    } else {
        for (int y = 0; y < image->mat.rows; ++y)
            brighterThan(image->mat.ptr<uchar>(y), out->mat.ptr<uchar>(y), image->mat.cols, bound);
    }
    return boost::make_shared<Data>(out);
}

// 255 above the ceiling, 0 elsewhere, with the metadata of the input. On bytes OpenCV's
// threshold gives exactly what comparing with the ceiling gives (a ceiling below 0 passes all,
// one from 255 up none), only faster; depths are compared.
template <class C>
boost::shared_ptr<Data> above(const boost::shared_ptr<Data>& in, int ceiling) {
    const C* image = Operands::imageOf<C>(*in);
    if (!image) return boost::shared_ptr<Data>();
    // OpenCV refuses to compare a matrix without pixels with a number.
    cv::Mat out(image->mat.size(), CV_8UC1);
    if (!out.empty() && image->mat.depth() == CV_8U)
        cv::threshold(image->mat, out, ceiling, 255, cv::THRESH_BINARY);
    else if (!out.empty())
        cv::compare(image->mat, static_cast<double>(ceiling), out, cv::CMP_GT);
    return cvMatToData(out, BinaryImage, in);
}

}  // namespace

Threshold::Threshold() : FilterPrimitive("Threshold") {
    _addInput("in")->addType(ColorImage).addType(DepthImage).addType(GrayscaleImage);
    _addInput("ceil")->addType(Integer);
    _addOutput("out")->addType(BinaryImage);
}

std::vector<boost::shared_ptr<Data>> Threshold::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    if (!Operands::arePair(inputs) || inputs[1]->getType() != Integer) return {};
    const boost::shared_ptr<Data>& in = inputs[0];
    const int ceiling = *inputs[1];
    switch (in->getType()) {
        case ColorImage:
            return Operands::result(colourAbove(*in, ceiling));
        case DepthImage:
            return Operands::result(above<Type::DepthImage>(in, ceiling));
        case GrayscaleImage:
            return Operands::result(above<Type::GrayscaleImage>(in, ceiling));
        default:
            return {};
    }
}

}  // namespace Filters
}  // namespace Tessarity
