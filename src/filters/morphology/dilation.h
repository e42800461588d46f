#ifndef TESSARITY_FILTERS_MORPHOLOGY_DILATION_H
#define TESSARITY_FILTERS_MORPHOLOGY_DILATION_H

#include "filters/morphology/square_morphology_filter.h"

namespace Tessarity {
namespace Filters {

// The greatest value under a square kernel of side "size" around each pixel.
class Dilation : public SquareMorphologyFilter {
public:
    Dilation();
};

}  // namespace Filters
}  // namespace Tessarity

#endif
