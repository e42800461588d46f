// The window and region filters: worked cases of each, their refusals and log lines, and the
// vector loops of SlidingWindow and SNN against the plain definition on random pictures.
#include <gtest/gtest.h>

#include <opencv2/core.hpp>

#include <tessarity/types/region.h>

#include "filters/windows/draw.h"
#include "filters/windows/extract.h"
#include "filters/windows/mask.h"
#include "filters/windows/scale_down.h"
#include "filters/windows/sliding_window.h"
#include "filters/windows/snn.h"
#include "kits/filter_kit.h"
#include "kits/log_capture.h"

using namespace filterkit;

namespace {

const Ptr none;

// The text of the results of the calls, made in this order.
template <class F>
std::string calls(Bench<F>& filter, std::initializer_list<Values> inputs) {
    std::string results;
    for (const Values& one : inputs) results += "[" + text(filter(one)) + "]";
    return results;
}

// The messages logged, "category:message" each, or the count of lines that repeat the first.
std::string logged(LogCapture& log) {
    const auto lines = log.lines();
    log.clear();
    if (lines.empty()) return "";
    for (const auto& line : lines)
        if (line.message != lines[0].message || line.level != 2) return "mixed";
    return lines[0].category + ":" + lines[0].message + " x" + std::to_string(lines.size());
}

template <class C>
Ptr randomImage(cv::RNG& rng, int width, int height) {
    auto made = boost::make_shared<C>(width, height);
    rng.fill(made->mat, cv::RNG::UNIFORM, 0, 1 << (8 * sizeof(typename C::Sample)));
    return boost::make_shared<Data>(made);
}

// An image of class C over a 2 by 2 matrix of another layout than its class's.
template <class C>
Ptr lying(int type) {
    return boost::make_shared<Data>(boost::make_shared<C>(cv::Mat(2, 2, type, cv::Scalar(1))));
}

cv::Mat snnReference(const cv::Mat& in, int size) {
    const int r = (size % 2 ? size : size + 1) / 2;
    const unsigned int q = ((4 * r * r + 4 * r) >> 1) + 1;
    cv::Mat out(in.size(), CV_8UC1, cv::Scalar(0));
    auto near = [](int a, int b, int c) { return std::abs(b - c) < std::abs(a - c) ? b : a; };
    for (int y = r; y < in.rows - r; ++y)
        for (int x = r; x < in.cols - r; ++x) {
            const int c = in.at<uchar>(y, x);
            unsigned int sum = c;
            for (int d = 1; d <= r; ++d)
                sum += near(in.at<uchar>(y, x - d), in.at<uchar>(y, x + d), c);
            for (int dy = 1; dy <= r; ++dy)
                for (int i = 0; i <= 2 * r; ++i)
                    sum +=
                        near(in.at<uchar>(y - dy, x + r - i), in.at<uchar>(y + dy, x - r + i), c);
            out.at<uchar>(y, x) = static_cast<uchar>(sum / q);
        }
    return out;
}

}  // namespace

TEST(WindowsFilters, DeclaredPorts) {
    EXPECT_EQ(ports(Filters::SlidingWindow()),
              "SlidingWindow in:ColorImage:GrayscaleImage:DepthImage size:Integer | out");
    EXPECT_EQ(ports(Filters::SNN()),
              "SNN in:GrayscaleImage:ColorImage size:Integer | out:BinaryImage");
    EXPECT_EQ(ports(Filters::ScaleDown()),
              "ScaleDown in:ColorImage:BinaryImage:DepthImage:GrayscaleImage:LabelImage "
              "factor:Integer | out");
    EXPECT_EQ(ports(Filters::Mask()),
              "Mask mask:BinaryImage in:ColorImage:GrayscaleImage:LabelImage:DepthImage:"
              "BinaryImage:XYZImage | out");
    EXPECT_EQ(ports(Filters::Extract()), "Extract in:ColorImage region:Region2 | out:ColorImage");
    EXPECT_EQ(ports(Filters::Draw()), "Draw in data color? | out");
    EXPECT_EQ(Filters::Draw().getDescription(), "* no description *");
}

TEST(WindowsFilters, SlidingWindowDividesFirstAndFreezesOnAChange) {
    LogCapture log;
    Bench<Filters::SlidingWindow> window, pair, single, depth, wrong, layout;
    const Ptr first = image<Type::GrayscaleImage>(2, 1, {9, 30}), three = box(3);
    EXPECT_EQ(window({first, three}), Values{first});  // the very object
    // (first, first, second): 9/3 + 9/3 + 3/3 and 30/3 + 30/3 + 60/3.
    const Values mean = window({image<Type::GrayscaleImage>(2, 1, {3, 60}), three});
    EXPECT_EQ(text(mean), "GrayscaleImage 7 40");
    EXPECT_EQ(static_cast<Type::GrayscaleImage*>(*mean[0])->colorSpace, "unknow");
    // Another size, class or picture size gives nothing and leaves the window as it was.
    EXPECT_EQ(calls(window, {{first, box(2)},
                             {image<Type::DepthImage>(2, 1, {1}), three},
                             {image<Type::GrayscaleImage>(3, 1, {1}), three},
                             {first, three},
                             {first, box(2)}}),
              "[][][][GrayscaleImage 7 40][]");
    const Ptr full = image<Type::ColorImage>(1, 1, {255}),
              deep = image<Type::DepthImage>(1, 1, {65535});
    EXPECT_EQ(calls(pair, {{full, box(2)}, {full, box(2)}}),
              "[ColorImage 255,255,255][ColorImage 254,254,254]");
    EXPECT_EQ(calls(single, {{full, box(1)}, {image<Type::ColorImage>(1, 1, {7}), box(1)}}),
              "[ColorImage 255,255,255][ColorImage 7,7,7]");
    // The count is 16 bits wide on depth, 8 on colour and gray.
    EXPECT_EQ(calls(depth, {{deep, box(300)}, {deep, box(300)}}),
              "[DepthImage 65535][DepthImage 65400]");
    EXPECT_EQ(calls(wrong, {{full, box(256)},
                            {full, box(0)},
                            {full, box(-1)},
                            {full},
                            {full, box(2.0f)},
                            {none, box(2)}}),
              "[][][][][][]");
    EXPECT_EQ(logged(log), "");
    // Another class, or a matrix that belies its class, passes once, logging once per place of
    // the window, and ends the key.
    const Ptr label = image<Type::LabelImage>(1, 1, {1}), odd = lying<Type::DepthImage>(CV_8UC1);
    EXPECT_EQ(calls(wrong, {{label, box(2)}, {label, box(2)}}) +
                  calls(layout, {{odd, box(1)}, {odd, box(1)}}),
              "[LabelImage 1][][DepthImage 1 1|1 1][]");
    EXPECT_EQ(logged(log),
              "tessarity.filter.slidingwindow: [Invalid Input] -> SlidingWindow -> ... x3");
}

TEST(WindowsFilters, SlidingWindowAveragesAsTheDefinitionSays) {
    cv::RNG rng(7);
    for (int size : {1, 2, 3, 5, 17, 255}) {
        for (bool colour : {true, false}) {
            Bench<Filters::SlidingWindow> window;
            Values pictures;
            Ptr mean;
            for (int i = 0; i < 4; ++i) {
                pictures.push_back(colour ? randomImage<Type::ColorImage>(rng, 23, 5)
                                          : randomImage<Type::DepthImage>(rng, 37, 3));
                mean = window({pictures.back(), box(size)})[0];
            }
            // The window: the first picture size - 3 times, then the other three.
            const cv::Mat got = matOf(mean);
            cv::Mat want(got.size(), got.type(), cv::Scalar::all(0));
            for (int place = 0; place < size; ++place) {
                const cv::Mat picture = matOf(pictures[std::max(0, place - size + 4)]);
                for (std::size_t s = 0; s < got.total() * got.channels(); ++s) {
                    if (colour)
                        want.data[s] += picture.data[s] / size;
                    else
                        want.ptr<ushort>()[s] += picture.ptr<ushort>()[s] / size;
                }
            }
            EXPECT_EQ(cv::norm(got, want, cv::NORM_INF), 0) << "size " << size;
        }
    }
}

TEST(WindowsFilters, SnnMeansTheNearerOfEachPair) {
    LogCapture log;
    Bench<Filters::SNN> snn;
    EXPECT_EQ(text(snn({image<Type::GrayscaleImage>(4, 3, {9}), box(3)})),
              "GrayscaleImage 0 0 0 0|0 9 9 0|0 0 0 0");
    // Centre 10, q = 5: left 20 beats right 0 and upper 20 beats lower 0 on their ties, the
    // lower 9 is nearer than the upper 0: (10 + 20 + 0 + 20 + 9) / 5.
    const Ptr cross = image<Type::GrayscaleImage>(3, 3, {0, 20, 0, 20, 10, 0, 0, 0, 9});
    EXPECT_EQ(text(snn({cross, box(3)})), "GrayscaleImage 0 0 0|0 11 0|0 0 0");
    const Ptr ramp = image<Type::GrayscaleImage>(5, 5, {0, 40, 80, 120, 160, 200});
    EXPECT_EQ(text(snn({ramp, box(4)})), text(snn({ramp, box(5)})));
    EXPECT_EQ(text(snn({image<Type::GrayscaleImage>(4, 9, {9}), box(5)})),
              text(image<Type::GrayscaleImage>(4, 9, {0})));
    EXPECT_EQ(text(snn({cross, box(0)})), text(cross));
    const Values copy = snn({cross, box(1)});
    const auto* out = static_cast<Type::GrayscaleImage*>(*copy[0]);
    EXPECT_EQ(out->colorSpace + std::to_string(out->timestamp.getTotalMicroseconds()), "rgb5");
    EXPECT_EQ(logged(log), "");
    EXPECT_EQ(calls(snn, {{image<Type::ColorImage>(3, 3, {1}), box(3)},
                          {cross, box(-3)},
                          {cross, box(3.0f)},
                          {cross},
                          {none, box(3)},
                          {lying<Type::GrayscaleImage>(CV_8UC3), box(1)}}),
              "[][][][][][]");
    EXPECT_EQ(logged(log), "tessarity.filter.snn: [Invalid Input] -> Dilation -> ... x6");

    cv::RNG rng(11);
    for (int size : {2, 3, 5, 7, 20, 21, 23}) {
        const Ptr in = randomImage<Type::GrayscaleImage>(rng, 61, 29);
        const cv::Mat got = matOf(snn({in, box(size)})[0]);
        EXPECT_EQ(cv::norm(got, snnReference(matOf(in), size), cv::NORM_INF), 0) << size;
    }
}

TEST(WindowsFilters, ScaleDownMaskAndExtract) {
    LogCapture log;
    Bench<Filters::ScaleDown> scale;
    const Ptr gray = image<Type::GrayscaleImage>(4, 2, {1, 2, 3, 4, 5, 6, 7, 8});
    EXPECT_EQ(scale({gray, box(-1)})[0], gray);
    EXPECT_EQ(calls(scale, {{gray, box(2)},
                            {gray, box(-1)},
                            {gray, box(0)},
                            {gray, box(2u)},
                            {image<Type::XYZImage>(2, 2, {1}), box(2)}}),
              "[GrayscaleImage 1 3][GrayscaleImage 1 2 3 4|5 6 7 8; GrayscaleImage][][][]");
    EXPECT_EQ(logged(log), "tessarity.filter.scaleDown: [Invalid Input] -> ScaleDown -> ... x1");

    Bench<Filters::Mask> mask;
    const Ptr ones = image<Type::BinaryImage>(2, 2, {1, 0, 255, 0});
    const Values masked = mask({ones, image<Type::DepthImage>(2, 2, {7, 8, 9, 10})});
    EXPECT_EQ(text(masked), "DepthImage 7 0|9 0");
    EXPECT_EQ(static_cast<Type::DepthImage*>(*masked[0])->colorSpace, "rgb");
    EXPECT_THROW(mask({ones, image<Type::GrayscaleImage>(3, 2, {1})}), cv::Exception);
    EXPECT_EQ(calls(mask, {{ones, image<Type::XYZImage>(2, 2, {1, 2, 3})},
                           {ones, none},
                           {box(1), gray},
                           {ones, image<Type::MatrixImage>(2, 2, {1})}}),
              "[XYZImage 1,2,3 0,0,0|1,2,3 0,0,0][][][]");
    EXPECT_EQ(logged(log), "tessarity.filter.mask: [Invalid Input] -> Mask -> ... x2");

    Bench<Filters::Extract> extract;
    const Ptr colour = image<Type::ColorImage>(3, 2, {1, 2, 3, 4, 5, 6, 7, 8, 9});
    EXPECT_EQ(calls(extract, {{colour, box(Type::Region2(1, 0, 9, 0))},
                              {gray, box(Type::Region2(0, 0, 1, 1))},
                              {colour, box(1)}}),
              "[ColorImage 4,5,6 7,8,9][][]");
}

TEST(WindowsFilters, DrawPaintsOnACopy) {
    Bench<Filters::Draw> draw;
    const Ptr grey = image<Type::ColorImage>(6, 6, {50});
    // The picture drawn on grey, a letter a pixel: . grey, R red, G green, K black, W white.
    auto drawn = [&](const Values& elements, const Ptr& colour = none) {
        const Values out = draw({grey, box(elements), colour});
        if (out.empty()) return std::string("refused");
        const cv::Mat mat = matOf(out[0]);
        std::string rows;
        for (int y = 0; y < mat.rows; ++y)
            for (int x = 0; x < mat.cols; ++x) {
                const cv::Vec3b p = mat.at<cv::Vec3b>(y, x);
                rows += (x || !y ? "" : "|") + std::string(1, p[0] == 50    ? '.'
                                                              : p[2] == 255 ? 'W'
                                                              : p[0] == 255 ? 'R'
                                                              : p[1] == 255 ? 'G'
                                                                            : 'K');
            }
        return rows;
    };
    // The outline of (2, 2) to (4, 4) but its corner (4, 4); any unknown name is red.
    const Ptr square = box(Type::Region2(2, 2, 4.9f, 4));
    const std::string outline = "......|......|..RRR.|..R.R.|..RR..|......";
    EXPECT_EQ(drawn({square}) + drawn({square}, box("mauve")) + drawn({square}, box(1.0f)),
              outline + outline + outline);
    // A cross cut short of the last row and column, its centre white; the first element fixes
    // the colour of the rest, and other elements are passed over.
    const Ptr dot = box(Type::Vector2(0.5f, 0));
    EXPECT_EQ(drawn({dot, box(Type::Region2(2, 5, 3, 5)), none, box(1)}),
              "WKKK..|K.....|K.....|K.....|......|..K...");
    EXPECT_EQ(drawn({box(Type::Region2(1, 1, 2, 1)), box(Type::Vector2(5, 5))}, box("green")),
              "......|.G....|.....G|.....G|.....G|..GGGW");
    EXPECT_EQ(drawn({box(Type::Region2(1, 1, 2, 1)), box(Type::Vector2(5, 5))}),
              "......|.R....|.....R|.....R|.....R|..RRRW");
    EXPECT_EQ(drawn({box(Type::Region2(9, 9, -9, -9))}),
              "......|......|......|......|......|......");
    // Whatever would be painted outside the picture refuses the call.
    EXPECT_EQ(drawn({box(Type::Region2(4, 4, 6, 5))}) + drawn({box(Type::Vector2(6, 0))}) +
                  drawn({box(Type::Region2(-1, 0, 2, 0))}) + drawn({box(Type::Vector2(NAN, 0))}) +
                  drawn({box(Type::Region2(0, 0, 3e9f, 0))}),
              "refusedrefusedrefusedrefusedrefused");
    EXPECT_EQ(text(draw({grey, box(Type::Region2(1, 1, 2, 2)), none})), text(grey));  // no Array
    EXPECT_EQ(text(grey), text(image<Type::ColorImage>(6, 6, {50})));
    EXPECT_EQ(calls(draw, {{image<Type::GrayscaleImage>(2, 2, {0}), box(Values{}), none},
                           {grey, none, none},
                           {grey, box(Values{})},
                           {lying<Type::ColorImage>(CV_8UC1), box(Values{}), none}}),
              "[][][][]");
}
