#include "filters/flow/head.h"

#include "graph/port.h"

namespace Tessarity {
namespace Filters {

Head::Head() : FilterPrimitive("Head") {
    _addInput("in")->addType(Array);
    _addOutput("out");
}

std::vector<boost::shared_ptr<Data>> Head::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    if (inputs.size() != 1 || !inputs[0] || inputs[0]->getType() != Array) return {};
    const std::vector<boost::shared_ptr<Data>>* elements = *inputs[0];
    if (!elements || elements->empty()) return {boost::shared_ptr<Data>()};
    return {elements->front()};
}

}  // namespace Filters
}  // namespace Tessarity
