#include "filters/functional/append.h"

#include <boost/make_shared.hpp>

#include "graph/port.h"

namespace Tessarity {
namespace Filters {

Append::Append() : FilterPrimitive("Append") {
    _addInput("item");
    _addInput("array")->addType(Array).setOptional(true);
    _addOutput("out");
}

std::vector<boost::shared_ptr<Data>> Append::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    if (inputs.empty()) return {};
    // A copy of the pointers, not of the values; anything but an Array gives none.
    std::vector<boost::shared_ptr<Data>> elements;
    if (inputs.size() >= 2 && inputs[1]) elements = *inputs[1];
    elements.push_back(inputs[0]);
    return {boost::make_shared<Data>(elements)};
}

}  // namespace Filters
}  // namespace Tessarity
