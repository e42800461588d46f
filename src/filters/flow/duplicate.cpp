#include "filters/flow/duplicate.h"

#include "graph/port.h"

namespace Tessarity {
namespace Filters {

Duplicate::Duplicate() : FilterPrimitive("Duplicate") {
    _addInput("in");
    _addOutput("left");
    _addOutput("right");
}

std::vector<boost::shared_ptr<Data>> Duplicate::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    if (inputs.size() != 1) return {};
    return {inputs[0], inputs[0]};
}

}  // namespace Filters
}  // namespace Tessarity
