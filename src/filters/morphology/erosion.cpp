#include "filters/morphology/erosion.h"

#include <opencv2/imgproc.hpp>

namespace Tessarity {
namespace Filters {

Erosion::Erosion()
    : SquareMorphologyFilter("Erosion", cv::erode, "tessarity.filter.erosion", "src/filters/erosion") {}

}  // namespace Filters
}  // namespace Tessarity
