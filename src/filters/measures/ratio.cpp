#include "filters/measures/ratio.h"

#include <algorithm>

#include <boost/make_shared.hpp>

#include <tessarity/types/region.h>

#include "filters/measures/label_tables.h"
#include "graph/port.h"

namespace Tessarity {
namespace Filters {

namespace {

typedef std::vector<boost::shared_ptr<Data>> Values;

// The regions of an array whose ratio lies within the bounds, as the very elements given. A
// ratio here may be negative, a region's end lying before its start.
boost::shared_ptr<Data> keepRegions(const Values& elements, float min, float max) {
    Values kept;
    for (const boost::shared_ptr<Data>& element : elements) {
        const Type::Region2* region = element ? static_cast<Type::Region2*>(*element) : nullptr;
        if (!region) continue;
        const float height = region->end.y() - region->start.y();
        if (height == 0.0f) continue;
        const float ratio = (region->end.x() - region->start.x()) / height;
        if (ratio >= min && ratio <= max) kept.push_back(element);
    }
    return boost::make_shared<Data>(kept);
}

// The label image without the regions whose ratio is out of bounds, or null if its labels or
// its size are out of range.
boost::shared_ptr<Data> keepRegions(const Type::LabelImage& in, float min, float max) {
    if (!fitsCoordinates(in.mat)) return {};
    const long long largest = largestLabel(in.mat);
    if (largest < 0) return {};
    const LabelBounds bounds(in.mat, largest);
    // Measured between the extreme pixels, so a region one pixel wide or high has the ratio 0.
    // The label equal to the pixel count, if any, keeps 0 too: the measure stops below it.
    const long long measured = std::min(largest, pixelCount(in.mat) - 1);
    std::vector<int> lut(largest + 1, 0);
    for (long long label = 1; label <= largest; ++label) {
        float ratio = 0.0f;
        if (label <= measured && bounds.maxX[label] > bounds.minX[label] &&
            bounds.maxY[label] != bounds.minY[label])
            ratio = float(std::uint16_t(bounds.maxX[label] - bounds.minX[label])) /
                    float(std::uint16_t(bounds.maxY[label] - bounds.minY[label]));
        lut[label] = min > ratio || ratio > max ? 0 : int(label);
    }
    auto out =
        boost::make_shared<Type::LabelImage>(in.getWidth(), in.getHeight(), in.colorSpace,
                                             in.timestamp, in.horizontalAngle, in.verticalAngle);
    mapLabels(in.mat, out->mat, lut);
    return boost::make_shared<Data>(out);
}

}  // namespace

Ratio::Ratio() : FilterPrimitive("Ratio") {
    _addInput("in")->addType(LabelImage).addType(Array);
    _addInput("min")->addType(Float);
    _addInput("max")->addType(Float);
    _addOutput("out");
}

Values Ratio::applyFilter(const Values& inputs, const StringHash&, const StringHash&, long long) {
    if (inputs.size() < 3 || !inputs[0] || !inputs[1] || !inputs[2]) return {};
    if (inputs[1]->getType() != Float || inputs[2]->getType() != Float) return {};
    const float min = *inputs[1], max = *inputs[2];
    boost::shared_ptr<Data> out;
    if (const Values* elements = *inputs[0])
        out = keepRegions(*elements, min, max);
    else if (const Type::LabelImage* in = labelImageOf(inputs[0]))
        out = keepRegions(*in, min, max);
    if (!out) return {};
    return {out};
}

}  // namespace Filters
}  // namespace Tessarity
