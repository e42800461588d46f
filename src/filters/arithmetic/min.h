#ifndef TESSARITY_FILTERS_ARITHMETIC_MIN_H
#define TESSARITY_FILTERS_ARITHMETIC_MIN_H

#include "filters/arithmetic/operand_filter.h"

namespace Tessarity {
namespace Filters {

// The smaller of two numbers of one type, or of each pair of bytes of two colour or two gray
// images. On a tie, and when either number is a NaN, the result is "right".
class Min : public OperandFilter {
public:
    Min();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
