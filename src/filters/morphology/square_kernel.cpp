#include "filters/morphology/square_kernel.h"

#include <algorithm>

#include <opencv2/imgproc.hpp>

namespace Tessarity {
namespace Filters {

bool squareMorphology(Morphology morphology, const cv::Mat& source, int size, cv::Mat& result) {
    // OpenCV asserts on an image without pixels, which no kernel changes anyway.
    if (size < 0 || source.empty()) return false;
    const int side = size % 2 ? size : size + 1;
    // Once the kernel reaches the whole image from every pixel, a larger one gives the same
    // result: cut along each axis to that reach, so that a huge size costs no huge kernel.
    const auto reach = [side](int extent) {
        return int(std::max(1LL, std::min<long long>(side, 2LL * extent - 1)));
    };
    const cv::Mat kernel = cv::Mat::ones(reach(source.rows), reach(source.cols), CV_8U);
    morphology(source, result, kernel, cv::Point(-1, -1), 1, cv::BORDER_CONSTANT,
               cv::morphologyDefaultBorderValue());
    return true;
}

}  // namespace Filters
}  // namespace Tessarity
