// Morphology and labelling: the square kernel against OpenCV's own call, the labelling rules the
// filters pass on, the refusals with their log lines, and the flood of Geodesic.
#include <climits>
#include <cmath>

#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>

#include "filters/morphology/dilation.h"
#include "filters/morphology/erosion.h"
#include "filters/morphology/geodesic.h"
#include "filters/morphology/improved_labelize.h"
#include "filters/morphology/labelize.h"
#include "kits/filter_kit.h"
#include "kits/log_capture.h"

using namespace filterkit;

namespace {

template <class C>
Ptr wrap(const cv::Mat& mat) {
    return box(boost::make_shared<C>(mat, "rgb", Type::Time(5)));
}

// The error lines logged, each as its category and its message, joined by "|".
std::string logged(const LogCapture& log) {
    std::string text;
    for (const LogCapture::Line& line : log.linesAtMost(kelvo::log::Error))
        text += line.category + ":" + line.message + "|";
    return text;
}

// What `logged` shows of the refusals by `filters` ("dilation Dilation" and so on) in turn.
std::string refusals(std::initializer_list<const char*> filters) {
    std::string text;
    for (auto filter = filters.begin(); filter != filters.end(); filter += 2)
        text += "tessarity.filter." + std::string(filter[0]) + ": [Invalid Input] -> " + filter[1] +
                " -> ...|";
    return text;
}

// The samples of a label image, "a b|c d".
std::string labelsOf(const Values& out) { return out.empty() ? "" : text(out[0]).substr(11); }

// "colour space and time" of an image value: the metadata the result of a filter inherits.
template <class C>
std::string metadata(const Ptr& value) {
    const C* image = *value;
    return image->colorSpace + std::to_string(image->timestamp.getTotalMicroseconds());
}

}  // namespace

TEST(Morphology, DeclaredPorts) {
    const std::string images = ":BinaryImage:GrayscaleImage:DepthImage";
    EXPECT_EQ(ports(Filters::Dilation()), "Dilation in" + images + " size:Integer | out" + images);
    EXPECT_EQ(ports(Filters::Erosion()), "Erosion in" + images + " size:Integer | out" + images);
    EXPECT_EQ(
        ports(Filters::Labelize()),
        "Labelize in:BinaryImage:DepthImage:GrayscaleImage tolerance:Integer? | out:LabelImage");
    EXPECT_EQ(
        ports(Filters::ImprovedLabelize()),
        "ImprovedLabelize inputImage:BinaryImage:DepthImage:GrayscaleImage toleranceH:Integer? "
        "toleranceV:Integer? kernel:Integer min:Float max:Float | labelizedImage:LabelImage "
        "dilatedImage:BinaryImage:DepthImage:GrayscaleImage");
    EXPECT_EQ(ports(Filters::Geodesic()), "Geodesic in:LabelImage | out:LabelImage");
}

TEST(Morphology, SquareKernelsAsOpenCVAppliesThem) {
    Bench<Filters::Dilation> dilation;
    Bench<Filters::Erosion> erosion;
    cv::RNG rng(11);
    cv::Mat bytes(6, 9, CV_8UC1), depths(7, 5, CV_16UC1);
    rng.fill(bytes, cv::RNG::UNIFORM, 0, 256);
    rng.fill(depths, cv::RNG::UNIFORM, 0, 5000);
    const Ptr inputs[] = {wrap<Type::BinaryImage>(bytes), wrap<Type::GrayscaleImage>(bytes),
                          wrap<Type::DepthImage>(depths)};
    for (const Ptr& in : inputs) {
        const cv::Mat mat = matOf(in);
        double least, greatest;
        cv::minMaxIdx(mat, &least, &greatest);
        // An even size takes the next odd one; sizes past the image's reach change nothing more.
        for (const int size : {0, 1, 2, 3, 4, 7, 40, INT_MAX - 1}) {
            SCOPED_TRACE(text(in).substr(0, 12) + std::to_string(size));
            const Ptr dilated = dilation({in, box(size)})[0], eroded = erosion({in, box(size)})[0];
            EXPECT_EQ(dilated->getType(), in->getType());
            if (size > 40) {
                EXPECT_EQ(cv::countNonZero(matOf(dilated) != greatest), 0);
                EXPECT_EQ(cv::countNonZero(matOf(eroded) != least), 0);
                continue;
            }
            const cv::Mat kernel = cv::Mat::ones(size | 1, size | 1, CV_8U);
            cv::Mat expected;
            cv::dilate(mat, expected, kernel);
            EXPECT_EQ(cv::countNonZero(matOf(dilated) != expected), 0);
            cv::erode(mat, expected, kernel);
            EXPECT_EQ(cv::countNonZero(matOf(eroded) != expected), 0);
        }
    }
    EXPECT_EQ(metadata<Type::GrayscaleImage>(dilation({inputs[1], box(3)})[0]), "rgb5");
}

TEST(Morphology, DilationAndErosionRefuseWithTheirLine) {
    LogCapture log;
    Bench<Filters::Dilation> dilation;
    Bench<Filters::Erosion> erosion;
    const Ptr gray = image<Type::GrayscaleImage>(3, 2, {1});
    const Values refused[] = {{gray, box(1.0f)},
                              {gray},
                              {gray, Ptr()},
                              {image<Type::ColorImage>(2, 2, {1}), box(1)},
                              {gray, box(-1)},
                              {image<Type::GrayscaleImage>(0, 3, {}), box(1)},
                              {wrap<Type::BinaryImage>(cv::Mat(2, 2, CV_16UC1)), box(1)}};
    std::string expected;
    for (const Values& inputs : refused) {
        EXPECT_TRUE(dilation(inputs).empty());
        EXPECT_TRUE(erosion(inputs).empty());
        expected += refusals({"dilation", "Dilation", "erosion", "Erosion"});
    }
    EXPECT_EQ(logged(log), expected);
}

TEST(Morphology, LabelizeByTheClassOfItsImage) {
    LogCapture log;
    Bench<Filters::Labelize> labelize;
    const Ptr none, gray = image<Type::GrayscaleImage>(4, 1, {5, 6, 0, 9});
    const std::pair<Values, std::string> cases[] = {
        {{gray, none}, "1 2 0 3"},  // tolerance 0 when unbound
        {{gray, box(1)}, "1 1 0 2"},
        {{image<Type::DepthImage>(4, 1, {500, 600, 0, 550}), box(100)}, "1 1 0 2"},
        // Any two lit neighbours of a binary image join, whatever the tolerance.
        {{image<Type::BinaryImage>(4, 1, {1, 200, 0, 9}), box(0)}, "1 1 0 2"}};
    for (const auto& c : cases) EXPECT_EQ(labelsOf(labelize(c.first)), c.second);
    EXPECT_EQ(metadata<Type::LabelImage>(labelize({gray, none})[0]), "rgb5");
    EXPECT_TRUE(log.lines().empty());

    const Values refused[] = {{gray},
                              {none, none},
                              {image<Type::ColorImage>(2, 1, {1}), none},
                              {box(3), none},
                              {image<Type::GrayscaleImage>(0, 0, {}), none}};
    for (const Values& inputs : refused) EXPECT_TRUE(labelize(inputs).empty());
    // The empty image reaches the labelling, which leaves no labels, and logs nothing.
    const std::string line = refusals({"labelize", "Labelize"});
    EXPECT_EQ(logged(log), line + line + line + line);
}

TEST(Morphology, ImprovedLabelizeDilatesThenBoundsByShareOfArea) {
    LogCapture log;
    Bench<Filters::ImprovedLabelize> improved;
    const Ptr none;
    // 0.1 and 0.5 of 320 x 240 are 7680 and 38400 pixels, bounds included: rows 0-23 are kept,
    // 25-48 less a pixel cleared, 50-169 kept; with one pixel more, 50-170 are cleared.
    cv::Mat bytes(240, 320, CV_8UC1, cv::Scalar(0));
    for (const cv::Range rows : {cv::Range(0, 24), cv::Range(25, 49), cv::Range(50, 170)})
        bytes.rowRange(rows).setTo(1);
    bytes.at<uchar>(48, 319) = 0;
    for (const int more : {0, 1}) {
        bytes.at<uchar>(170, 0) = uchar(more);
        const Values out =
            improved({wrap<Type::BinaryImage>(bytes), none, none, box(0), box(0.1f), box(0.5f)});
        const cv::Mat labels = matOf(out[0]);
        EXPECT_EQ(labels.at<int>(0, 0) * 100 + labels.at<int>(25, 0) * 10 + labels.at<int>(50, 0),
                  more ? 100 : 102);
        EXPECT_EQ(out.size(), 2u);
    }

    // The dilated image is labelled and comes second; tolerances across and down apart.
    const Ptr gray = image<Type::GrayscaleImage>(2, 2, {10, 12, 14, 16});
    const std::pair<Values, std::string> cases[] = {
        {{image<Type::BinaryImage>(3, 1, {1, 0, 1}), none, none, box(3), box(0.0f), box(0.0f)},
         "LabelImage 1 1 1; BinaryImage 1 1 1"},
        {{gray, box(2), box(0), box(0), box(0.0f), box(1.0f)},
         "LabelImage 1 1|2 2; GrayscaleImage 10 12|14 16"},
        {{gray, none, box(4), box(0), box(0.0f), box(1.0f)},
         "LabelImage 1 2|1 2; GrayscaleImage 10 12|14 16"},
        {{gray, none, none, box(0), box(0.0f), box(0.0f)},
         "LabelImage 1 2|3 4; GrayscaleImage 10 12|14 16"},
        // Without labels, the dilated image alone, in the first place.
        {{image<Type::ColorImage>(2, 1, {0, 9}), none, none, box(1), box(0.0f), box(0.0f)},
         "ColorImage 0,9,0 9,0,9"}};
    for (const auto& c : cases) EXPECT_EQ(text(improved(c.first)), c.second);
    EXPECT_EQ(logged(log), refusals({"labelize", "Labelize"}));

    log.clear();
    const Values refused[] = {
        {gray, none, none, box(0), box(0.0f)},
        {gray, none, none, none, box(0.0f), box(0.0f)},
        {gray, none, none, box(0), box(NAN), box(0.0f)},
        {gray, none, none, box(0), box(0.0f), box(1e30f)},
        {gray, none, none, box(-2), box(0.0f), box(0.0f)},
        {image<Type::GrayscaleImage>(0, 0, {}), none, none, box(0), box(0.0f), box(0.0f)},
        {image<Type::LabelImage>(2, 1, {1}), none, none, box(0), box(0.0f), box(0.0f)},
        {box(1), none, none, box(0), box(0.0f), box(0.0f)}};
    for (const Values& inputs : refused) EXPECT_TRUE(improved(inputs).empty());
    const std::string line = refusals({"labelize", "ImprovedLabelize"});
    EXPECT_EQ(logged(log), line + line + line + line + line + line +
                               refusals({"labelize", "Labelize", "labelize", "Labelize"}));
}

TEST(Morphology, GeodesicGrowsSeedsInQueueOrder) {
    LogCapture log;
    Bench<Filters::Geodesic> geodesic;
    const std::pair<Ptr, std::string> cases[] = {
        {image<Type::LabelImage>(3, 1, {0, 7, 0}), "7 7 7"},
        {image<Type::LabelImage>(4, 1, {5, 0, 0, 9}), "5 5 9 9"},
        {image<Type::LabelImage>(3, 2, {0}), "0 0 0|0 0 0"},
        // Ties go to the seed queued first, then to the earlier neighbour.
        {image<Type::LabelImage>(3, 3, {1, 0, 0, 0, 0, 0, 0, 0, 2}), "1 1 1|1 1 2|1 2 2"}};
    for (const auto& c : cases) EXPECT_EQ(labelsOf(geodesic({c.first})), c.second);
    EXPECT_EQ(text(cases[0].first), "LabelImage 0 7 0");  // the input untouched
    const Values refused[] = {{},
                              {Ptr()},
                              {image<Type::GrayscaleImage>(2, 1, {1})},
                              {wrap<Type::LabelImage>(cv::Mat(1, 65536, CV_32SC1, cv::Scalar(0)))}};
    for (const Values& inputs : refused) EXPECT_TRUE(geodesic(inputs).empty());
    EXPECT_EQ(text(geodesic({image<Type::LabelImage>(0, 0, {})})), "LabelImage");
    EXPECT_TRUE(log.lines().empty());

    // Each pixel takes the label of a seed at the least city-block distance from it.
    cv::RNG rng(5);
    cv::Mat seeds(20, 30, CV_32SC1, cv::Scalar(0));
    for (int i = 0; i < 12; ++i) seeds.at<int>(rng.uniform(0, 20), rng.uniform(0, 30)) = i + 1;
    const cv::Mat grown = matOf(geodesic({wrap<Type::LabelImage>(seeds)})[0]);
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 30; ++x) {
            int nearest = INT_MAX, distanceOfLabel = INT_MAX;
            for (int v = 0; v < 20; ++v)
                for (int u = 0; u < 30; ++u) {
                    if (!seeds.at<int>(v, u)) continue;
                    const int d = std::abs(u - x) + std::abs(v - y);
                    nearest = std::min(nearest, d);
                    if (seeds.at<int>(v, u) == grown.at<int>(y, x)) distanceOfLabel = d;
                }
            EXPECT_EQ(distanceOfLabel, nearest) << x << "," << y;
        }
}
