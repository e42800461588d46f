#include "filters/colour/luminance.h"

#include <opencv2/core/hal/intrin.hpp>

#include "filters/colour/measure.h"
#include "graph/port.h"

namespace Tessarity {
namespace Filters {

namespace {

// (66 r + 128 g + 25 b + 128) >> 8 for `count` pixels. The weighted sum stays below 2^16, so
// the vector part works on 16-bit lanes.
void luminanceRow(const uchar* pixels, uchar* out, int count) {
    int i = 0;
#if CV_SIMD128
    const cv::v_uint16x8 red = cv::v_setall_u16(66), blue = cv::v_setall_u16(25),
                         half = cv::v_setall_u16(128);
    for (; i + 16 <= count; i += 16) {
        cv::v_uint8x16 r, g, b;
        cv::v_load_deinterleave(pixels + 3 * i, r, g, b);
        cv::v_uint16x8 r0, r1, g0, g1, b0, b1;
        cv::v_expand(r, r0, r1);
        cv::v_expand(g, g0, g1);
        cv::v_expand(b, b0, b1);
        const cv::v_uint16x8 low = cv::v_shr<8>(cv::v_mul_wrap(r0, red) + cv::v_shl<7>(g0) +
                                                cv::v_mul_wrap(b0, blue) + half);
        const cv::v_uint16x8 high = cv::v_shr<8>(cv::v_mul_wrap(r1, red) + cv::v_shl<7>(g1) +
                                                 cv::v_mul_wrap(b1, blue) + half);
        cv::v_store(out + i, cv::v_pack(low, high));
    }
#endif
    for (const uchar* p = pixels + 3 * i; i < count; ++i, p += 3)
        out[i] = static_cast<uchar>((66u * p[0] + 128u * p[1] + 25u * p[2] + 128u) >> 8);
}

}  // namespace

Luminance::Luminance() : FilterPrimitive("Luminance") {
    _addInput("in")->addType(ColorImage);
    _addOutput("out")->addType(GrayscaleImage);
}

std::vector<boost::shared_ptr<Data>> Luminance::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    if (inputs.size() != 1 || !inputs[0]) return {};
    return Colour::measure(*inputs[0], luminanceRow);
}

}  // namespace Filters
}  // namespace Tessarity
