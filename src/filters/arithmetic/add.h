#ifndef TESSARITY_FILTERS_ARITHMETIC_ADD_H
#define TESSARITY_FILTERS_ARITHMETIC_ADD_H

#include "filters/arithmetic/operand_filter.h"

namespace Tessarity {
namespace Filters {

// "left" + "right": two numbers of one type (Integer wraps), or two images of one class,
// summed with saturation into an image that keeps the metadata of "left".
class Add : public OperandFilter {
public:
    Add();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
