#include "filters/arithmetic/threshold.h"

#include <opencv2/core.hpp>
#include <opencv2/core/hal/intrin.hpp>

#include <tessarity/cv_bridge.h>

#include "filters/arithmetic/operands.h"
#include "graph/port.h"

namespace Tessarity {
namespace Filters {

namespace {

// The largest sum of three bytes.
const unsigned int kBrightest = 3 * 255;

// out = 1 where r + g + b > bound, else 0, over `count` pixels; `bound` is below 765, so the
// sums and the bound fit 16 bits.
void brighterThan(const uchar* pixels, uchar* out, int count, unsigned int bound) {
    int i = 0;
#if CV_SIMD128
    const cv::v_uint16x8 limit = cv::v_setall_u16(static_cast<ushort>(bound));
    const cv::v_uint16x8 one = cv::v_setall_u16(1);
    for (; i + 16 <= count; i += 16) {
        cv::v_uint8x16 r, g, b;
        cv::v_load_deinterleave(pixels + 3 * i, r, g, b);
        cv::v_uint16x8 r0, r1, g0, g1, b0, b1;
        cv::v_expand(r, r0, r1);
        cv::v_expand(g, g0, g1);
        cv::v_expand(b, b0, b1);
        const cv::v_uint16x8 low = (r0 + g0 + b0 > limit) & one;
        const cv::v_uint16x8 high = (r1 + g1 + b1 > limit) & one;
        cv::v_store(out + i, cv::v_pack(low, high));
    }
#endif
    for (const uchar* p = pixels + 3 * i; i < count; ++i, p += 3)
        out[i] = static_cast<uchar>(unsigned(p[0]) + p[1] + p[2] > bound);
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

// 255 above the ceiling, 0 elsewhere, with the metadata of the input.
template <class C>
boost::shared_ptr<Data> above(const boost::shared_ptr<Data>& in, int ceiling) {
    const C* image = Operands::imageOf<C>(*in);
    if (!image) return boost::shared_ptr<Data>();
    // OpenCV refuses to compare a matrix without pixels with a number.
    cv::Mat out(image->mat.size(), CV_8UC1);
    if (!out.empty()) cv::compare(image->mat, static_cast<double>(ceiling), out, cv::CMP_GT);
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
