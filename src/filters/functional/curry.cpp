#include "filters/functional/curry.h"

#include <boost/make_shared.hpp>

#include <tessarity/types/lambda.h>

#include "graph/port.h"

namespace Tessarity {
namespace Filters {

Curry::Curry() : FilterPrimitive("Curry") {
    _addInput("fun")->addType(Lambda);
    _addInput("param")->addType(Array);
    _addOutput("out");
}

std::vector<boost::shared_ptr<Data>> Curry::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    if (inputs.size() != 2 || !inputs[0] || !inputs[1] || inputs[1]->getType() != Array) return {};
    Type::Lambda* lambda = *inputs[0];
    if (!lambda) return {};
    // The lambda on "fun" is shared with its other consumers: bind on a clone.
    const boost::shared_ptr<Type::Lambda> curried = lambda->clone();
    curried->curry(*inputs[1]);
    return {boost::make_shared<Data>(curried)};
}

}  // namespace Filters
}  // namespace Tessarity
