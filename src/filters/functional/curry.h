#ifndef TESSARITY_FILTERS_FUNCTIONAL_CURRY_H
#define TESSARITY_FILTERS_FUNCTIONAL_CURRY_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// A new lambda: a clone of the one on "fun", which stays as it is, with the first element of
// "param" bound to its first free input (and to every second free one after it).
class Curry : public FilterPrimitive {
public:
    Curry();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
