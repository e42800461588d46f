#include "filters/colour/luminance.h"

#include "filters/colour/measure.h"
#include "graph/port.h"

namespace Tessarity {
namespace Filters {

namespace {

// (66 r + 128 g + 25 b + 128) >> 8 for `count` pixels.
TESSARITY_PIXEL_LOOP void luminanceRow(const uchar* __restrict pixels, uchar* __restrict out,
                                       int count) {
    for (int i = 0; i < count; ++i)
        out[i] = static_cast<uchar>(
            (66u * pixels[3 * i] + 128u * pixels[3 * i + 1] + 25u * pixels[3 * i + 2] + 128u) >> 8);
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
