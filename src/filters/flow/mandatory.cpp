#include "filters/flow/mandatory.h"

#include "graph/port.h"

namespace Tessarity {
namespace Filters {

Mandatory::Mandatory(const std::string& name, int count) : FilterPrimitive(name), _count(count) {
    for (int i = 1; i <= count; ++i) {
        _addInput("in" + std::to_string(i));
        _addOutput("out" + std::to_string(i));
    }
}

std::vector<boost::shared_ptr<Data>> Mandatory::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    if (_count < 1) return {};
    const std::size_t count = static_cast<std::size_t>(_count);
    // A short vector can only come from a direct caller; its missing entries count as null.
    if (inputs.size() < count) return std::vector<boost::shared_ptr<Data>>(count);
    for (std::size_t i = 0; i < count; ++i)
        if (!inputs[i]) return std::vector<boost::shared_ptr<Data>>(count);
    return std::vector<boost::shared_ptr<Data>>(inputs.begin(), inputs.begin() + count);
}

}  // namespace Filters
}  // namespace Tessarity
