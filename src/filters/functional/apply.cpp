#include "filters/functional/apply.h"

#include <tessarity/types/lambda.h>

#include "graph/port.h"

namespace Tessarity {
namespace Filters {

Apply::Apply() : FilterPrimitive("Apply") {
    _addInput("fun")->addType(Lambda);
    _addInput("param")->addType(Array);
    _addOutput("out");
}

std::vector<boost::shared_ptr<Data>> Apply::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    if (inputs.size() != 2 || !inputs[0] || !inputs[1] || inputs[1]->getType() != Array) return {};
    Type::Lambda* lambda = *inputs[0];
    if (!lambda) return {};
    return lambda->apply(*inputs[1]);
}

}  // namespace Filters
}  // namespace Tessarity
