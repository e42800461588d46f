#ifndef TESSARITY_FILTERS_FLOW_IF_CHANGED_H
#define TESSARITY_FILTERS_FLOW_IF_CHANGED_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// Passes "in" only when it is another object than the one it passed last for the
// same (process, request). Identity, not content, is compared: a source keeps its Data object
// until a new value is set, so each new value goes through once.
class IfChanged : public FilterPrimitive {
public:
    IfChanged();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
