#include "filters/flow/print.h"

#include "common/logging.h"
#include "graph/port.h"

namespace Tessarity {
namespace Filters {

namespace {
// Not under "tessarity.filter": these lines are the pipeline's own output, not diagnostics.
const char* const kLogCategory = "Tessarity";
const char* const kLogFile = "src/filters/print";
}  // namespace

Print::Print() : FilterPrimitive("Print") {
    _addInput("in")->setOptional(true);
    _addOutput("out");
}

std::vector<boost::shared_ptr<Data>> Print::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    for (const boost::shared_ptr<Data>& input : inputs)
        if (input) TES_LOG(kelvo::log::Info, input->toString());
    return inputs;
}

}  // namespace Filters
}  // namespace Tessarity
