#include "filters/colour/hue.h"

#include <cmath>

#include "filters/colour/measure.h"
#include "graph/port.h"

namespace Tessarity {
namespace Filters {

namespace {

// The closeness of each of `count` pixels to the hue `reference`, in degrees already brought
// into (-360, 360), so that no difference below can overflow.
void hueRow(const uchar* pixels, uchar* out, int count, int reference) {
    for (int i = 0; i < count; ++i, pixels += 3) {
        const float r = pixels[0], g = pixels[1], b = pixels[2];
        // 1.73 for the root of 3 and 6.29 for two pi, in single precision: the hue runs a
        // little short of plus or minus 180 degrees.
        const float angle = atan2f((g - b) * 1.73f, (r + r) - g - b);
        const int hue = static_cast<int>(angle / 6.29f * 360.0f);
        // The difference brought into [0, 360), then folded into the distance 0 to 180.
        int distance = (hue - reference + 720) % 360;
        distance = distance >= 181 ? 360 - distance : distance;
        // Over a full circle though the distance only reaches half of one: 255 down to 128.
        out[i] = static_cast<uchar>(255 - distance * 255 / 360);
    }
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
