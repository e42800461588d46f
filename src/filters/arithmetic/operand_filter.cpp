#include "filters/arithmetic/operand_filter.h"

#include "graph/port.h"

namespace Tessarity {
namespace Filters {

OperandFilter::OperandFilter(const std::string& name, std::initializer_list<DataType> imageTypes)
    : FilterPrimitive(name) {
    for (const char* operand : {"left", "right"}) {
        Port& port = _addInput(operand)->addType(Integer).addType(Float).addType(Double);
        for (DataType type : imageTypes) port.addType(type);
    }
    _addOutput("out");
}

}  // namespace Filters
}  // namespace Tessarity
