#include "filters/measures/bounding_box.h"

#include <algorithm>

#include <boost/make_shared.hpp>

#include <tessarity/types/region.h>
#include <tessarity/types/vector.h>

#include "filters/measures/label_tables.h"
#include "graph/port.h"

namespace Tessarity {
namespace Filters {

BoundingBox::BoundingBox() : FilterPrimitive("BoundingBox") {
    _addInput("in")->addType(LabelImage);
    _addOutput("out")->addType(Array);
    _addOutput("inputSize")->addType(Vector2);
}

std::vector<boost::shared_ptr<Data>> BoundingBox::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    if (inputs.size() != 1 || !inputs[0]) return {};
    const Type::LabelImage* in = labelImageOf(inputs[0]);
    if (!in || !fitsCoordinates(in->mat)) return {};
    const long long largest = largestLabel(in->mat);
    if (largest < 0) return {};

    const LabelBounds bounds(in->mat, largest);
    std::vector<boost::shared_ptr<Data>> boxes;
    // Only the width is tested: a region one pixel wide is left out, one pixel high is kept.
    // The label equal to the pixel count, if any, is not reported.
    const long long reported = std::min(largest, pixelCount(in->mat) - 1);
    for (long long label = 1; label <= reported; ++label)
        if (bounds.maxX[label] > bounds.minX[label])
            boxes.push_back(boost::make_shared<Data>(Type::Region2(
                bounds.minX[label], bounds.minY[label], bounds.maxX[label], bounds.maxY[label])));
    return {boost::make_shared<Data>(boxes),
            boost::make_shared<Data>(Type::Vector2(float(in->getWidth()), float(in->getHeight())))};
}

}  // namespace Filters
}  // namespace Tessarity
