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

Ptr box(const Data& data) { return boost::make_shared<Data>(data); }
const Ptr none;

// The results of two calls one after the other.
Values operator+(Values first, const Values& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

// The results of the calls, made in order.
template <class F>
Values calls(Bench<F>& filter, std::initializer_list<Values> inputs) {
    Values results;
    for (const Values& one : inputs) results = results + filter(one);
    return results;
}

std::string logged(const LogCapture& log) {
    std::string lines;
    for (const LogCapture::Line& line : log.lines())
        lines += std::to_string(line.level) + " " + line.category + ":" + line.message + "\n";
    return lines;
}

// A picture of class C with random samples, in a matrix of its own.
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

// SNN from its definition, pixel by pixel.
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
    Bench<Filters::SlidingWindow> window;
    const Ptr first = image<Type::GrayscaleImage>(2, 1, {9, 30}), three = box(3);
    const Values passed = window({first, three});
    ASSERT_EQ(passed.size(), 1u);
    EXPECT_EQ(passed[0], first);  // the very object
    // Window (first, first, second): 9/3 + 9/3 + 3/3 and 30/3 + 30/3 + 60/3.
    const Values mean = window({image<Type::GrayscaleImage>(2, 1, {3, 60}), three});
    EXPECT_EQ(text(mean), "GrayscaleImage 7 40");
    EXPECT_EQ(static_cast<Type::GrayscaleImage*>(*mean[0])->colorSpace, "unknow");
    // Another size, class or picture size under the same key gives nothing and changes nothing.
    EXPECT_EQ(text(window({first, box(2)}) + window({image<Type::DepthImage>(2, 1, {1}), three}) +
                   window({image<Type::GrayscaleImage>(3, 1, {1}), three})),
              "");
    EXPECT_EQ(text(window({first, three})), "GrayscaleImage 7 40");  // (first, second, first)
    EXPECT_EQ(text(window({first, box(2)})), "");

    Bench<Filters::SlidingWindow> pair, single, depth, wrong;
    const Ptr full = image<Type::ColorImage>(1, 1, {255}),
              deep = image<Type::DepthImage>(1, 1, {65535});
    EXPECT_EQ(text(calls(pair, {{full, box(2)}, {full, box(2)}})),
              "ColorImage 255,255,255; ColorImage 254,254,254");
    EXPECT_EQ(text(calls(single, {{full, box(1)}, {image<Type::ColorImage>(1, 1, {7}), box(1)}})),
              "ColorImage 255,255,255; ColorImage 7,7,7");
    // The count is 16 bits wide on depth, 8 on colour and gray.
    EXPECT_EQ(text(calls(depth, {{deep, box(300)}, {deep, box(300)}})),
              "DepthImage 65535; DepthImage 65400");
    EXPECT_EQ(text(wrong({full, box(256)}) + wrong({full, box(0)}) + wrong({full, box(-1)}) +
                   wrong({full}) + wrong({full, box(2.0f)}) + wrong({none, box(2)})),
              "");
    EXPECT_EQ(log.lines().size(), 0u);
    // Another class passes once, logging once per place of the window, and ends the key.
    const Ptr label = image<Type::LabelImage>(1, 1, {1});
    EXPECT_EQ(text(calls(wrong, {{label, box(2)}, {label, box(2)}})), "LabelImage 1");
    Bench<Filters::SlidingWindow> layout;  // the same for a matrix that belies its class
    EXPECT_EQ(text(calls(layout, {{lying<Type::DepthImage>(CV_8UC1), box(1)},
                                  {lying<Type::DepthImage>(CV_8UC1), box(1)}})),
              "DepthImage 1 1|1 1");
    const std::string line =
        "2 tessarity.filter.slidingwindow: [Invalid Input] -> SlidingWindow -> ...\n";
    EXPECT_EQ(logged(log), line + line + line);
}

TEST(WindowsFilters, SlidingWindowAveragesAsTheDefinitionSays) {
    cv::RNG rng(7);
    for (int size : {1, 2, 3, 5, 17, 255}) {
        Bench<Filters::SlidingWindow> colour, deep;
        Values colours, depths;
        Ptr colourMean, depthMean;
        for (int i = 0; i < 4; ++i) {
            colours.push_back(randomImage<Type::ColorImage>(rng, 23, 5));
            depths.push_back(randomImage<Type::DepthImage>(rng, 37, 3));
            colourMean = colour({colours.back(), box(size)})[0];
            depthMean = deep({depths.back(), box(size)})[0];
        }
        // The window: the first picture size - 3 times, then the other three.
        for (auto [mean, pictures] :
             {std::make_pair(colourMean, colours), std::make_pair(depthMean, depths)}) {
            const cv::Mat got = matOf(mean);
            cv::Mat want(got.size(), got.type(), cv::Scalar::all(0));
            for (int place = 0; place < size; ++place) {
                const cv::Mat picture = matOf(pictures[std::max(0, place - size + 4)]);
                for (std::size_t s = 0; s < got.total() * got.channels(); ++s) {
                    if (got.depth() == CV_8U)
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
    const auto* out = static_cast<Type::GrayscaleImage*>(*snn({cross, box(1)})[0]);
    EXPECT_EQ(out->colorSpace + std::to_string(out->timestamp.getTotalMicroseconds()) +
                  std::to_string(out->verticalAngle),
              "rgb540.000000");
    EXPECT_EQ(log.lines().size(), 0u);
    EXPECT_EQ(text(snn({image<Type::ColorImage>(3, 3, {1}), box(3)}) + snn({cross, box(-3)}) +
                   snn({cross, box(3.0f)}) + snn({cross}) + snn({none, box(3)}) +
                   snn({lying<Type::GrayscaleImage>(CV_8UC3), box(1)})),
              "");
    const std::string line = "2 tessarity.filter.snn: [Invalid Input] -> Dilation -> ...\n";
    EXPECT_EQ(logged(log), line + line + line + line + line + line);

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
    EXPECT_EQ(text(scale({gray, box(2)})), "GrayscaleImage 1 3");
    const Values negative = scale({gray, box(-1)});
    ASSERT_EQ(negative.size(), 2u);
    EXPECT_EQ(negative[0], gray);
    EXPECT_EQ(text(negative[1]) + "|" + text(scale({gray, box(0)})) + text(scale({gray, box(2u)})),
              "GrayscaleImage|");
    EXPECT_EQ(text(scale({image<Type::XYZImage>(2, 2, {1}), box(2)})), "");
    EXPECT_EQ(logged(log), "2 tessarity.filter.scaleDown: [Invalid Input] -> ScaleDown -> ...\n");

    log.clear();
    Bench<Filters::Mask> mask;
    const Ptr ones = image<Type::BinaryImage>(2, 2, {1, 0, 255, 0});
    const Values masked = mask({ones, image<Type::DepthImage>(2, 2, {7, 8, 9, 10})});
    EXPECT_EQ(text(masked), "DepthImage 7 0|9 0");
    EXPECT_EQ(static_cast<Type::DepthImage*>(*masked[0])->colorSpace, "rgb");
    EXPECT_EQ(text(mask({ones, image<Type::XYZImage>(2, 2, {1, 2, 3})})),
              "XYZImage 1,2,3 0,0,0|1,2,3 0,0,0");
    EXPECT_THROW(mask({ones, image<Type::GrayscaleImage>(3, 2, {1})}), cv::Exception);
    EXPECT_EQ(text(mask({ones, none}) + mask({box(1), gray}) +
                   mask({ones, image<Type::MatrixImage>(2, 2, {1})})),
              "");
    EXPECT_EQ(log.lines().size(), 2u);

    Bench<Filters::Extract> extract;
    const Ptr colour = image<Type::ColorImage>(3, 2, {1, 2, 3, 4, 5, 6, 7, 8, 9});
    EXPECT_EQ(text(extract({colour, box(Type::Region2(1, 0, 9, 0))})), "ColorImage 4,5,6 7,8,9");
    EXPECT_EQ(text(extract({gray, box(Type::Region2(0, 0, 1, 1))}) + extract({colour, box(1)})),
              "");
}

TEST(WindowsFilters, DrawPaintsOnACopy) {
    Bench<Filters::Draw> draw;
    const Ptr grey = image<Type::ColorImage>(6, 6, {50});
    // The pixels that are no longer grey, as " x,y=r,g,b" in rows, or "refused".
    auto painted = [&](const Values& elements, const Ptr& colour = none) {
        const Values out = draw({grey, box(elements), colour});
        if (out.empty()) return std::string("refused");
        std::string text;
        const cv::Mat mat = matOf(out[0]);
        for (int y = 0; y < mat.rows; ++y)
            for (int x = 0; x < mat.cols; ++x) {
                const cv::Vec3b p = mat.at<cv::Vec3b>(y, x);
                if (p == cv::Vec3b(50, 50, 50)) continue;
                text += " " + std::to_string(x) + "," + std::to_string(y) + "=" +
                        std::to_string(p[0]) + "," + std::to_string(p[1]) + "," +
                        std::to_string(p[2]);
            }
        return text;
    };
    // The outline of (2, 2) to (4, 4) but its corner (4, 4).
    const Ptr square = box(Type::Region2(2, 2, 4.9f, 4));
    const std::string outline[] = {" 2,2=", " 3,2=", " 4,2=", " 2,3=", " 4,3=", " 2,4=", " 3,4="};
    std::string red, blue;
    for (const std::string& at : outline) red += at + "255,0,0", blue += at + "0,0,255";
    EXPECT_EQ(painted({square}), red);
    EXPECT_EQ(painted({square}, box("blue")), blue);
    EXPECT_EQ(painted({square}, box("mauve")) + painted({square}, box(1.0f)), red + red);
    // A black cross cut short of the last row and column; its centre white.
    const Ptr dot = box(Type::Vector2(0.5f, 0));
    EXPECT_EQ(painted({dot}),
              " 0,0=255,255,255 1,0=0,0,0 2,0=0,0,0 3,0=0,0,0 0,1=0,0,0 0,2=0,0,0 0,3=0,0,0");
    EXPECT_EQ(painted({box(Type::Vector2(5, 5)), box(Type::Region2(1, 1, 2, 1))}),
              " 1,1=0,0,0 5,2=0,0,0 5,3=0,0,0 5,4=0,0,0 2,5=0,0,0 3,5=0,0,0 4,5=0,0,0 "
              "5,5=255,255,255");
    // The first element fixes the colour of the rest; other elements are passed over.
    EXPECT_EQ(painted({box(Type::Region2(1, 1, 2, 1)), dot}),
              " 0,0=255,255,255 1,0=255,0,0 2,0=255,0,0 3,0=255,0,0 0,1=255,0,0 1,1=255,0,0 "
              "0,2=255,0,0 0,3=255,0,0");
    EXPECT_EQ(painted({dot, box(Type::Region2(5, 5, 5, 5)), none, box(1)}, box("green")),
              painted({dot}, box("green")));
    EXPECT_EQ(painted({box(Type::Region2(9, 9, -9, -9))}), "");
    // Whatever would be painted outside the picture refuses the call.
    EXPECT_EQ(painted({box(Type::Region2(4, 4, 6, 5))}) + painted({box(Type::Vector2(6, 0))}) +
                  painted({box(Type::Region2(-1, 0, 2, 0))}) +
                  painted({box(Type::Vector2(NAN, 0))}) +
                  painted({box(Type::Region2(0, 0, 3e9f, 0))}),
              "refusedrefusedrefusedrefusedrefused");
    EXPECT_EQ(text(draw({grey, box(Type::Region2(1, 1, 2, 2)), none})), text(grey));  // no Array
    EXPECT_EQ(text(grey), text(image<Type::ColorImage>(6, 6, {50})));
    EXPECT_EQ(text(draw({image<Type::GrayscaleImage>(2, 2, {0}), box(Values{}), none}) +
                   draw({grey, none, none}) + draw({grey, box(Values{})}) +
                   draw({lying<Type::ColorImage>(CV_8UC1), box(Values{}), none})),
              "");
}
