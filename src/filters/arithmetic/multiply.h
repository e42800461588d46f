#ifndef TESSARITY_FILTERS_ARITHMETIC_MULTIPLY_H
#define TESSARITY_FILTERS_ARITHMETIC_MULTIPLY_H

#include "filters/arithmetic/operand_filter.h"

namespace Tessarity {
namespace Filters {

// The product of two numbers of one type; on images, per pair of classes: colour bytes
// normalised (a * b / 255, truncated), binary images combined bitwise, and a gray image scaled
// by an Integer, handed on as a BinaryImage of the scaled values.
class Multiply : public OperandFilter {
public:
    Multiply();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
