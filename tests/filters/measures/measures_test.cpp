// The image measures: the worked cases, the inputs they refuse, and the region tables against the
// plain pixel loops over tables of n + 1 entries that the measures are defined by.
#include <gtest/gtest.h>
#include <opencv2/core.hpp>

#include <tessarity/types/histogram.h>
#include <tessarity/types/region.h>

#include "filters/measures/bounding_box.h"
#include "filters/measures/density.h"
#include "filters/measures/gravity.h"
#include "filters/measures/histogram.h"
#include "filters/measures/otsu.h"
#include "filters/measures/ratio.h"
#include "kits/filter_kit.h"
#include "kits/log_capture.h"

using namespace filterkit;

namespace {

Ptr labels(int width, int height, const std::vector<double>& samples) {
    return image<Type::LabelImage>(width, height, samples);
}
Ptr labels(const cv::Mat& mat) { return box(boost::make_shared<Type::LabelImage>(mat)); }

// The measures as the description gives them: one pixel at a time into tables of n + 1 entries.
struct Reference {
    struct Entry {
        int count = 0, minX = 65535, minY = 65535, maxX = 0, maxY = 0;
        float sumX = 0, sumY = 0;
    };
    explicit Reference(const cv::Mat& labels) : in(labels), n(int(in.total())), at(n + 1) {
        for (int y = 0; y < in.rows; ++y)
            for (int x = 0; x < in.cols; ++x) {
                Entry& e = at[in.at<int>(y, x)];
                ++e.count;
                if (&e == &at[0]) continue;
                e.minX = std::min(e.minX, x), e.maxX = std::max(e.maxX, x), e.sumX += float(x);
                e.minY = std::min(e.minY, y), e.maxY = std::max(e.maxY, y), e.sumY += float(y);
            }
    }
    template <typename Keep>
    cv::Mat kept(Keep keep) const {
        cv::Mat out = in.clone();
        for (int& l : cv::Mat_<int>(out)) l = keep(at[l]) ? l : 0;
        return out;
    }
    cv::Mat ratio(float min, float max) const {
        return kept([&](const Entry& e) {
            const bool measured = &e != &at[n] && e.maxX > e.minX && e.maxY != e.minY;
            const float r = measured ? float(e.maxX - e.minX) / float(e.maxY - e.minY) : 0;
            return !(min > r || r > max);
        });
    }
    // The centroids, then the boxes and the size.
    std::string regions() const {
        Values centroids, boxes;
        for (int l = 1; l < n; ++l) {
            const Entry& e = at[l];
            if (e.count)
                centroids.push_back(box(Type::Vector2(e.sumX / e.count, e.sumY / e.count)));
            if (e.maxX > e.minX)
                boxes.push_back(box(Type::Region2(e.minX, e.minY, e.maxX, e.maxY)));
        }
        return text(Values{box(centroids), box(boxes), box(Type::Vector2(in.cols, in.rows))});
    }

    cv::Mat in;
    int n;
    std::vector<Entry> at;
};

// Label 1 overlaid with rectangles of background or of a few labels, speckles of many labels,
// and one pixel labelled n.
cv::Mat randomLabels(cv::RNG& rng, int width, int height) {
    cv::Mat out(height, width, CV_32SC1, cv::Scalar(1));
    for (int i = 0; i < 12; ++i) {
        const int x = rng.uniform(0, width), y = rng.uniform(0, height);
        out(cv::Rect(x, y, rng.uniform(1, width - x + 1), rng.uniform(1, height - y + 1)))
            .setTo(rng.uniform(0, 9));
    }
    for (int i = 0; i < width * height / 20; ++i)
        out.at<int>(rng.uniform(0, height), rng.uniform(0, width)) = rng.uniform(0, 40);
    out.at<int>(rng.uniform(0, height), rng.uniform(0, width)) = width * height;
    return out;
}

bool same(const Ptr& value, const cv::Mat& expected) {
    const cv::Mat got = matOf(value);
    return got.size() == expected.size() && cv::countNonZero(got != expected) == 0;
}

}  // namespace

TEST(Measures, DeclaredPorts) {
    EXPECT_EQ(ports(Filters::Density()),
              "Density in:LabelImage min:Integer max:Integer | out:LabelImage");
    EXPECT_EQ(ports(Filters::Ratio()), "Ratio in:LabelImage:Array min:Float max:Float | out");
    EXPECT_EQ(ports(Filters::Gravity()), "Gravity in:LabelImage | out:Array");
    EXPECT_EQ(ports(Filters::Histogram()), "Histogram in:ColorImage:GrayscaleImage | out");
    EXPECT_EQ(ports(Filters::BoundingBox()),
              "BoundingBox in:LabelImage | out:Array inputSize:Vector2");
    EXPECT_EQ(ports(Filters::Otsu()), "Otsu in:GrayscaleImage | out:BinaryImage");
}

TEST(Measures, RefuseSilently) {
    LogCapture log;
    Filters::Density density;
    Filters::Ratio ratio;
    Filters::Gravity gravity;
    Filters::BoundingBox boxes;
    Filters::Histogram histogram;
    Filters::Otsu otsu;
    const Ptr none, one = box(1), half = box(0.5f), label = labels(2, 2, {1});
    const Ptr gray = image<Type::GrayscaleImage>(2, 2, {1});
    // Matrices that lie about their class, an image without payload, labels outside 0..n, and
    // an image past the 16-bit coordinates.
    const Ptr lying = labels(cv::Mat(2, 2, CV_8UC1, cv::Scalar(1)));
    const Ptr lyingGray = box(boost::make_shared<Type::GrayscaleImage>(cv::Mat(2, 2, CV_32SC1)));
    const Ptr hollow = box(boost::shared_ptr<Type::LabelImage>());
    const Ptr negative = labels(2, 2, {0, -1}), beyond = labels(2, 2, {5});
    const Ptr wide = labels(cv::Mat(1, 65536, CV_32SC1, cv::Scalar(0)));
    const std::pair<Filter*, std::vector<Values>> cases[] = {
        {&density,
         {{label, one},
          {label, one, none},
          {label, one, half},
          {gray, one, one},
          {lying, one, one},
          {hollow, one, one},
          {negative, one, one},
          {beyond, one, one}}},
        {&ratio,
         {{label, half, one}, {gray, half, half}, {wide, half, half}, {beyond, half, half}}},
        {&gravity, {{label, label}, {none}, {wide}, {negative}}},
        {&boxes, {{gray}, {wide}, {hollow}}},
        {&histogram, {{label}, {gray, gray}, {lyingGray}}},
        {&otsu, {{label}, {lyingGray}, {}}}};
    for (const auto& c : cases)
        for (const Values& inputs : c.second)
            EXPECT_TRUE(c.first->applyFilter(inputs, "p", "r", 0).empty()) << c.first->getName();
    EXPECT_TRUE(log.lines().empty());
}

TEST(Measures, DensityKeepsRegionsByPixelCount) {
    Bench<Filters::Density> density;
    const Ptr in = labels(4, 2, {1, 1, 1, 2, 0, 3, 3, 0});
    const std::pair<std::pair<int, int>, std::string> cases[] = {
        {{2, 3}, "LabelImage 1 1 1 0|0 3 3 0"},
        {{1, 1}, "LabelImage 0 0 0 2|0 0 0 0"},
        {{0, 0}, "LabelImage 0 0 0 0|0 0 0 0"},
        {{3, 2}, "LabelImage 0 0 0 0|0 0 0 0"}};
    for (const auto& c : cases)
        EXPECT_EQ(text(density({in, box(c.first.first), box(c.first.second)})), c.second);
    // Metadata carried over; a label equal to the pixel count is counted like any other.
    const Ptr out = density({labels(2, 1, {2}), box(1), box(2)})[0];
    const Type::LabelImage* made = *out;
    EXPECT_EQ(text(out) + " " + made->colorSpace, "LabelImage 2 2 rgb");
    EXPECT_EQ(made->timestamp, Type::Time(5));
    EXPECT_EQ(made->horizontalAngle + made->verticalAngle, 100.0f);
    EXPECT_EQ(text(density({labels(0, 0, {}), box(0), box(9)})), "LabelImage");
}

TEST(Measures, RatioOfLabelsAndOfRegions) {
    Bench<Filters::Ratio> ratio;
    // x 0..10 and y 0..5 measure 10 by 5: the ratio is 2. A one-pixel region measures 0.
    cv::Mat mat(7, 12, CV_32SC1, cv::Scalar(0));
    mat(cv::Rect(0, 0, 11, 6)).setTo(1);
    mat.at<int>(6, 11) = 2;
    const std::pair<std::pair<float, float>, int> cases[] = {
        {{2, 2}, 66}, {{0, 0}, 1}, {{0, 2}, 67}, {{2.01f, 9}, 0}, {{-1, 1.99f}, 1}};
    for (const auto& c : cases)
        EXPECT_EQ(cv::countNonZero(
                      matOf(ratio({labels(mat), box(c.first.first), box(c.first.second)})[0])),
                  c.second);

    // Signed ratios; a flat region, an element of another type and a null one are dropped; the
    // kept elements are the very ones given.
    const Ptr wide = box(Type::Region2(0, 0, 4, 2)), flat = box(Type::Region2(0, 3, 4, 3)),
              reversed = box(Type::Region2(4, 2, 0, 0)), negative = box(Type::Region2(0, 0, -4, 2));
    const Ptr regions = box(Values{wide, flat, box(7), Ptr(), reversed, negative});
    const Values some = ratio({regions, box(-2.0f), box(2.0f)}),
                 none = ratio({regions, box(3.0f), box(1.0f)});
    const Values* kept = *some[0];
    EXPECT_EQ(*kept, (Values{wide, reversed, negative}));
    EXPECT_EQ(text(none), "Array {}");
}

TEST(Measures, GravityAndBoundingBoxInLabelOrder) {
    Bench<Filters::Gravity> gravity;
    Bench<Filters::BoundingBox> boxes;
    EXPECT_EQ(text(gravity({labels(3, 1, {1, 0, 1})})), "Array {{X=1 Y=0}}");
    EXPECT_EQ(text(gravity({labels(3, 2, {2, 0, 1, 2, 0, 0})})), "Array {{X=2 Y=0};{X=0 Y=0.5}}");
    // Label 2 of a two-pixel image equals n: never reported.
    EXPECT_EQ(text(gravity({labels(2, 1, {2})})) + text(gravity({labels(0, 0, {})})),
              "Array {}Array {}");
    // One pixel high is kept, one pixel wide (label 2) left out: only x is tested.
    EXPECT_EQ(text(boxes({labels(4, 3, {1, 1, 1, 2, 0, 0, 0, 2, 3, 3, 0, 2})})),
              "Array {{Start=[0,0] End=[2,0]};{Start=[0,2] End=[1,2]}}; Vector2 {X=4 Y=3}");
    EXPECT_EQ(text(boxes({labels(3, 2, {0})})), "Array {}; Vector2 {X=3 Y=2}");
}

TEST(Measures, RegionTablesMatchThePixelLoops) {
    Bench<Filters::Density> density;
    Bench<Filters::Ratio> ratio;
    Bench<Filters::Gravity> gravity;
    Bench<Filters::BoundingBox> boxes;
    cv::RNG rng(7);
    // The large image holds regions whose coordinate sums pass 2^24 and round in float.
    for (const cv::Size size : {cv::Size(13, 7), cv::Size(1, 9), cv::Size(2000, 60)}) {
        const cv::Mat mat = randomLabels(rng, size.width, size.height);
        const Reference reference(mat);
        const Ptr in = labels(mat);
        SCOPED_TRACE(size);
        EXPECT_TRUE(
            same(density({in, box(2), box(40)})[0], reference.kept([](const Reference::Entry& e) {
                return e.count >= 2 && e.count <= 40;
            })));
        EXPECT_TRUE(same(ratio({in, box(0.0f), box(1.5f)})[0], reference.ratio(0.0f, 1.5f)));
        EXPECT_TRUE(same(ratio({in, box(0.5f), box(4.0f)})[0], reference.ratio(0.5f, 4.0f)));
        EXPECT_EQ(text(gravity({in})) + "; " + text(boxes({in})), reference.regions());
    }
}

TEST(Measures, HistogramCountsEachChannel) {
    Bench<Filters::Histogram> histogram;
    const Ptr seven = histogram({image<Type::GrayscaleImage>(2, 2, {7})})[0];
    const Type::Histogram* gray = *seven;
    EXPECT_EQ(gray->getSize() + gray->getChannels() + gray->data(7, 0) + gray->max(), 265u);
    // Random images, the colour one a window into a larger matrix, against a plain count.
    cv::RNG rng(3);
    cv::Mat colour(23, 41, CV_8UC3), grayMat(19, 37, CV_8UC1);
    rng.fill(colour, cv::RNG::UNIFORM, 0, 256);
    rng.fill(grayMat, cv::RNG::UNIFORM, 0, 40);
    grayMat(cv::Rect(2, 3, 30, 9)).setTo(7);  // runs of equal bytes
    for (const cv::Mat& mat : {colour(cv::Rect(3, 2, 35, 20)), grayMat}) {
        const Ptr in = mat.channels() == 3 ? box(boost::make_shared<Type::ColorImage>(mat))
                                           : box(boost::make_shared<Type::GrayscaleImage>(mat));
        const Ptr out = histogram({in})[0];
        const Type::Histogram* counted = *out;
        std::vector<float> expected(256 * mat.channels(), 0.0f);
        for (int y = 0; y < mat.rows; ++y)
            for (int x = 0; x < mat.cols * mat.channels(); ++x)
                ++expected[mat.ptr<uchar>(y)[x] * mat.channels() + x % mat.channels()];
        ASSERT_EQ(counted->getChannels(), unsigned(mat.channels()));
        EXPECT_EQ(std::vector<float>(counted->getData(), counted->getData() + counted->getSize()),
                  expected);
    }
}

TEST(Measures, OtsuThresholdsAboveTheBestSplit) {
    Bench<Filters::Otsu> otsu;
    const std::pair<Ptr, std::string> cases[] = {
        // One value: the loop stops at it, the threshold stays 0.
        {image<Type::GrayscaleImage>(2, 1, {9}), "BinaryImage 1 1"},
        {image<Type::GrayscaleImage>(2, 1, {0}), "BinaryImage 0 0"},
        {image<Type::GrayscaleImage>(2, 2, {10, 200, 200, 10}), "BinaryImage 0 1|1 0"},
        {image<Type::GrayscaleImage>(4, 1, {0, 1, 2, 3}), "BinaryImage 0 0 1 1"},
        {image<Type::GrayscaleImage>(0, 0, {}), "BinaryImage"}};
    for (const auto& c : cases) EXPECT_EQ(text(otsu({c.first})), c.second);
    const Ptr made = otsu({cases[0].first})[0];
    const Type::BinaryImage* out = *made;
    EXPECT_EQ(out->colorSpace + std::to_string(out->timestamp.getTotalMicroseconds()), "rgb5");
}
