#include "filters/measures/otsu.h"

#include <cstdint>

#include <boost/make_shared.hpp>
#include <opencv2/imgproc.hpp>

#include <tessarity/types/image.h>

#include "filters/measures/byte_counts.h"
#include "filters/morphology/image_input.h"
#include "graph/port.h"

namespace Tessarity {
namespace Filters {

namespace {

// The value t that maximises w(t) r(t) d(t)^2, w and r being the pixel counts at or below t and
// above it, d the difference of their means. In single precision and 32-bit sums that wrap, on
// purpose: on large images the choice can differ from a double-precision one. A tie keeps the
// smallest t, and an image of one value keeps 0.
int otsuThreshold(const std::uint32_t (&count)[256], std::uint32_t pixels) {
    std::uint32_t total = 0;
    for (std::uint32_t v = 0; v < 256; ++v) total += v * count[v];
    float best = 0.0f;
    int threshold = 0;
    std::uint32_t w = 0, s = 0;
    for (std::uint32_t t = 0; t < 256; ++t) {
        w += count[t];
        if (w == 0) continue;
        const std::uint32_t r = pixels - w;
        if (r == 0) break;
        s += t * count[t];
        const float d = float(s) / float(w) - float(total - s) / float(r);
        const float v = float(w) * float(r) * d * d;
        if (v > best) {
            best = v;
            threshold = int(t);
        }
    }
    return threshold;
}

}  // namespace

Otsu::Otsu() : FilterPrimitive("Otsu") {
    _addInput("in")->addType(GrayscaleImage);
    _addOutput("out")->addType(BinaryImage);
}

std::vector<boost::shared_ptr<Data>> Otsu::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    if (inputs.size() != 1 || !inputs[0]) return {};
    const Type::GrayscaleImage* in = *inputs[0];
    if (!in || !isPlaneOf(in->mat, CV_8UC1)) return {};

    std::uint32_t count[1][256];
    countBytes<1>(in->mat, count);
    const int threshold =
        otsuThreshold(count[0], std::uint32_t(in->mat.rows) * std::uint32_t(in->mat.cols));
    // The values 0 and 1, as the colour path of Threshold writes them.
    cv::Mat out;
    cv::threshold(in->mat, out, threshold, 1, cv::THRESH_BINARY);
    return {boost::make_shared<Data>(boost::make_shared<Type::BinaryImage>(
        out, in->colorSpace, in->timestamp, in->horizontalAngle, in->verticalAngle))};
}

}  // namespace Filters
}  // namespace Tessarity
