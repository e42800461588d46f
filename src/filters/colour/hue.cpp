#include "filters/colour/hue.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "filters/colour/measure.h"
#include "filters/image_layout.h"
#include "graph/port.h"

namespace Tessarity {
namespace Filters {

namespace {

// The hue of a pixel in whole degrees, by the library's atan2f: 1.73 for the root of 3 and 6.29
// for two pi, in single precision, so that the hue runs a little short of plus or minus 180.
int hueOf(const uchar* pixel) {
    const float r = pixel[0], g = pixel[1], b = pixel[2];
    const float angle = atan2f((g - b) * 1.73f, (r + r) - g - b);
    return static_cast<int>(angle / 6.29f * 360.0f);
}

// The closeness of the hue `hue` to `reference`, both in degrees within (-360, 360).
inline int closeness(int hue, int reference) {
    // The difference brought into [0, 360), then folded into the distance 0 to 180.
    int distance = hue - reference + 720;
    distance -= distance >= 720 ? 720 : 0;
    distance -= distance >= 360 ? 360 : 0;
    distance = distance >= 181 ? 360 - distance : distance;
    // Over a full circle though the distance only reaches half of one: 255 down to 128.
    return 255 - distance * 255 / 360;
}

// A closeness never written, as closeness runs from 128 to 255: it marks the pixels left to
// the library's atan2f.
constexpr uchar kUnsettled = 0;

// How far from a whole degree an angle must fall for the fast arctangent to settle its hue.
// Over every pair of the differences three bytes can make, the fast angle strays from atan2f's
// by at most 4e-5 degrees; pixels closer to a whole degree than this margin, about one in
// five hundred, are marked.
constexpr float kMargin = 1e-3f;

// The closeness of each pixel with an arctangent the compiler vectorises: the smaller over the
// larger of |y| and |x|, a polynomial of degree 15 on [0, 1] (error 2e-8), then the octant.
// A gray pixel and one on the red-cyan axis come out exact; the others within the margin of a
// whole degree are marked kUnsettled. The file is built without trapping maths, so that the
// choices between angles become selects.
TESSARITY_PIXEL_LOOP void fastRow(const uchar* pixels, uchar* out, int count, int reference) {
    for (int i = 0; i < count; ++i) {
        const float r = pixels[3 * i], g = pixels[3 * i + 1], b = pixels[3 * i + 2];
        const float y = (g - b) * 1.73f, x = (r + r) - g - b;
        const float ax = std::fabs(x), ay = std::fabs(y);
        const float large = std::max(ax, ay), small = std::min(ax, ay);
        const float q = small / (large > 0 ? large : 1.0f);
        const float s = q * q;
        float angle = q * (0.9999993329f +
                           s * (-0.3332985605f +
                                s * (0.1994653599f +
                                     s * (-0.1390853351f +
                                          s * (0.0964200441f +
                                               s * (-0.0559098861f +
                                                    s * (0.0218612288f + s * -0.0040540580f)))))));
        angle = ay > ax ? 1.57079637f - angle : angle;
        angle = x < 0 ? 3.14159274f - angle : angle;
        angle = y < 0 ? -angle : angle;
        const float degrees = angle / 6.29f * 360.0f;
        const int hue = static_cast<int>(degrees);
        const float rest = std::fabs(degrees - static_cast<float>(hue));
        const bool unsettled = (y != 0) & ((rest < kMargin) | (rest > 1 - kMargin));
        out[i] = unsettled ? kUnsettled : static_cast<uchar>(closeness(hue, reference));
    }
}

// The closeness of each of `count` pixels to the hue `reference`, in degrees already brought
// into (-360, 360): the vectorised pass, then atan2f for the pixels it left.
void hueRow(const uchar* pixels, uchar* out, int count, int reference) {
    if (count == 0) return;  // the rows of an image without columns have no address to search
    fastRow(pixels, out, count, reference);
    const uchar* end = out + count;
    for (auto* p = static_cast<uchar*>(std::memchr(out, kUnsettled, count)); p;
         p = static_cast<uchar*>(std::memchr(p + 1, kUnsettled, end - (p + 1))))
        *p = static_cast<uchar>(closeness(hueOf(pixels + 3 * (p - out)), reference));
}

}  // namespace

Hue::Hue() : FilterPrimitive("Hue") {
    _addInput("in")->addType(ColorImage);
    _addInput("color")->addType(Integer);
    _addOutput("out")->addType(GrayscaleImage);
}

std::vector<boost::shared_ptr<Data>> Hue::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    if (inputs.size() != 2 || !inputs[0] || !inputs[1] || inputs[1]->getType() != Integer)
        return {};
    const int reference = int(*inputs[1]) % 360;
    return Colour::measure(*inputs[0], [reference](const uchar* pixels, uchar* out, int count) {
        hueRow(pixels, out, count, reference);
    });
}

}  // namespace Filters
}  // namespace Tessarity
