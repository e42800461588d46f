// Pictures made from images, audio buffers and histograms, byte for byte, and the sampling,
// rounding and angle rules of scaleDown and extract.
#include <algorithm>
#include <cmath>
#include <sstream>

#include <gtest/gtest.h>
#include <tessarity/types/audio_buffer.h>
#include <tessarity/types/histogram.h>
#include <boost/make_shared.hpp>

#include "kits/image_kit.h"

using namespace imagekit;

// The column x of a picture from top to bottom, as runs of one colour: "r,g,b*count".
static std::string column(const cv::Mat& picture, int x) {
    std::ostringstream text;
    for (int y = 0; y < picture.rows;) {
        const cv::Vec3b colour = picture.at<cv::Vec3b>(y, x);
        int count = 0;
        while (y < picture.rows && picture.at<cv::Vec3b>(y, x) == colour) ++y, ++count;
        text << (text.tellp() ? " " : "") << int(colour[0]) << "," << int(colour[1]) << ","
             << int(colour[2]) << "*" << count;
    }
    return text.str();
}

template <class C>
static std::string render(int width, const std::vector<double>& samples) {
    C image = filled<C>(width, int(samples.size()) / (width * C::Channels), samples);
    const auto picture = image.toColorImage();
    EXPECT_TRUE(picture->colorSpace == "unknow" && picture->timestamp != Time() &&
                picture->horizontalAngle == 0 && picture->verticalAngle == 0);
    return rows(picture->mat);
}

TEST(Rendering, ImagesWithRowsButNoColumnsGivePicturesWithoutPixels) {
    EXPECT_TRUE(DepthImage(0, 3).toColorImage()->mat.empty());
    EXPECT_TRUE(XYZImage(0, 3).toColorImage()->mat.empty());
    EXPECT_TRUE(LabelImage(0, 3).toColorImage()->mat.empty());
}

TEST(Rendering, DepthAndPointsOnTheHeatScale) {
    // 2100 mm and 2.15 m sit halfway: t = 0.5 gives (31.875, 159.375, 63.75), truncated.
    EXPECT_EQ("0,0,0 85,85,85 255,0,0 31,159,63 0,0,255 0,0,255",
              render<DepthImage>(6, {0, 199, 200, 2100, 4000, 65535}));
    EXPECT_EQ("0,0,0 85,85,85 85,85,85 255,0,0 31,159,63 0,0,255 0,0,255 0,0,255",
              render<XYZImage>(8, {0,    9, 9, -1, 9, 9, 0.299, 9, 9, 0.3, -5, 0,
                                   2.15, 0, 0, 4,  0, 0, 1e30,  0, 0, NAN, 0,  0}));

    // Every distance, against the heat scale worked out here sample by sample.
    auto expected = [](int v) {
        if (v == 0) return cv::Vec3b(0, 0, 0);
        if (v < 200) return cv::Vec3b(85, 85, 85);
        const float t = std::min(1.0f, float(v - 200) / 3800.0f), u = 1.0f - t;
        return cv::Vec3b(u * u * u * 255.0f, (1.0f - (t * t + u * u * u)) * 255.0f, t * t * 255.0f);
    };
    DepthImage all(256, 256);
    for (int v = 0; v < 65536; ++v) all.pixel(v % 256, v / 256) = v;
    const cv::Mat picture = all.toColorImage()->mat;
    int wrong = 0;
    for (int v = 0; v < 65536; ++v) wrong += picture.at<cv::Vec3b>(v / 256, v % 256) != expected(v);
    EXPECT_EQ(0, wrong);
}

TEST(Rendering, GrayBinaryAndLabels) {
    std::vector<double> bytes;
    for (int v = 0; v < 256; ++v) bytes.push_back(v);
    std::string gray, binary = "0,0,0";
    for (int v = 0; v < 256; ++v)
        gray +=
            (v ? " " : "") + std::to_string(v) + "," + std::to_string(v) + "," + std::to_string(v);
    for (int v = 1; v < 256; ++v) binary += " 255,255,255";
    EXPECT_EQ(gray, render<GrayscaleImage>(256, bytes));
    EXPECT_EQ(binary, render<BinaryImage>(256, bytes));

    // A label is coloured by the flat index of its first pixel: (255, low byte, next byte).
    // Label 3 starts at index 0, which reads as unset: its next pixel, 5, stamps the colour
    // that stands. Labels outside 1..299 are drawn as if met first where they stand.
    std::vector<double> labels(300, 0);
    labels[0] = labels[5] = labels[7] = 3;
    labels[2] = labels[299] = 4;
    labels[270] = labels[271] = 9;
    std::fill(labels.begin() + 36, labels.begin() + 44, 6);  // a run across a row's end
    labels[290] = 300;
    labels[291] = -1;
    LabelImage image = filled<LabelImage>(20, 15, labels);
    const cv::Mat picture = image.toColorImage()->mat;
    std::string seen;
    for (int index : {0, 1, 2, 5, 7, 36, 39, 40, 43, 44, 270, 271, 290, 291, 299})
        seen += rows(picture.row(index / 20).colRange(index % 20, index % 20 + 1)) + " ";
    EXPECT_EQ(
        "255,0,0 0,0,0 255,2,0 255,5,0 255,5,0 255,36,0 255,36,0 255,36,0 255,36,0 0,0,0 "
        "255,14,1 255,14,1 255,34,1 255,35,1 255,2,0 ",
        seen);
}

TEST(Rendering, AudioWaveInOneBandPerChannel) {
    // Silence in two channels: a flat one-pixel line at the centre of each 120-row band.
    const cv::Mat quiet = AudioBuffer(100, 2, 16000, Time()).toColorImage()->mat;
    std::string expected = "0,0,0*60 0,0,255*1 0,0,0*119 0,0,255*1 0,0,0*59";
    for (int x = 0; x < 320; ++x) ASSERT_EQ(expected, column(quiet, x)) << x;

    // One channel of four samples, 80 columns each; h = sample * 120 / 32767 truncated, drawn
    // from row 120 to row 120 - h. The full negative swing ends one row below the picture.
    const short samples[] = {32767, -32768, 16384, -1};
    AudioBuffer wave(samples, 4, 1, 16000, Time(3));
    EXPECT_EQ(join(4u, 1u, 16000u, 3),
              join(wave.getSize(), wave.getChannels(), wave.getSampleRate(),
                   wave.getTimestamp().getTotalMicroseconds()));
    const cv::Mat loud = wave.toColorImage()->mat;
    EXPECT_EQ(
        "0,0,255*121 0,0,0*119 | 0,0,0*120 0,0,255*120 | 0,0,0*60 0,0,255*61 0,0,0*119 | "
        "0,0,0*120 0,0,255*1 0,0,0*119",
        column(loud, 79) + " | " + column(loud, 80) + " | " + column(loud, 160) + " | " +
            column(loud, 319));
}

TEST(Rendering, HistogramBarsStandOnTheRowBelowThePicture) {
    auto chart = [](std::vector<float> bins, unsigned int channels) {
        const cv::Mat picture =
            Histogram(static_cast<const float*>(bins.data()), bins.size(), channels)
                .toColorImage()
                ->mat;
        std::string columns = join(picture.cols, picture.rows);
        for (int x = 0; x < picture.cols; ++x) columns += "| " + column(picture, x) + " ";
        return columns;
    };
    const std::string white = "255,255,255*640 ";
    // The scale halves the range until it fits in 640: 640 fits as it is, 641 and 1281 need
    // 2, 1282 needs 4. A range of 1000 gives a bar of 500.
    EXPECT_EQ("2 640 | " + white + "| 255,255,255*141 0,0,0*499 ", chart({0, 1000}, 1));
    EXPECT_EQ("2 640 | " + white + "| 255,255,255*1 0,0,0*639 ", chart({0, 640}, 1));
    EXPECT_EQ("2 640 | " + white + "| 255,255,255*321 0,0,0*319 ", chart({0, 641}, 1));
    EXPECT_EQ("2 640 | " + white + "| 255,255,255*1 0,0,0*639 ", chart({0, 1281}, 1));
    // Below the scale (3 of 4 here), or one unit high with its only pixel on row 640, a bar
    // leaves no mark.
    EXPECT_EQ("3 640 | " + white + "| 255,255,255*321 0,0,0*319 | " + white,
              chart({0, 1282, 3}, 1));
    EXPECT_EQ("3 640 | " + white + "| " + white + "| " + white, chart({5, 6, 6.9f}, 1));
    // Three channels: the bins of a triple are red, green and blue.
    EXPECT_EQ("6 640 | " + white + "| 255,255,255*631 0,255,0*9 | 255,255,255*631 0,0,255*9 " +
                  "| 255,255,255*631 255,0,0*9 | " + white + "| " + white,
              chart({0, 10, 10, 10, 0, 0}, 3));
    const cv::Mat blank = Histogram(256, 1).toColorImage()->mat;
    EXPECT_TRUE(blank.cols == 256 && blank.rows == 640 &&
                cv::countNonZero(blank.reshape(1) != 255) == 0);
}

TEST(Geometry, ScaleDownTakesTheNearestPixelAtOrBeforeEachStep) {
    // cv::resize with INTER_NEAREST takes source column floor(x * width / newWidth).
    for (int width : {10, 9, 640, 641}) {
        for (unsigned int factor : {1u, 2u, 3u, 4u, 7u}) {
            const int height = width * 3 / 4, w = width / factor, h = height / factor;
            std::vector<double> positions;
            for (int i = 0; i < width * height; ++i) positions.push_back(i);
            const auto small = filled<MatrixImage>(width, height, positions).scaleDown(factor);
            ASSERT_EQ(join(w, h), join(small->getWidth(), small->getHeight()));
            int wrong = 0;
            for (int y = 0; y < h; ++y)
                for (int x = 0; x < w; ++x)
                    wrong += small->pixel(x, y) != (y * height / h) * width + x * width / w;
            EXPECT_EQ(0, wrong) << width << " / " << factor;
        }
    }
    EXPECT_EQ("0 0 ", join(LabelImage(2, 5).scaleDown(3)->getWidth(),
                           LabelImage(2, 5).scaleDown(3)->mat.total()));
}

TEST(Geometry, ExtractRoundsEachBoundHalfUpAndClampsIntoTheImage) {
    struct Row {
        float x0, y0, x1, y1;
        const char* expected;  // width, height, first pixel as y * 1000 + x, both angles
    };
    const Row cases[] = {
        {-3, -3, 1000, 1000, "320 240 0 1 0.5 "},
        {0, 0, 159, 119, "160 120 0 0.5 0.25 "},
        {0.4f, 0, 0.6f, 0, "2 1 0 0.00625 0.00208333 "},
        {1.5f, 2.49f, 2.5f, 2.5f, "2 2 2002 0.00625 0.00416667 "},
        {-0.6f, -1.6f, 0, 0, "1 1 0 0.003125 0.00208333 "},
        {319.4f, 239.4f, 319.5f, 239.5f, "1 1 239319 0.003125 0.00208333 "},
        {400, 0, 500, 10, "0 11 - 0 0.0229167 "},
        {10, 10, 5, 5, "0 0 - 0 0 "},
        {NAN, NAN, 1e20f, -1e20f, "320 0 - 1 0 "},
    };
    std::vector<double> positions;
    for (int y = 0; y < 240; ++y)
        for (int x = 0; x < 320; ++x) positions.push_back(y * 1000 + x);
    const LabelImage source = filled<LabelImage>(320, 240, positions);
    for (const Row& row : cases) {
        const auto part = source.extract(row.x0, row.y0, row.x1, row.y1);
        const std::string first = part->mat.empty() ? "-" : std::to_string(part->pixel(0, 0));
        EXPECT_EQ(row.expected, join(part->getWidth(), part->getHeight(), first,
                                     part->horizontalAngle, part->verticalAngle))
            << row.x0 << " " << row.y0 << " " << row.x1 << " " << row.y1;
        EXPECT_TRUE(part->colorSpace == "tag" && part->timestamp == Time(5));
    }
}
