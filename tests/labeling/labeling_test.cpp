// Connected-component labelling: hand-made images with their labels, then random images
// against a breadth-first flood.
#include <climits>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <opencv2/core.hpp>

#include <vision/labeling.h>

namespace {

std::vector<int> flat(const cv::Mat_<int>& m) { return {m.begin(), m.end()}; }

// Blank-separated numbers, the rows separated by " / ".
cv::Mat_<int> parse(const std::string& text) {
    std::vector<int> values;
    std::istringstream in(text);
    int rows = 1;
    for (std::string token; in >> token;)
        if (token == "/")
            ++rows;
        else
            values.push_back(std::stoi(token));
    return cv::Mat_<int>(values, true).reshape(1, rows);
}

// Through the two-tolerance form into a window of a larger matrix, which has the right size
// and so is written in place, and nowhere else; with equal tolerances the one-tolerance form,
// given a matrix of another size, must agree.
cv::Mat_<int> label(const cv::Mat& image, int toleranceH, int toleranceV, int minArea,
                    int maxArea) {
    const cv::Mat_<int> whole(image.rows + 2, image.cols + 2, -7);
    cv::Mat_<int> labels = whole(cv::Rect(1, 1, image.cols, image.rows)), single(1, 1, -7);
    vision::connectedComponentLabeling2(image, labels, toleranceH, toleranceV, minArea, maxArea);
    EXPECT_EQ(cv::countNonZero(whole != -7), int(image.total()));
    if (toleranceH == toleranceV) {
        vision::connectedComponentLabeling(image, single, toleranceH, minArea, maxArea);
        EXPECT_EQ(flat(single), flat(labels));
    }
    return labels;
}

// Floods each region from its first pixel in raster order; INT_MIN marks the pixels taken.
cv::Mat_<int> flood(const cv::Mat& image, int toleranceH, int toleranceV, int minArea,
                    int maxArea) {
    cv::Mat_<int> values, labels(image.rows, image.cols, 0);
    image.convertTo(values, CV_32S);
    int next = 1;
    for (int y = 0; y < image.rows; ++y)
        for (int x = 0; x < image.cols; ++x) {
            if (!values(y, x) || labels(y, x)) continue;
            std::vector<cv::Point> region{{x, y}};
            labels(y, x) = INT_MIN;
            for (std::size_t i = 0; i < region.size(); ++i)
                for (const cv::Point step : {cv::Point(-1, 0), {1, 0}, {0, -1}, {0, 1}}) {
                    const cv::Point p = region[i], q = p + step;
                    if (q.inside(cv::Rect(0, 0, image.cols, image.rows)) && values(q) &&
                        !labels(q) &&
                        std::abs(values(q) - values(p)) <= (step.x ? toleranceH : toleranceV)) {
                        labels(q) = INT_MIN;
                        region.push_back(q);
                    }
                }
            const int area = int(region.size());
            const bool kept =
                (minArea <= 0 || area >= minArea) && (maxArea <= 0 || area <= maxArea);
            for (const cv::Point& p : region) labels(p) = kept ? next : INT_MIN;
            next += kept;
        }
    labels.setTo(0, labels == INT_MIN);
    return labels;
}

const char* const kGray = "10 11 0 90 / 13 0 0 200 / 0 40 42 201";
const char* const kDeep = "1000 1100 0 / 1000 60000 60000";
const char* const kSizes = "7 0 7 7 / 0 0 0 0 / 7 7 7 0";    // regions of 1, 2 and 3 pixels
const char* const kU = "9 0 9 0 9 / 9 0 0 0 9 / 9 9 9 9 9";  // the right arm opens a label
// The third label of the first row joins the second, which then joins the first.
const char* const kChain = "7 0 7 0 7 / 7 0 7 7 7 / 7 7 7 0 0";

TEST(Labeling, HandMadeImages) {
    const struct {
        int depth;
        const char* image;
        int toleranceH, toleranceV, minArea, maxArea;
        const char* labels;
    } cases[] = {
        {CV_8U, kGray, 0, 0, 0, 0, "1 2 0 3 / 4 0 0 5 / 0 6 7 8"},
        {CV_8U, kGray, 1, 1, 0, 0, "1 1 0 2 / 3 0 0 4 / 0 5 6 4"},
        {CV_8U, kGray, 255, 255, 0, 0, "1 1 0 2 / 1 0 0 2 / 0 2 2 2"},
        {CV_8U, kGray, 255, 0, 0, 0, "1 1 0 2 / 3 0 0 4 / 0 5 5 5"},
        {CV_8U, kGray, 0, 3, 0, 0, "1 2 0 3 / 1 0 0 4 / 0 5 6 4"},
        {CV_8U, "5 5 / 5 5", -1, -1, 0, 0, "1 2 / 3 4"},
        {CV_16U, kDeep, 255, 255, 0, 0, "1 1 0 / 1 2 2"},
        {CV_16U, kDeep, 65535, 65535, 0, 0, "1 1 0 / 1 1 1"},
        {CV_8U, kSizes, 255, 255, 0, 0, "1 0 2 2 / 0 0 0 0 / 3 3 3 0"},
        {CV_8U, kSizes, 255, 255, 2, 0, "0 0 1 1 / 0 0 0 0 / 2 2 2 0"},
        {CV_8U, kSizes, 0, 0, 0, 2, "1 0 2 2 / 0 0 0 0 / 0 0 0 0"},
        {CV_16U, kSizes, 0, 0, 2, 2, "0 0 1 1 / 0 0 0 0 / 0 0 0 0"},
        {CV_8U, kU, 255, 255, 0, 0, "1 0 2 0 1 / 1 0 0 0 1 / 1 1 1 1 1"},
        {CV_8U, kU, 0, 0, 2, 0, "1 0 0 0 1 / 1 0 0 0 1 / 1 1 1 1 1"},
        {CV_8U, kChain, 0, 0, 10, 0, "1 0 1 0 1 / 1 0 1 1 1 / 1 1 1 0 0"},
        // A tolerance beyond every difference does not reach across the background.
        {CV_8U, "5 0 7", 2000000000, 0, 0, 0, "1 0 2"},
        {CV_16U, "5 0 7 / 5 5 0", 0, INT_MAX, 0, 0, "1 0 2 / 1 1 0"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE("case " + std::to_string(&c - cases));
        cv::Mat image;
        parse(c.image).convertTo(image, c.depth);
        const cv::Mat_<int> labels = label(image, c.toleranceH, c.toleranceV, c.minArea, c.maxArea);
        EXPECT_EQ(flat(labels), flat(parse(c.labels)));
    }
}

TEST(Labeling, OtherTypesAndEmptyImagesLeaveTheLabelsEmpty) {
    for (const int type : {CV_8SC1, CV_16SC1, CV_32SC1, CV_32FC1, CV_8UC3, CV_16UC2, -1}) {
        cv::Mat_<int> labels(2, 2, 1);
        const cv::Mat image = type < 0 ? cv::Mat() : cv::Mat(3, 3, type, cv::Scalar::all(1));
        vision::connectedComponentLabeling2(image, labels, 255, 255, 0, 0);
        EXPECT_TRUE(labels.empty()) << type;
    }
}

// Random regions near the percolation threshold, in windows of a larger image so that the
// rows are not contiguous: both depths, both paths, with and without bounds.
TEST(Labeling, RandomWindowsMatchAFlood) {
    const struct {
        int depth, scale, toleranceH, toleranceV, minArea, maxArea;
    } runs[] = {{CV_8U, 1, 255, 255, 0, 0},
                {CV_8U, 1, 255, 255, 3, 0},
                {CV_8U, 1, 255, 255, 0, 5},
                {CV_8U, 1, 1, 1, 0, 0},
                {CV_8U, 1, 1, 3, 2, 40},
                {CV_8U, 1, 0, 2, 0, 4},
                {CV_16U, 13000, 65535, 65535, 0, 0},
                {CV_16U, 13000, 65535, 65535, 2, 6},
                {CV_16U, 13000, 13000, 13000, 0, 0},
                {CV_16U, 13000, 26000, 0, 3, 0}};
    cv::RNG rng(20240611);
    for (const auto& run : runs)
        for (int image = 0; image < 3; ++image) {
            cv::Mat_<int> values(40, 50);
            for (int& v : values) v = rng.uniform(0, 5) < 2 ? 0 : rng.uniform(1, 6) * run.scale;
            cv::Mat whole;
            values.convertTo(whole, run.depth);
            const cv::Mat window = whole(cv::Rect(3, 5, 41, 29));
            SCOPED_TRACE("run " + std::to_string(&run - runs) + " image " + std::to_string(image));
            EXPECT_EQ(
                flat(label(window, run.toleranceH, run.toleranceV, run.minArea, run.maxArea)),
                flat(flood(window, run.toleranceH, run.toleranceV, run.minArea, run.maxArea)));
        }
}

}  // namespace
