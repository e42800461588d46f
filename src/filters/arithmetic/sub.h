#ifndef TESSARITY_FILTERS_ARITHMETIC_SUB_H
#define TESSARITY_FILTERS_ARITHMETIC_SUB_H

#include "filters/arithmetic/operand_filter.h"

namespace Tessarity {
namespace Filters {

// "left" - "right" on two numbers of one type (Integer wraps), but the absolute difference
// on two images of one class: a distance between pictures, which never wraps. An image result
// is new: colour space "unknow", stamped now, no angles.
class Sub : public OperandFilter {
public:
    Sub();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
