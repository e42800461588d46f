#include "filters/measures/label_tables.h"

#include <algorithm>

#include "filters/morphology/image_input.h"

namespace Tessarity {
namespace Filters {

const Type::LabelImage* labelImageOf(const boost::shared_ptr<Data>& data) {
    const Type::LabelImage* image = *data;
    return image && isPlaneOf(image->mat, CV_32SC1) ? image : nullptr;
}

long long largestLabel(const cv::Mat& labels) {
    if (labels.empty()) return 0;
    double least = 0, greatest = 0;
    cv::minMaxIdx(labels, &least, &greatest);
    if (least < 0 || greatest > static_cast<double>(pixelCount(labels))) return -1;
    return static_cast<long long>(greatest);
}

void mapLabels(const cv::Mat& labels, cv::Mat& out, const std::vector<int>& lut) {
    const int* table = lut.data();
    for (int y = 0; y < labels.rows; ++y) {
        const int* in = labels.ptr<int>(y);
        int* to = out.ptr<int>(y);
        for (int x = 0; x < labels.cols; ++x) to[x] = table[in[x]];
    }
}

LabelBounds::LabelBounds(const cv::Mat& labels, long long largest)
    : minX(largest + 1, UINT16_MAX),
      minY(largest + 1, UINT16_MAX),
      maxX(largest + 1, 0),
      maxY(largest + 1, 0) {
    forEachRun(labels, [this](int label, int x0, int x1, int y) {
        if (!label) return;
        minX[label] = std::min<std::uint16_t>(minX[label], x0);
        maxX[label] = std::max<std::uint16_t>(maxX[label], x1);
        minY[label] = std::min<std::uint16_t>(minY[label], y);
        maxY[label] = std::uint16_t(y);  // rows come in order
    });
}

}  // namespace Filters
}  // namespace Tessarity
