#include "filters/measures/gravity.h"

#include <algorithm>
#include <cstdint>

#include <boost/make_shared.hpp>

#include <tessarity/types/vector.h>

#include "filters/measures/label_tables.h"
#include "graph/port.h"

namespace Tessarity {
namespace Filters {

namespace {

// The centroid is the float sum of the coordinates, pixel by pixel in raster order, over the
// count. Coordinates are whole numbers, so that sum is exact as long as it stays within 2^24,
// and the sum of a run is then known at once; a larger one rounds at each step and is replayed
// pixel by pixel.
const std::uint64_t kExactInFloat = std::uint64_t(1) << 24;

struct Sums {
    std::uint64_t x = 0, y = 0;
    std::uint32_t count = 0;
    bool exact = true;
    float floatX = 0.0f, floatY = 0.0f;
};

}  // namespace

Gravity::Gravity() : FilterPrimitive("Gravity") {
    _addInput("in")->addType(LabelImage);
    _addOutput("out")->addType(Array);
}

std::vector<boost::shared_ptr<Data>> Gravity::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    if (inputs.size() != 1 || !inputs[0]) return {};
    const Type::LabelImage* in = labelImageOf(inputs[0]);
    if (!in || !fitsCoordinates(in->mat)) return {};
    const long long largest = largestLabel(in->mat);
    if (largest < 0) return {};

    std::vector<Sums> sums(largest + 1);
    forEachRun(in->mat, [&sums](int label, int x0, int x1, int y) {
        if (!label) return;
        Sums& s = sums[label];
        const std::uint64_t length = std::uint64_t(x1 - x0 + 1);
        s.x += std::uint64_t(x0 + x1) * length / 2;
        s.y += std::uint64_t(y) * length;
        s.count += std::uint32_t(length);
    });
    bool rounded = false;
    for (Sums& s : sums) {
        s.exact = s.x <= kExactInFloat && s.y <= kExactInFloat;
        s.floatX = s.exact ? float(s.x) : 0.0f;
        s.floatY = s.exact ? float(s.y) : 0.0f;
        rounded = rounded || !s.exact;
    }
    if (rounded)
        forEachRun(in->mat, [&sums](int label, int x0, int x1, int y) {
            Sums& s = sums[label];
            if (!label || s.exact) return;
            for (int x = x0; x <= x1; ++x) {
                s.floatX += float(x);
                s.floatY += float(y);
            }
        });

    // In label order, with no label: the caller matches the centroids to the regions by it. The
    // label equal to the pixel count, if any, is not reported.
    std::vector<boost::shared_ptr<Data>> centroids;
    const long long reported = std::min(largest, pixelCount(in->mat) - 1);
    for (long long label = 1; label <= reported; ++label) {
        const Sums& s = sums[label];
        if (s.count)
            centroids.push_back(boost::make_shared<Data>(
                Type::Vector2(s.floatX / float(s.count), s.floatY / float(s.count))));
    }
    return {boost::make_shared<Data>(centroids)};
}

}  // namespace Filters
}  // namespace Tessarity
