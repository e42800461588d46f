#ifndef TESSARITY_FILTERS_MORPHOLOGY_SQUARE_MORPHOLOGY_FILTER_H
#define TESSARITY_FILTERS_MORPHOLOGY_SQUARE_MORPHOLOGY_FILTER_H

#include "filters/morphology/square_kernel.h"
#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// A filter of "in" (binary, gray or depth image) and "size" that applies one morphology with a
// square kernel and answers an image of the input's class with its metadata; Dilation and
// Erosion differ only in the morphology and their names.
class SquareMorphologyFilter : public FilterPrimitive {
public:
    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;

protected:
    SquareMorphologyFilter(const std::string& name, Morphology morphology,
                           const char* logCategory, const char* logFile);

private:
    const Morphology _morphology;
    const char* const _logCategory;
    const char* const _logFile;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
