#include "filters/measures/density.h"

#include <boost/make_shared.hpp>

#include "filters/measures/label_tables.h"
#include "graph/port.h"

namespace Tessarity {
namespace Filters {

Density::Density() : FilterPrimitive("Density") {
    _addInput("in")->addType(LabelImage);
    _addInput("min")->addType(Integer);
    _addInput("max")->addType(Integer);
    _addOutput("out")->addType(LabelImage);
}

std::vector<boost::shared_ptr<Data>> Density::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    if (inputs.size() < 3 || !inputs[0] || !inputs[1] || !inputs[2]) return {};
    if (inputs[1]->getType() != Integer || inputs[2]->getType() != Integer) return {};
    const Type::LabelImage* in = labelImageOf(inputs[0]);
    if (!in) return {};
    const long long largest = largestLabel(in->mat);
    if (largest < 0) return {};
    const int min = *inputs[1], max = *inputs[2];

    // The background is counted like any label; it maps to 0 whatever its count.
    std::vector<long long> count(largest + 1, 0);
    forEachRun(in->mat, [&count](int label, int x0, int x1, int) { count[label] += x1 - x0 + 1; });
    std::vector<int> lut(largest + 1);
    for (long long label = 0; label <= largest; ++label)
        lut[label] = count[label] < min ? 0 : count[label] <= max ? int(label) : 0;

    auto out =
        boost::make_shared<Type::LabelImage>(in->getWidth(), in->getHeight(), in->colorSpace,
                                             in->timestamp, in->horizontalAngle, in->verticalAngle);
    mapLabels(in->mat, out->mat, lut);
    return {boost::make_shared<Data>(out)};
}

}  // namespace Filters
}  // namespace Tessarity
