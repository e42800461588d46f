#ifndef TESSARITY_FILTERS_MORPHOLOGY_EROSION_H
#define TESSARITY_FILTERS_MORPHOLOGY_EROSION_H

#include "filters/morphology/square_morphology_filter.h"

namespace Tessarity {
namespace Filters {

// The least value under a square kernel of side "size" around each pixel.
class Erosion : public SquareMorphologyFilter {
public:
    Erosion();
};

}  // namespace Filters
}  // namespace Tessarity

#endif
