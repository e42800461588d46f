#include "filters/flow/dispatch.h"

#include "graph/port.h"

namespace Tessarity {
namespace Filters {

Dispatch::Dispatch() : FilterPrimitive("Dispatch") {
    _addInput("in")->setOptional(true);
    _addInput("state")->addType(Boolean);
    _addOutput("ontrue");
    _addOutput("onfalse");
}

std::vector<boost::shared_ptr<Data>> Dispatch::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    const boost::shared_ptr<Data> none;
    // "state" is required, so a null one only comes from a direct caller: nothing to route on.
    if (inputs.size() != 2 || !inputs[1]) return {none, none};
    // The port admits Boolean only; the conversion needs no type test.
    if (bool(*inputs[1])) return {inputs[0], none};
    return {none, inputs[0]};
}

}  // namespace Filters
}  // namespace Tessarity
