#include <string>

#include <benchmark/benchmark.h>
#include <tessarity/data.h>
#include <tessarity/stringhash.h>
#include <tessarity/types/image.h>
#include <boost/make_shared.hpp>
#include <opencv2/imgproc.hpp>

#include "filter_scenes.h"

using Tessarity::Data;
using Tessarity::StringHash;
namespace Type = Tessarity::Type;

static void DataFromInt(benchmark::State& state) {
    int value = 0;
    for (auto _ : state) {
        Data data(value++);
        benchmark::DoNotOptimize(data);
    }
}
BENCHMARK(DataFromInt);

static void DataFromString(benchmark::State& state) {
    const std::string value("a label longer than the small-string buffer");
    for (auto _ : state) {
        Data data(value);
        benchmark::DoNotOptimize(data);
    }
}
BENCHMARK(DataFromString);

static void DataFromSharedPointer(benchmark::State& state) {
    const boost::shared_ptr<void> payload = boost::make_shared<int>(1);
    for (auto _ : state) {
        Data data(payload);
        benchmark::DoNotOptimize(data);
    }
}
BENCHMARK(DataFromSharedPointer);

static void FloatFromIntegerData(benchmark::State& state) {
    Data data(42);
    for (auto _ : state) {
        benchmark::DoNotOptimize(data);
        float value = data;
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK(FloatFromIntegerData);

static void StringFromData(benchmark::State& state) {
    Data data(std::string("a label longer than the small-string buffer"));
    for (auto _ : state) {
        std::string value = data;
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK(StringFromData);

// Names of the lengths that processes and nested filter requests typically have.
static void StringHashFromName(benchmark::State& state) {
    const std::string name(static_cast<std::size_t>(state.range(0)), 'n');
    for (auto _ : state) {
        StringHash hash(name);
        benchmark::DoNotOptimize(hash);
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(StringHashFromName)->Arg(16)->Arg(64);

using filterbench::versusOpenCV;

// A scene of a dozen labelled rectangles on background, and the matching depths in
// millimetres: a ramp from 0 (no measurement) to beyond the far end of the scale.
static cv::Mat scene(int type) {
    cv::Mat labels(480, 640, CV_32SC1, cv::Scalar(0));
    for (int i = 1; i <= 12; ++i)
        labels(cv::Rect((i * 47) % 560, (i * 31) % 400, 80, 80)).setTo(cv::Scalar(i));
    if (type == CV_32SC1) return labels;
    cv::Mat depth(480, 640, CV_16UC1);
    for (int y = 0; y < 480; ++y)
        for (int x = 0; x < 640; ++x) depth.at<unsigned short>(y, x) = (x * 7 + y * 3) % 5000;
    return depth;
}

// False colouring the OpenCV way, with the colour table made once: down to bytes, to three
// channels, through the table. (cv::applyColorMap does the same but builds its table anew at
// each call.)
static void openCVFalseColour(const cv::Mat& source, double scale) {
    static const cv::Mat table = [] {
        cv::Mat ramp(1, 256, CV_8UC1), colours;
        for (int v = 0; v < 256; ++v) ramp.at<unsigned char>(0, v) = static_cast<unsigned char>(v);
        cv::applyColorMap(ramp, colours, cv::COLORMAP_JET);
        return colours;
    }();
    cv::Mat bytes, grey, picture;
    source.convertTo(bytes, CV_8U, scale);
    cv::cvtColor(bytes, grey, cv::COLOR_GRAY2BGR);
    cv::LUT(grey, table, picture);
    benchmark::DoNotOptimize(picture.data);
}

// The least OpenCV needs for one table lookup per pixel and a three-byte pixel out: down to
// bytes, through a one-channel table, spread to three channels. Its picture is grey.
static void openCVGreyLookup(const cv::Mat& source, double scale) {
    static const cv::Mat table = [] {
        cv::Mat ramp(1, 256, CV_8UC1);
        for (int v = 0; v < 256; ++v)
            ramp.at<unsigned char>(0, v) = static_cast<unsigned char>(255 - v);
        return ramp;
    }();
    cv::Mat bytes, looked, picture;
    source.convertTo(bytes, CV_8U, scale);
    cv::LUT(bytes, table, looked);
    cv::cvtColor(looked, picture, cv::COLOR_GRAY2BGR);
    benchmark::DoNotOptimize(picture.data);
}

typedef void (*OpenCVRendering)(const cv::Mat&, double);

static void LabelToColorImage(benchmark::State& state, OpenCVRendering openCV) {
    Type::LabelImage labels(scene(CV_32SC1));
    versusOpenCV(
        state, [&] { benchmark::DoNotOptimize(labels.toColorImage()); },
        [&] { openCV(labels.mat, 20.0); });
}
BENCHMARK_CAPTURE(LabelToColorImage, falseColour, openCVFalseColour)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(LabelToColorImage, greyLookup, openCVGreyLookup)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

static void DepthToColorImage(benchmark::State& state, OpenCVRendering openCV) {
    Type::DepthImage depth(scene(CV_16UC1));
    versusOpenCV(
        state, [&] { benchmark::DoNotOptimize(depth.toColorImage()); },
        [&] { openCV(depth.mat, 255.0 / 4000.0); });
}
BENCHMARK_CAPTURE(DepthToColorImage, falseColour, openCVFalseColour)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(DepthToColorImage, greyLookup, openCVGreyLookup)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

static Type::ColorImage colourScene() {
    cv::Mat pixels(480, 640, CV_8UC3);
    cv::randu(pixels, cv::Scalar::all(0), cv::Scalar::all(256));
    return Type::ColorImage(pixels, "rgb", Type::Time(1), 1.0f, 0.75f);
}

static void ExtractColorImage(benchmark::State& state) {
    const Type::ColorImage image = colourScene();
    versusOpenCV(
        state, [&] { benchmark::DoNotOptimize(image.extract(100, 80, 539, 399)); },
        [&] {
            cv::Mat part = image.mat(cv::Rect(100, 80, 440, 320)).clone();
            benchmark::DoNotOptimize(part.data);
        });
}
BENCHMARK(ExtractColorImage)->UseManualTime()->Unit(benchmark::kMicrosecond);

static void ScaleDownColorImage(benchmark::State& state) {
    const Type::ColorImage image = colourScene();
    const unsigned int factor = static_cast<unsigned int>(state.range(0));
    versusOpenCV(
        state, [&] { benchmark::DoNotOptimize(image.scaleDown(factor)); },
        [&] {
            cv::Mat small;
            cv::resize(image.mat, small, cv::Size(640 / factor, 480 / factor), 0, 0,
                       cv::INTER_NEAREST);
            benchmark::DoNotOptimize(small.data);
        });
}
BENCHMARK(ScaleDownColorImage)->Arg(2)->Arg(3)->UseManualTime()->Unit(benchmark::kMicrosecond);
