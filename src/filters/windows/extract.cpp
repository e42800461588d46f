#include "filters/windows/extract.h"

#include <boost/make_shared.hpp>

#include <tessarity/types/image.h>
#include <tessarity/types/region.h>

#include "graph/port.h"

namespace Tessarity {
namespace Filters {

Extract::Extract() : FilterPrimitive("Extract") {
    _addInput("in")->addType(ColorImage);
    _addInput("region")->addType(Region2);
    _addOutput("out")->addType(ColorImage);
}

std::vector<boost::shared_ptr<Data>> Extract::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    if (inputs.size() != 2 || !inputs[0] || !inputs[1]) return {};
    const Type::ColorImage* image = *inputs[0];
    const Type::Region2* region = *inputs[1];
    if (!image || !region) return {};
    return {boost::make_shared<Data>(image->extract(*region))};
}

}  // namespace Filters
}  // namespace Tessarity
