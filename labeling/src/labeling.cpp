#include "vision/labeling.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include <opencv2/imgproc.hpp>

namespace vision {

namespace {

bool inBounds(int area, int minArea, int maxArea) {
    return (minArea <= 0 || area >= minArea) && (maxArea <= 0 || area <= maxArea);
}

// Replaces every label l by lut[l].
void applyLut(cv::Mat_<int>& labels, const int* lut) {
    for (int y = 0; y < labels.rows; ++y)
        for (int *p = labels[y], *end = p + labels.cols; p != end; ++p) *p = lut[*p];
}

// OpenCV 4.6, which the project builds against, numbers its 4-connected regions in the raster
// order of their first pixel, serial or parallel (the tests hold it to a flood fill). Nothing
// promises that of other versions, whose labels are renumbered. Checking the order at run time
// would read the whole label image again, at a fifth to a third of the labelling's own cost.
constexpr bool kOpenCvNumbersInRasterOrder = CV_VERSION_MAJOR == 4 && CV_VERSION_MINOR == 6;

// When every non-zero neighbour joins, this is plain 4-connected labelling of the non-zero
// pixels, left to OpenCV; the bounds, and the order where needed, are applied afterwards
// through a lookup table. OpenCV's statistics would give the areas, but cost several times
// the labelling itself, where one pass over the labels is much cheaper.
void labelNonZero(const cv::Mat& image, cv::Mat_<int>& labels, int minArea, int maxArea) {
    cv::Mat mask = image;  // OpenCV labels 8-bit images only
    if (image.depth() != CV_8U) cv::compare(image, 0, mask, cv::CMP_NE);
    const int count = cv::connectedComponents(mask, labels, 4, CV_32S);
    if (minArea <= 0 && maxArea <= 0 && kOpenCvNumbersInRasterOrder) return;

    // A label meets its first pixel when its area is still 0.
    std::vector<int> area(count, 0), order;
    order.reserve(count);
    for (int y = 0; y < labels.rows; ++y)
        for (const int *p = labels[y], *end = p + labels.cols; p != end; ++p)
            if (area[*p]++ == 0) order.push_back(*p);
    std::vector<int> lut(count, 0);
    int number = 1;
    for (const int l : order)
        if (l != 0 && inBounds(area[l], minArea, maxArea)) lut[l] = number++;
    applyLut(labels, lut.data());
}

// Union-find over provisional labels: parent[i] <= i, and a root is its own parent, so the
// smallest label of a set is its root.
int findRoot(const int* parent, int i) {
    while (parent[i] < i) i = parent[i];
    return i;
}

void setRoot(int* parent, int i, int root) {
    while (parent[i] < i) {
        const int next = parent[i];
        parent[i] = root;
        i = next;
    }
    parent[i] = root;
}

int merge(int* parent, int i, int j) {
    if (i == j) return i;
    const int root = std::min(findRoot(parent, i), findRoot(parent, j));
    setRoot(parent, i, root);
    setRoot(parent, j, root);
    return root;
}

// First pass: a raster scan that links each pixel to its left and upper neighbours when they
// are within tolerance, and otherwise opens a new provisional label. A region's first pixel
// always opens one, and labels open in raster order, so the smallest label of each set marks
// the region's first pixel. With CountAreas, area[l] counts the pixels given label l.
template <typename T, bool CountAreas>
void linkPixels(const cv::Mat& image, cv::Mat_<int>& labels, int toleranceH, int toleranceV,
                std::vector<int>& parent, std::vector<int>& area) {
    // Background on the left stands for a value no tolerance reaches, which spares a test.
    constexpr int far = INT_MIN / 2;
    const std::vector<T> noValues(image.cols, 0);  // above the first row
    const std::vector<int> noLabels(image.cols, 0);
    for (int y = 0; y < image.rows; ++y) {
        const T* src = image.ptr<T>(y);
        const T* srcUp = y > 0 ? image.ptr<T>(y - 1) : noValues.data();
        const int* labUp = y > 0 ? labels[y - 1] : noLabels.data();
        int* lab = labels[y];
        int leftLabel = 0, leftValue = far;
        for (int x = 0; x < image.cols; ++x) {
            const int value = src[x];
            if (!value) {
                lab[x] = 0;
                leftValue = far;
                continue;
            }
            // Noise makes each link a toss, so the links pick the label through masks, and
            // only a pixel that links to nothing, or to two labels, branches.
            const int upValue = srcUp[x], upLabel = labUp[x];
            const int left = -int(std::abs(value - leftValue) <= toleranceH);
            const int up = -int((upValue != 0) & (std::abs(value - upValue) <= toleranceV));
            int l;
            if (left | up) {
                l = upLabel ^ ((leftLabel ^ upLabel) & left);
                if (left & up & (leftLabel ^ upLabel)) l = merge(parent.data(), leftLabel, upLabel);
            } else {
                l = int(parent.size());
                parent.push_back(l);
                if (CountAreas) area.push_back(0);
            }
            if (CountAreas) ++area[l];
            lab[x] = leftLabel = l;
            leftValue = value;
        }
    }
}

// Second pass: turns every provisional label into its final number, with 0 for the regions out
// of bounds, then relabels the pixels.
template <typename T>
void labelWithTolerance(const cv::Mat& image, cv::Mat_<int>& labels, int toleranceH, int toleranceV,
                        int minArea, int maxArea) {
    CV_Assert(image.total() < std::size_t(INT_MAX));  // every pixel may open a label
    labels.create(image.rows, image.cols);
    // Label 0 is the background. Regions are far fewer than pixels, so the sets grow as needed.
    std::vector<int> parent{0}, area{0};
    parent.reserve(image.total() / 16 + 1);
    if (minArea <= 0 && maxArea <= 0) {
        linkPixels<T, false>(image, labels, toleranceH, toleranceV, parent, area);
        // A label below i was resolved already, so its entry holds the final number.
        int number = 1;
        for (int i = 1; i < int(parent.size()); ++i)
            parent[i] = parent[i] < i ? parent[parent[i]] : number++;
    } else {
        area.reserve(parent.capacity());
        linkPixels<T, true>(image, labels, toleranceH, toleranceV, parent, area);
        // Point every label at its root and gather the areas there.
        for (int i = 1; i < int(parent.size()); ++i) {
            if (parent[i] == i) continue;
            parent[i] = parent[parent[i]];
            area[parent[i]] += area[i];
        }
        // A root comes before the rest of its set, so its number is known when they are met.
        int number = 1;
        for (int i = 1; i < int(parent.size()); ++i)
            parent[i] = parent[i] < i ? parent[parent[i]]
                                      : (inBounds(area[i], minArea, maxArea) ? number++ : 0);
    }
    applyLut(labels, parent.data());
}

}  // namespace

void connectedComponentLabeling(const cv::Mat& image, cv::Mat_<int>& labels, int tolerance,
                                int minArea, int maxArea) {
    connectedComponentLabeling2(image, labels, tolerance, tolerance, minArea, maxArea);
}

void connectedComponentLabeling2(const cv::Mat& image, cv::Mat_<int>& labels, int toleranceH,
                                 int toleranceV, int minArea, int maxArea) {
    if (image.empty() || (image.type() != CV_8UC1 && image.type() != CV_16UC1)) {
        labels.release();
        return;
    }
    // No difference of two samples exceeds the widest sample, so a larger tolerance means the
    // same; cut there, it stays far below the gap that stands for the background.
    const int widest = image.depth() == CV_8U ? UINT8_MAX : UINT16_MAX;
    toleranceH = std::min(toleranceH, widest);
    toleranceV = std::min(toleranceV, widest);
    if (toleranceH >= widest && toleranceV >= widest)
        labelNonZero(image, labels, minArea, maxArea);
    else if (image.depth() == CV_8U)
        labelWithTolerance<std::uint8_t>(image, labels, toleranceH, toleranceV, minArea, maxArea);
    else
        labelWithTolerance<std::uint16_t>(image, labels, toleranceH, toleranceV, minArea, maxArea);
}

}  // namespace vision
