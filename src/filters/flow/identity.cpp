#include "filters/flow/identity.h"

#include "graph/port.h"

namespace Tessarity {
namespace Filters {

Identity::Identity() : FilterPrimitive("Identity") {
    _addInput("in");
    _addOutput("out");
}

std::vector<boost::shared_ptr<Data>> Identity::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    return inputs;
}

}  // namespace Filters
}  // namespace Tessarity
