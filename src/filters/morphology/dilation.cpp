#include "filters/morphology/dilation.h"

#include <opencv2/imgproc.hpp>

namespace Tessarity {
namespace Filters {

Dilation::Dilation()
    : SquareMorphologyFilter("Dilation", cv::dilate, "tessarity.filter.dilation", "src/filters/dilation") {}

}  // namespace Filters
}  // namespace Tessarity
