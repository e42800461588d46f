#include "filters/colour/saturation.h"

#include <algorithm>

#include <opencv2/core/hal/intrin.hpp>

#include "filters/colour/measure.h"
#include "graph/port.h"

namespace Tessarity {
namespace Filters {

namespace {

#if CV_SIMD128
// (max - min) * 255 / max, truncated, for four pixels. The single-precision quotient truncates
// to the integer one: the numerator and divisor are exact, and a quotient that is no integer
// lies at least 1/255 away from one, far beyond the rounding of a float below 256. A black
// pixel divides 0 by 1.
inline cv::v_int32x4 quotients(const cv::v_uint32x4& range, const cv::v_uint32x4& largest) {
    const cv::v_float32x4 numerator =
        cv::v_cvt_f32(cv::v_reinterpret_as_s32(range)) * cv::v_setall_f32(255.0f);
    const cv::v_float32x4 divisor =
        cv::v_cvt_f32(cv::v_reinterpret_as_s32(cv::v_max(largest, cv::v_setall_u32(1))));
    return cv::v_trunc(numerator / divisor);
}

// The quotients of eight pixels, as 16-bit lanes.
inline cv::v_int16x8 quotients(const cv::v_uint16x8& range, const cv::v_uint16x8& largest) {
    cv::v_uint32x4 range0, range1, largest0, largest1;
    cv::v_expand(range, range0, range1);
    cv::v_expand(largest, largest0, largest1);
    return cv::v_pack(quotients(range0, largest0), quotients(range1, largest1));
}
#endif

void saturationRow(const uchar* pixels, uchar* out, int count) {
    int i = 0;
#if CV_SIMD128
    for (; i + 16 <= count; i += 16) {
        cv::v_uint8x16 r, g, b;
        cv::v_load_deinterleave(pixels + 3 * i, r, g, b);
        const cv::v_uint8x16 largest = cv::v_max(cv::v_max(r, g), b);
        const cv::v_uint8x16 range = largest - cv::v_min(cv::v_min(r, g), b);
        cv::v_uint16x8 range0, range1, largest0, largest1;
        cv::v_expand(range, range0, range1);
        cv::v_expand(largest, largest0, largest1);
        cv::v_store(out + i,
                    cv::v_pack_u(quotients(range0, largest0), quotients(range1, largest1)));
    }
#endif
    for (const uchar* p = pixels + 3 * i; i < count; ++i, p += 3) {
        const unsigned int largest = std::max(std::max(p[0], p[1]), p[2]);
        const unsigned int smallest = std::min(std::min(p[0], p[1]), p[2]);
        out[i] = static_cast<uchar>(largest ? (largest - smallest) * 255u / largest : 0u);
    }
}

}  // namespace

Saturation::Saturation() : FilterPrimitive("Saturation") {
    _addInput("in")->addType(ColorImage);
    _addOutput("out")->addType(GrayscaleImage);
}

std::vector<boost::shared_ptr<Data>> Saturation::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    if (inputs.size() != 1 || !inputs[0]) return {};
    return Colour::measure(*inputs[0], saturationRow);
}

}  // namespace Filters
}  // namespace Tessarity
