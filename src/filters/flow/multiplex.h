#ifndef TESSARITY_FILTERS_FLOW_MULTIPLEX_H
#define TESSARITY_FILTERS_FLOW_MULTIPLEX_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// Passes "master" when it has a value, otherwise "slave".
class Multiplex : public FilterPrimitive {
public:
    Multiplex();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
