// The colour measures and the picture of any value: worked pixels, metadata, refusals, and the
// vector paths against the formulas written out plainly.
#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

#include <tessarity/types/audio_buffer.h>

#include "filters/colour/hue.h"
#include "filters/colour/luminance.h"
#include "filters/colour/saturation.h"
#include "filters/colour/to_color_image.h"
#include "kits/filter_kit.h"

using namespace filterkit;

namespace {

Ptr colour(const std::vector<double>& samples) {
    return image<Type::ColorImage>(int(samples.size()) / 3, 1, samples);
}

// The formulas one pixel at a time, as plainly as they can be written.
int hueOf(float r, float g, float b, int reference) {
    const float a = atan2f((g - b) * 1.73f, (r + r) - g - b);
    int d = static_cast<int>(a / 6.29f * 360.0f) - reference;
    while (d < 0) d += 360;
    while (d > 360) d -= 360;
    if (d >= 181) d = 360 - d;
    return 255 - (d * 255) / 360;
}
int saturationOf(int r, int g, int b) {
    const int largest = std::max({r, g, b});
    return largest ? (largest - std::min({r, g, b})) * 255 / largest : 0;
}
int luminanceOf(int r, int g, int b) { return (66 * r + 128 * g + 25 * b + 128) >> 8; }

}  // namespace

TEST(ColourFilters, DeclaredPorts) {
    EXPECT_EQ(ports(Filters::Hue()), "Hue in:ColorImage color:Integer | out:GrayscaleImage");
    EXPECT_EQ(ports(Filters::Saturation()), "Saturation in:ColorImage | out:GrayscaleImage");
    EXPECT_EQ(ports(Filters::Luminance()), "Luminance in:ColorImage | out:GrayscaleImage");
    EXPECT_EQ(ports(Filters::ToColorImage()),
              "ToColorImage in:ColorImage:BinaryImage:LabelImage:GrayscaleImage:AudioBuffer:"
              "DepthImage:XYZImage | out:ColorImage");
}

TEST(ColourFilters, WorkedPixelsMetadataAndRefusals) {
    Bench<Filters::Hue> hue;
    Bench<Filters::Saturation> saturation;
    Bench<Filters::Luminance> luminance;
    // Red, green, cyan, gray: on the hue 255, the opposite hue 128, gray counts as red.
    const Ptr hues = colour({255, 0, 0, 0, 255, 0, 0, 255, 255, 9, 9, 9});
    EXPECT_EQ(text(hue({hues, box(0)})), "GrayscaleImage 255 171 129 255");
    EXPECT_EQ(text(hue({hues, box(720)})), text(hue({hues, box(0)})));
    EXPECT_EQ(text(hue({hues, box(-360)})), text(hue({hues, box(0)})));
    EXPECT_EQ(text(hue({hues, box(180)})), "GrayscaleImage 128 212 255 128");
    EXPECT_EQ(text(saturation({colour({255, 0, 0, 100, 100, 100, 0, 0, 0, 200, 100, 100})})),
              "GrayscaleImage 255 0 0 127");
    EXPECT_EQ(text(luminance({colour({255, 255, 255, 255, 0, 0, 0, 255, 0, 0, 0, 255})})),
              "GrayscaleImage 218 66 128 25");
    // The output carries the input's colour space, time and angles.
    const Values measured = luminance({hues});
    const auto* out = static_cast<Type::GrayscaleImage*>(*measured.at(0));
    EXPECT_EQ(out->colorSpace + " " + std::to_string(out->timestamp.getTotalMicroseconds()) + " " +
                  std::to_string(out->horizontalAngle),
              "rgb 5 60.000000");
    // Rows without pixels: no pixel is read, nor a row searched.
    const Ptr rowsOnly = image<Type::ColorImage>(0, 3, {});
    EXPECT_EQ(text(saturation({rowsOnly})) + text(hue({rowsOnly, box(0)})),
              "GrayscaleImage ||GrayscaleImage ||");

    const Ptr foreign = box(Data(boost::make_shared<Type::ColorImage>(cv::Mat(1, 1, CV_8UC1))));
    EXPECT_EQ(text(hue({hues})) + text(hue({hues, box(1.0f)})) + text(hue({box(1), box(0)})) +
                  text(saturation({hues, hues})) + text(luminance({foreign})) +
                  text(luminance({Ptr()})) +
                  text(saturation({image<Type::GrayscaleImage>(1, 1, {})})),
              "");
}

TEST(ColourFilters, VectorPathsMatchTheFormulas) {
    Bench<Filters::Saturation> saturation;
    Bench<Filters::Luminance> luminance;
    cv::RNG rng(11);
    for (const cv::Size size : {cv::Size(1, 1), cv::Size(17, 2), cv::Size(45, 3)}) {
        cv::Mat pixels(size, CV_8UC3);
        rng.fill(pixels, cv::RNG::UNIFORM, 0, 256);
        pixels.at<cv::Vec3b>(0, 0) = cv::Vec3b(0, 0, 0);  // black: a division by nothing
        const Ptr in = box(Data(boost::make_shared<Type::ColorImage>(pixels)));
        const cv::Mat s = matOf(saturation({in}).at(0)), l = matOf(luminance({in}).at(0));
        int wrong = 0;
        for (int i = 0; i < int(pixels.total()); ++i) {
            const uchar* p = pixels.data + 3 * i;
            wrong += s.data[i] != saturationOf(p[0], p[1], p[2]);
            wrong += l.data[i] != luminanceOf(p[0], p[1], p[2]);
        }
        EXPECT_EQ(wrong, 0) << size;
    }
}

// The hue depends on a pixel only through g - b and 2r - g - b: one pixel for each pair three
// bytes can make covers every angle the filter can meet, those its fast arctangent leaves to
// atan2f included.
TEST(ColourFilters, HueMatchesAtan2fOnEveryAngle) {
    std::vector<cv::Vec3b> pixels;
    for (int dy = -255; dy <= 255; ++dy)
        for (int x = -510; x <= 510; ++x) {
            // g + b = 2r - x and g - b = dy: |dy| <= 2r - x <= 510 - |dy|, x as odd as dy.
            if ((x + dy) % 2) continue;
            const int r = std::max(0, (x + std::abs(dy)) / 2), sum = 2 * r - x;
            if (r > 255 || sum > 510 - std::abs(dy)) continue;
            pixels.emplace_back(r, (sum + dy) / 2, (sum - dy) / 2);
        }
    ASSERT_EQ(pixels.size(), 195841u);
    const cv::Mat all = cv::Mat(pixels).reshape(3, 67);  // rows of 2,923: the loops' remainders too
    Bench<Filters::Hue> hue;
    const Ptr in = box(Data(boost::make_shared<Type::ColorImage>(all)));
    for (const int reference : {0, 97, -250, 359}) {
        const cv::Mat h = matOf(hue({in, box(reference)}).at(0));
        int wrong = 0;
        for (int i = 0; i < int(pixels.size()); ++i)
            wrong += h.data[i] != hueOf(pixels[i][0], pixels[i][1], pixels[i][2], reference);
        EXPECT_EQ(wrong, 0) << reference;
    }
}

TEST(ColourFilters, ToColorImageRendersByClass) {
    Bench<Filters::ToColorImage> picture;
    const Ptr in = colour({1, 2, 3});
    EXPECT_EQ(picture({in}).at(0), in);  // the very same value
    EXPECT_EQ(text(picture({image<Type::GrayscaleImage>(2, 1, {7, 9})})), "ColorImage 7,7,7 9,9,9");
    EXPECT_EQ(text(picture({image<Type::BinaryImage>(2, 1, {0, 3})})),
              "ColorImage 0,0,0 255,255,255");
    EXPECT_EQ(text(picture({image<Type::DepthImage>(3, 1, {0, 199, 4000})})),
              "ColorImage 0,0,0 85,85,85 0,0,255");
    EXPECT_EQ(matOf(picture({image<Type::LabelImage>(2, 2, {0, 1})}).at(0)).size(), cv::Size(2, 2));
    EXPECT_EQ(matOf(picture({image<Type::XYZImage>(4, 1, {0})}).at(0)).size(), cv::Size(4, 1));
    const auto audio = [](unsigned int channels) {
        return box(
            Data(boost::make_shared<Type::AudioBuffer>(100u, channels, 16000u, Type::Time())));
    };
    EXPECT_EQ(matOf(picture({audio(2)}).at(0)).size(), cv::Size(320, 240));
    // Nothing for what cannot be drawn: no channels, a foreign layout, a MatrixImage.
    EXPECT_EQ(text(picture({audio(0)})) +
                  text(picture(
                      {box(Data(boost::make_shared<Type::DepthImage>(cv::Mat(1, 1, CV_8UC1))))})) +
                  text(picture({image<Type::MatrixImage>(1, 1, {})})) + text(picture({})) +
                  text(picture({Ptr()})),
              "");
}
