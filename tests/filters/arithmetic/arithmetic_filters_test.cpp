// The arithmetic filters: worked numbers, which results keep the input's metadata, refusals,
// and the vector paths against a plain reference on random images.
#include <cmath>
#include <functional>
#include <limits>
#include <map>

#include <gtest/gtest.h>

#include "filters/arithmetic/add.h"
#include "filters/arithmetic/invert.h"
#include "filters/arithmetic/max.h"
#include "filters/arithmetic/min.h"
#include "filters/arithmetic/multiply.h"
#include "filters/arithmetic/sub.h"
#include "filters/arithmetic/threshold.h"
#include "kits/filter_kit.h"

using namespace filterkit;

namespace {

template <class C>
Ptr row(const std::vector<double>& samples) {
    return image<C>(int(samples.size()) / C::Channels, 1, samples);
}
const auto gray = row<Type::GrayscaleImage>;
const auto colour = row<Type::ColorImage>;
const auto binary = row<Type::BinaryImage>;
const auto depth = row<Type::DepthImage>;
const float fnan = std::numeric_limits<float>::quiet_NaN();
const double dnan = std::numeric_limits<double>::quiet_NaN();
const Ptr none;

std::map<std::string, boost::shared_ptr<Filter>> family() {
    return {{"Add", boost::make_shared<Filters::Add>()},
            {"Sub", boost::make_shared<Filters::Sub>()},
            {"Multiply", boost::make_shared<Filters::Multiply>()},
            {"Min", boost::make_shared<Filters::Min>()},
            {"Max", boost::make_shared<Filters::Max>()},
            {"Invert", boost::make_shared<Filters::Invert>()},
            {"Threshold", boost::make_shared<Filters::Threshold>()}};
}

Values run(const std::string& name, const Values& inputs) {
    static const auto filters = family();
    return filters.at(name)->applyFilter(inputs, "p", "r", 0);
}

// "colourSpace time angle angle" of an image result, its time only when it is 5 (the inputs').
std::string metadata(const Values& out) {
    std::ostringstream text;
    const auto put = [&text](const auto* i) {
        if (i)
            text << i->colorSpace << " " << (i->timestamp == Type::Time(5) ? "5" : "now") << " "
                 << i->horizontalAngle << " " << i->verticalAngle;
    };
    put(static_cast<Type::ColorImage*>(*out.at(0)));
    put(static_cast<Type::GrayscaleImage*>(*out.at(0)));
    put(static_cast<Type::BinaryImage*>(*out.at(0)));
    return text.str();
}

double sampleAt(const cv::Mat& mat, int i) {
    return mat.depth() == CV_8U ? mat.ptr<uchar>()[i] : mat.ptr<ushort>()[i];
}

}  // namespace

TEST(ArithmeticFilters, DeclaredPorts) {
    const auto pair = [](const std::string& name, const std::string& images) {
        const std::string types = ":Integer:Float:Double" + images;
        return name + " left" + types + " right" + types + " | out";
    };
    EXPECT_EQ(ports(Filters::Add()), pair("Add", ":ColorImage:GrayscaleImage:BinaryImage"));
    EXPECT_EQ(ports(Filters::Sub()), pair("Sub", ":ColorImage:GrayscaleImage:DepthImage"));
    EXPECT_EQ(ports(Filters::Multiply()),
              pair("Multiply", ":ColorImage:BinaryImage:GrayscaleImage"));
    EXPECT_EQ(ports(Filters::Min()), pair("Min", ":ColorImage:GrayscaleImage"));
    EXPECT_EQ(ports(Filters::Max()), pair("Max", ":ColorImage:GrayscaleImage"));
    EXPECT_EQ(ports(Filters::Invert()),
              "Invert in:Boolean:ColorImage:GrayscaleImage:BinaryImage | out");
    EXPECT_EQ(ports(Filters::Threshold()),
              "Threshold in:ColorImage:DepthImage:GrayscaleImage ceil:Integer | out:BinaryImage");
}

TEST(ArithmeticFilters, WorkedResultsAndRefusals) {
    const Ptr foreign = box(Data(boost::make_shared<Type::ColorImage>(cv::Mat(1, 1, CV_8UC1))));
    const Ptr nullImage = box(Data(boost::shared_ptr<Type::GrayscaleImage>()));
    const Ptr emptyGray = image<Type::GrayscaleImage>(0, 0, {});
    const Ptr emptyBinary = image<Type::BinaryImage>(0, 0, {});
    const struct {
        const char* filter;
        Values inputs;
        std::string out;
    } cases[] = {
        // Integers wrap; the pair's type is the result's; no mixing.
        {"Add", {box(2147483647), box(1)}, "Integer -2147483648"},
        {"Add", {box(1.5f), box(2.25f)}, "Float 3.75f"},
        {"Sub", {box(3), box(5)}, "Integer -2"},
        {"Sub", {box(-2147483647 - 1), box(1)}, "Integer 2147483647"},
        {"Sub", {box(0.5), box(2.0)}, "Double -1.5"},
        {"Multiply", {box(65536), box(65537)}, "Integer 65536"},
        {"Multiply", {box(1.5), box(-2.0)}, "Double -3"},
        {"Min", {box(2), box(7)}, "Integer 2"},
        {"Max", {box(2), box(7)}, "Integer 7"},
        // A NaN on either side: both give right.
        {"Min", {box(1.0f), box(fnan)}, "Float nanf"},
        {"Min", {box(fnan), box(1.0f)}, "Float 1f"},
        {"Max", {box(dnan), box(1.0)}, "Double 1"},
        {"Max", {box(1.0), box(dnan)}, "Double nan"},
        {"Invert", {box(true)}, "Boolean False"},
        {"Add", {box(1), box(1.0f)}, ""},
        {"Add", {box(true), box(true)}, ""},
        {"Add", {box(1)}, ""},
        {"Add", {box(1), none}, ""},
        {"Invert", {}, ""},
        {"Invert", {box(1)}, ""},
        // Images: saturating sums, distances, normalised colour products.
        {"Add", {gray({200, 0}), gray({100, 7})}, "GrayscaleImage 255 7"},
        {"Add", {binary({1, 200}), binary({1, 100})}, "BinaryImage 2 255"},
        {"Sub", {gray({100, 200}), gray({200, 100})}, "GrayscaleImage 100 100"},
        {"Sub", {depth({1000, 5}), depth({400, 65535})}, "DepthImage 600 65530"},
        {"Sub", {colour({1, 2, 3}), colour({3, 2, 1})}, "ColorImage 2,0,2"},
        {"Min", {colour({1, 9, 3}), colour({3, 2, 1})}, "ColorImage 1,2,1"},
        {"Max", {gray({1, 9}), gray({3, 2})}, "GrayscaleImage 3 9"},
        {"Multiply", {colour({255, 128, 1}), colour({255, 128, 254})}, "ColorImage 255,64,0"},
        // Gray times an Integer is a BinaryImage of the scaled, saturated bytes.
        {"Multiply", {gray({100, 2, 0}), box(3)}, "BinaryImage 255 6 0"},
        {"Multiply", {gray({100, 2}), box(-1)}, "BinaryImage 0 0"},
        {"Multiply", {binary({0, 1, 255}), binary({255, 3, 255})}, "BinaryImage 0 1 255"},
        {"Multiply", {gray({1}), gray({1})}, ""},
        {"Multiply", {box(3), gray({1})}, ""},
        {"Multiply", {colour({1, 1, 1}), gray({1})}, ""},
        {"Add", {gray({1}), binary({1})}, ""},
        {"Invert", {gray({0, 55})}, "GrayscaleImage 255 200"},
        {"Invert", {colour({0, 55, 255})}, "ColorImage 255,200,0"},
        {"Invert", {binary({0, 1, 7})}, "BinaryImage 255 0 0"},
        // Colour: 1 above three times the ceiling, compared unsigned; gray and depth: 255.
        {"Threshold", {colour({10, 10, 10, 10, 10, 11}), box(10)}, "BinaryImage 0 1"},
        {"Threshold", {colour({255, 255, 255}), box(-1)}, "BinaryImage 0"},
        {"Threshold", {gray({0, 128, 129}), box(128)}, "BinaryImage 0 0 255"},
        {"Threshold", {gray({0}), box(-1)}, "BinaryImage 255"},
        {"Threshold", {depth({0, 4000, 4001}), box(4000)}, "BinaryImage 0 0 255"},
        {"Threshold", {gray({0}), box(1.0f)}, ""},
        // Unequal sizes where samples are paired by hand, foreign layouts and missing images
        // are refused; images without pixels give images without pixels.
        {"Sub", {gray({1, 2}), gray({1})}, ""},
        {"Min", {colour({1, 2, 3}), colour({1, 2, 3, 4, 5, 6})}, ""},
        {"Multiply", {colour({1, 2, 3}), colour({1, 2, 3, 4, 5, 6})}, ""},
        {"Sub", {foreign, foreign}, ""},
        {"Threshold", {foreign, box(1)}, ""},
        {"Invert", {nullImage}, ""},
        {"Max", {nullImage, gray({1})}, ""},
        {"Sub", {emptyGray, emptyGray}, "GrayscaleImage"},
        {"Min",
         {image<Type::ColorImage>(0, 2, {}), image<Type::ColorImage>(0, 2, {})},
         "ColorImage |"},
        {"Multiply",
         {image<Type::ColorImage>(3, 0, {}), image<Type::ColorImage>(3, 0, {})},
         "ColorImage"},
        {"Threshold", {image<Type::ColorImage>(0, 0, {}), box(0)}, "BinaryImage"},
        {"Invert", {image<Type::BinaryImage>(0, 2, {})}, "BinaryImage |"},
        {"Invert", {emptyGray}, "GrayscaleImage"},
        {"Add", {emptyGray, emptyGray}, "GrayscaleImage"},
        {"Threshold", {emptyGray, box(0)}, "BinaryImage"},
        {"Multiply", {emptyGray, box(2)}, "BinaryImage"},
        {"Multiply", {emptyBinary, emptyBinary}, "BinaryImage"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(text(run(c.filter, c.inputs)), c.out) << c.filter << " " << text(c.inputs);

    // Sizes that OpenCV pairs itself: its exception passes through.
    EXPECT_THROW(run("Add", {gray({1, 2}), gray({1, 2, 3})}), cv::Exception);
    EXPECT_THROW(run("Multiply", {binary({1, 2}), binary({1, 2, 3})}), cv::Exception);
}

TEST(ArithmeticFilters, ResultsThroughOpenCVKeepTheMetadataOthersAreNew) {
    const std::string kept = "rgb 5 60 40", made = "unknow now 0 0";
    const std::pair<const char*, Values> keep[] = {{"Add", {colour({1, 2, 3}), colour({1, 2, 3})}},
                                                   {"Invert", {gray({1})}},
                                                   {"Invert", {binary({1})}},
                                                   {"Threshold", {colour({1, 2, 3}), box(1)}},
                                                   {"Threshold", {gray({1}), box(1)}},
                                                   {"Multiply", {gray({1}), box(2)}},
                                                   {"Multiply", {binary({1}), binary({1})}}};
    for (const auto& c : keep) EXPECT_EQ(metadata(run(c.first, c.second)), kept) << c.first;
    const std::pair<const char*, Values> fresh[] = {
        {"Sub", {gray({1}), gray({1})}},
        {"Min", {colour({1, 2, 3}), colour({1, 2, 3})}},
        {"Max", {gray({1}), gray({1})}},
        {"Multiply", {colour({1, 2, 3}), colour({1, 2, 3})}}};
    for (const auto& c : fresh) EXPECT_EQ(metadata(run(c.first, c.second)), made) << c.first;
    EXPECT_EQ(run("Add", {box(1), box(2)}).at(0)->getTimestamp(), Type::Time());
}

TEST(ArithmeticFilters, VectorPathsMatchAPlainReference) {
    typedef std::function<double(double, double)> Reference;
    const struct {
        const char* filter;
        int type;
        Reference reference;
    } cases[] = {
        {"Add", CV_8UC1, [](double a, double b) { return std::min(a + b, 255.0); }},
        {"Sub", CV_8UC3, [](double a, double b) { return std::abs(a - b); }},
        {"Sub", CV_16UC1, [](double a, double b) { return std::abs(a - b); }},
        {"Min", CV_8UC3, [](double a, double b) { return std::min(a, b); }},
        {"Max", CV_8UC1, [](double a, double b) { return std::max(a, b); }},
        {"Multiply", CV_8UC3, [](double a, double b) { return std::floor(a * b / 255); }},
        {"Invert", CV_8UC3, [](double a, double) { return 255 - a; }},
        {"Invert", -1, [](double a, double) { return a ? 0.0 : 255.0; }},
    };
    cv::RNG rng(7);
    for (const cv::Size size :
         {cv::Size(1, 1), cv::Size(17, 3), cv::Size(45, 2), cv::Size(131, 3)}) {
        for (const auto& c : cases) {
            const int type = c.type < 0 ? CV_8UC1 : c.type;
            cv::Mat a(size, type), b(size, type);
            rng.fill(a, cv::RNG::UNIFORM, 0, CV_MAT_DEPTH(type) == CV_8U ? 256 : 65536);
            rng.fill(b, cv::RNG::UNIFORM, 0, CV_MAT_DEPTH(type) == CV_8U ? 256 : 65536);
            if (c.type < 0) a.setTo(0, b < 128);  // a binary image, half of it off
            const auto wrap = [&](const cv::Mat& m) {
                if (c.type < 0) return box(Data(boost::make_shared<Type::BinaryImage>(m)));
                if (type == CV_8UC3) return box(Data(boost::make_shared<Type::ColorImage>(m)));
                if (type == CV_16UC1) return box(Data(boost::make_shared<Type::DepthImage>(m)));
                return box(Data(boost::make_shared<Type::GrayscaleImage>(m)));
            };
            const Values in =
                std::string(c.filter) == "Invert" ? Values{wrap(a)} : Values{wrap(a), wrap(b)};
            const cv::Mat out = matOf(run(c.filter, in).at(0));
            int wrong = 0;
            for (int i = 0; i < int(a.total()) * a.channels(); ++i)
                wrong += sampleAt(out, i) != c.reference(sampleAt(a, i), sampleAt(b, i));
            EXPECT_EQ(wrong, 0) << c.filter << " " << size;
        }
        // The colour threshold sums each pixel; 1431655766 times 3 wraps to the bound 2.
        cv::Mat pixels(size, CV_8UC3), bytes(size, CV_8UC1);
        rng.fill(pixels, cv::RNG::UNIFORM, 0, 256);
        rng.fill(bytes, cv::RNG::UNIFORM, 0, 256);
        const Ptr in = box(Data(boost::make_shared<Type::ColorImage>(pixels)));
        const Ptr gray = box(Data(boost::make_shared<Type::GrayscaleImage>(bytes)));
        for (int ceiling : {-1, 0, 2, 100, 127, 170, 254, 255, 1431655766}) {
            const cv::Mat out = matOf(run("Threshold", {in, box(ceiling)}).at(0));
            const cv::Mat grayOut = matOf(run("Threshold", {gray, box(ceiling)}).at(0));
            int wrong = 0;
            for (int i = 0; i < int(pixels.total()); ++i) {
                const unsigned sum =
                    pixels.data[3 * i] + pixels.data[3 * i + 1] + pixels.data[3 * i + 2];
                wrong += out.data[i] != (sum > 3u * unsigned(ceiling) ? 1 : 0);
                wrong += grayOut.data[i] != (bytes.data[i] > ceiling ? 255 : 0);
            }
            EXPECT_EQ(wrong, 0) << ceiling << " " << size;
        }
    }
}
