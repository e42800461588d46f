// The arithmetic filters on 640x480 images, each beside the OpenCV operation that does the
// nearest work into a new matrix: the filter's time, OpenCV's, and their ratio.
#include <benchmark/benchmark.h>
#include <boost/make_shared.hpp>
#include <opencv2/imgproc.hpp>

#include <tessarity/types/image.h>

#include "filter_scenes.h"

#include "filters/arithmetic/add.h"
#include "filters/arithmetic/invert.h"
#include "filters/arithmetic/max.h"
#include "filters/arithmetic/min.h"
#include "filters/arithmetic/multiply.h"
#include "filters/arithmetic/sub.h"
#include "filters/arithmetic/threshold.h"

namespace {

using namespace Tessarity;
using filterbench::Values;
using filterbench::noise;
using filterbench::versusOpenCV;

void run(Filter& filter, const Values& inputs) {
    benchmark::DoNotOptimize(filter.applyFilter(inputs, "p", "r", 0));
}

// A two-image filter on colour images against an OpenCV operation of two matrices.
template <class F>
void colourPair(benchmark::State& state, void (*openCV)(const cv::Mat&, const cv::Mat&)) {
    F filter;
    const cv::Mat a = noise(CV_8UC3, 1), b = noise(CV_8UC3, 2);
    const Values inputs{filterbench::value<Type::ColorImage>(a), filterbench::value<Type::ColorImage>(b)};
    versusOpenCV(
        state, [&] { run(filter, inputs); }, [&] { openCV(a, b); });
}

#define TES_PEER(name, call)                        \
    void name(const cv::Mat& a, const cv::Mat& b) { \
        cv::Mat out;                                \
        call;                                       \
        benchmark::DoNotOptimize(out.data);         \
    }
TES_PEER(openCVAdd, cv::add(a, b, out))
TES_PEER(openCVAbsdiff, cv::absdiff(a, b, out))
TES_PEER(openCVMin, cv::min(a, b, out))
TES_PEER(openCVMax, cv::max(a, b, out))
TES_PEER(openCVMultiply, cv::multiply(a, b, out, 1.0 / 255))
#undef TES_PEER

void AddVsAdd(benchmark::State& state) { colourPair<Filters::Add>(state, openCVAdd); }
void SubVsAbsdiff(benchmark::State& state) { colourPair<Filters::Sub>(state, openCVAbsdiff); }
void MinVsMin(benchmark::State& state) { colourPair<Filters::Min>(state, openCVMin); }
void MaxVsMax(benchmark::State& state) { colourPair<Filters::Max>(state, openCVMax); }
void MultiplyVsMultiply(benchmark::State& state) {
    colourPair<Filters::Multiply>(state, openCVMultiply);
}

void InvertVsBitwiseNot(benchmark::State& state) {
    Filters::Invert filter;
    const cv::Mat a = noise(CV_8UC3, 3);
    const Values inputs{filterbench::value<Type::ColorImage>(a)};
    versusOpenCV(
        state, [&] { run(filter, inputs); },
        [&] {
            cv::Mat out;
            cv::bitwise_not(a, out);
            benchmark::DoNotOptimize(out.data);
        });
}

// The colour threshold sums each pixel into one byte; OpenCV thresholds every byte of it.
template <class C>
void ThresholdVsThreshold(benchmark::State& state) {
    Filters::Threshold filter;
    const cv::Mat a = noise(C::MatType, 4);
    const Values inputs{filterbench::value<C>(a), boost::make_shared<Data>(100)};
    versusOpenCV(
        state, [&] { run(filter, inputs); },
        [&] {
            cv::Mat out;
            cv::threshold(a, out, 100, 255, cv::THRESH_BINARY);
            benchmark::DoNotOptimize(out.data);
        });
}

}  // namespace

BENCHMARK(AddVsAdd)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(SubVsAbsdiff)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(MinVsMin)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(MaxVsMax)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(MultiplyVsMultiply)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(InvertVsBitwiseNot)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(ThresholdVsThreshold, Type::ColorImage)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(ThresholdVsThreshold, Type::GrayscaleImage)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
