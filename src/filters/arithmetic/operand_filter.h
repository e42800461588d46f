#ifndef TESSARITY_FILTERS_ARITHMETIC_OPERAND_FILTER_H
#define TESSARITY_FILTERS_ARITHMETIC_OPERAND_FILTER_H

#include <initializer_list>
#include <string>

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// A filter of two operands, "left" and "right", each an Integer, a Float, a Double or one of
// `imageTypes` (in that order on the ports), and one untyped output "out".
class OperandFilter : public FilterPrimitive {
protected:
    OperandFilter(const std::string& name, std::initializer_list<DataType> imageTypes);
};

}  // namespace Filters
}  // namespace Tessarity

#endif
