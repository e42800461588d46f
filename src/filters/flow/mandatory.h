#ifndef TESSARITY_FILTERS_FLOW_MANDATORY_H
#define TESSARITY_FILTERS_FLOW_MANDATORY_H

#include <string>

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// Joins `count` paths: "in1".."inN" pass to "out1".."outN" only if every one has a value, so
// downstream filters see all of a request's values or none of them.
class Mandatory : public FilterPrimitive {
public:
    // Declares "in1", "out1", "in2", "out2"... in that order; no port at all below 1.
    Mandatory(const std::string& name, int count);

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;

private:
    int _count;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
