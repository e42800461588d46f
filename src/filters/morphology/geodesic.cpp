#include "filters/morphology/geodesic.h"

#include <cstdint>
#include <memory>

#include <boost/make_shared.hpp>

#include <tessarity/types/image.h>

#include "filters/morphology/image_input.h"
#include "graph/port.h"

namespace Tessarity {
namespace Filters {

namespace {

// A breadth-first flood from every labelled pixel, seeds in raster order, neighbours left,
// right, up, down: the queue's order settles every tie. A pixel is queued once, when it gets its
// label, so the queue holds at most one entry per pixel, each its column and its row packed in
// 16 bits apiece; its label is then read from the image.
void flood(cv::Mat& labels) {
    const std::uint32_t cols = std::uint32_t(labels.cols), rows = std::uint32_t(labels.rows);
    int* const pixels = labels.ptr<int>();
    // Left uninitialised: only what the flood writes is read.
    const std::unique_ptr<std::uint32_t[]> queue(new std::uint32_t[std::size_t(rows) * cols]);
    std::uint32_t* tail = queue.get();
    for (std::uint32_t y = 0; y < rows; ++y)
        for (std::uint32_t x = 0; x < cols; ++x)
            if (pixels[std::size_t(y) * cols + x]) *tail++ = x | y << 16;
    const std::uint32_t kDown = 1u << 16;
    const std::ptrdiff_t step = cols;
    for (const std::uint32_t* head = queue.get(); head != tail; ++head) {
        const std::uint32_t entry = *head, x = entry & 0xffff, y = entry >> 16;
        int* const p = pixels + y * step + x;
        const int label = *p;
        if (x > 0 && !p[-1]) p[-1] = label, *tail++ = entry - 1;
        if (x + 1 < cols && !p[1]) p[1] = label, *tail++ = entry + 1;
        if (y > 0 && !p[-step]) p[-step] = label, *tail++ = entry - kDown;
        if (y + 1 < rows && !p[step]) p[step] = label, *tail++ = entry + kDown;
    }
}

}  // namespace

Geodesic::Geodesic() : FilterPrimitive("Geodesic") {
    _addInput("in")->addType(LabelImage);
    _addOutput("out")->addType(LabelImage);
}

std::vector<boost::shared_ptr<Data>> Geodesic::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    if (inputs.empty() || !inputs[0]) return {};
    const Type::LabelImage* in = *inputs[0];
    // The queue packs a position in 32 bits.
    if (!in || !isPlaneOf(in->mat, CV_32SC1) || in->mat.rows > 0xffff || in->mat.cols > 0xffff)
        return {};
    boost::shared_ptr<Type::LabelImage> out = in->clone();  // continuous, and the input untouched
    if (!out->mat.empty()) flood(out->mat);
    return {boost::make_shared<Data>(out)};
}

}  // namespace Filters
}  // namespace Tessarity
