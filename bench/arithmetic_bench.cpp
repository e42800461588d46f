// The arithmetic filters on 640x480 images, each beside the OpenCV operation that does the
// nearest work into a new matrix: the filter's time, OpenCV's, and their ratio.
#include <chrono>

#include <benchmark/benchmark.h>
#include <boost/make_shared.hpp>
#include <opencv2/imgproc.hpp>

#include <tessarity/types/image.h>

#include "filters/arithmetic/add.h"
#include "filters/arithmetic/invert.h"
#include "filters/arithmetic/max.h"
#include "filters/arithmetic/min.h"
#include "filters/arithmetic/multiply.h"
#include "filters/arithmetic/sub.h"
#include "filters/arithmetic/threshold.h"

namespace {

using namespace Tessarity;
typedef std::vector<boost::shared_ptr<Data>> Values;

// Ours and OpenCV's call alternate within each iteration, on one thread, so that both meet the
// same caches and the same load of a shared machine; the iteration time is ours.
template <typename Ours, typename Theirs>
void versusOpenCV(benchmark::State& state, Ours ours, Theirs theirs) {
    typedef std::chrono::steady_clock Clock;
    const int threads = cv::getNumThreads();
    cv::setNumThreads(1);
    double oursSeconds = 0, theirsSeconds = 0;
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        ours();
        const Clock::time_point middle = Clock::now();
        theirs();
        const double elapsed = std::chrono::duration<double>(middle - start).count();
        oursSeconds += elapsed;
        theirsSeconds += std::chrono::duration<double>(Clock::now() - middle).count();
        state.SetIterationTime(elapsed);
    }
    state.counters["opencv_us"] = theirsSeconds * 1e6 / double(state.iterations());
    state.counters["ratio"] = oursSeconds / theirsSeconds;
    cv::setNumThreads(threads);
}

cv::Mat noise(int type, int seed) {
    cv::Mat pixels(480, 640, type);
    cv::RNG(seed).fill(pixels, cv::RNG::UNIFORM, 0, 256);
    return pixels;
}

template <class C>
boost::shared_ptr<Data> valueOf(const cv::Mat& pixels) {
    return boost::make_shared<Data>(boost::make_shared<C>(pixels));
}

void run(Filter& filter, const Values& inputs) {
    benchmark::DoNotOptimize(filter.applyFilter(inputs, "p", "r", 0));
}

// A two-image filter on colour images against an OpenCV operation of two matrices.
template <class F>
void colourPair(benchmark::State& state, void (*openCV)(const cv::Mat&, const cv::Mat&)) {
    F filter;
    const cv::Mat a = noise(CV_8UC3, 1), b = noise(CV_8UC3, 2);
    const Values inputs{valueOf<Type::ColorImage>(a), valueOf<Type::ColorImage>(b)};
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
    const Values inputs{valueOf<Type::ColorImage>(a)};
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
    const Values inputs{valueOf<C>(a), boost::make_shared<Data>(100)};
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
