#include "filters/flow/multiplex.h"

#include "graph/port.h"

namespace Tessarity {
namespace Filters {

Multiplex::Multiplex() : FilterPrimitive("Multiplex") {
    _addInput("master")->setOptional(true);
    _addInput("slave")->setOptional(true);
    _addOutput("out");
}

std::vector<boost::shared_ptr<Data>> Multiplex::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    for (const boost::shared_ptr<Data>& input : inputs)
        if (input) return {input};
    // Always one entry, so that "out" reads as no value rather than the run giving nothing.
    return {boost::shared_ptr<Data>()};
}

}  // namespace Filters
}  // namespace Tessarity
