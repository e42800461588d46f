#include "filters/flow/if_changed.h"

#include "graph/memory_manager.h"
#include "graph/port.h"

namespace Tessarity {
namespace Filters {

IfChanged::IfChanged() : FilterPrimitive("IfChanged") {
    _addInput("in");
    _addOutput("out");
}

std::vector<boost::shared_ptr<Data>> IfChanged::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
    const StringHash& request, long long) {
    if (inputs.size() != 1) return {};
    MemoryManager* memory = _getMemoryManager();
    // By address: equal content in a new object is a new value. Read and write are two locked
    // steps, not one; a process runs on one thread at a time, so its keys are not contended.
    if (memory->getData(process, request) == inputs[0]) return {};
    memory->setData(process, request, inputs[0]);
    return inputs;
}

}  // namespace Filters
}  // namespace Tessarity
