#ifndef TESSARITY_FILTERS_MEASURES_LABEL_TABLES_H
#define TESSARITY_FILTERS_MEASURES_LABEL_TABLES_H

#include <cstdint>
#include <vector>

#include <boost/shared_ptr.hpp>
#include <opencv2/core.hpp>

#include <tessarity/data.h>
#include <tessarity/types/image.h>

namespace Tessarity {
namespace Filters {

// What the region measures share. Their tables are indexed by label directly, so a label image
// is read only once its labels are known to lie in 0..n, n being its pixel count; the tables
// then stop at the largest label found rather than at n.

// The label image held by `data`, or null when it holds none, or a matrix that is not one int
// per pixel of a plane (the image classes take the caller's word for that).
const Type::LabelImage* labelImageOf(const boost::shared_ptr<Data>& data);

// The pixel count of a label image.
inline long long pixelCount(const cv::Mat& labels) {
    return static_cast<long long>(labels.rows) * labels.cols;
}

// Whether every coordinate fits the unsigned 16-bit tables of the shape measures.
inline bool fitsCoordinates(const cv::Mat& labels) {
    return labels.rows <= UINT16_MAX && labels.cols <= UINT16_MAX;
}

// The largest label, 0 for an image without pixels, or -1 when some label lies outside 0..n.
long long largestLabel(const cv::Mat& labels);

// Calls run(label, x0, x1, y) for each run of equal labels within a row, x0 to x1 inclusive,
// in raster order. Regions are mostly long runs, so a table entry is touched once per run
// rather than once per pixel.
template <typename Run>
void forEachRun(const cv::Mat& labels, Run run) {
    for (int y = 0; y < labels.rows; ++y) {
        const int* row = labels.ptr<int>(y);
        for (int x = 0; x < labels.cols;) {
            const int label = row[x], start = x;
            while (++x < labels.cols && row[x] == label) {
            }
            run(label, start, x - 1, y);
        }
    }
}

// out(x, y) = lut[labels(x, y)], out being a matrix of the same size.
void mapLabels(const cv::Mat& labels, cv::Mat& out, const std::vector<int>& lut);

// The extent of each label from 1 to `largest`: the least and the greatest column and row of
// its pixels. A label without pixels keeps 65535 as its least and 0 as its greatest, and so
// does label 0, the background.
struct LabelBounds {
    LabelBounds(const cv::Mat& labels, long long largest);

    std::vector<std::uint16_t> minX, minY, maxX, maxY;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
