#ifndef TESSARITY_FILTERS_FLOW_PRINT_H
#define TESSARITY_FILTERS_FLOW_PRINT_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// Passes the optional "in" to "out" and logs the text of each value it sees.
class Print : public FilterPrimitive {
public:
    Print();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
