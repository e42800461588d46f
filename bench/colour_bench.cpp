// The colour measures on a 640x480 picture, each beside the OpenCV colour conversion that does
// the nearest work: the filter's time, OpenCV's, and their ratio.
#include <chrono>

#include <benchmark/benchmark.h>
#include <boost/make_shared.hpp>
#include <opencv2/imgproc.hpp>

#include <tessarity/types/image.h>

#include "filters/colour/hue.h"
#include "filters/colour/luminance.h"
#include "filters/colour/saturation.h"

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

// Luminance against the conversion to gray, Hue and Saturation against the one to HSV.
template <class F>
void measure(benchmark::State& state, cv::ColorConversionCodes code, const Values& extra) {
    F filter;
    const cv::Mat a = noise(CV_8UC3, 5);
    Values inputs{valueOf<Type::ColorImage>(a)};
    inputs.insert(inputs.end(), extra.begin(), extra.end());
    versusOpenCV(
        state, [&] { benchmark::DoNotOptimize(filter.applyFilter(inputs, "p", "r", 0)); },
        [&] {
            cv::Mat out;
            cv::cvtColor(a, out, code);
            benchmark::DoNotOptimize(out.data);
        });
}

void LuminanceVsGray(benchmark::State& state) {
    measure<Filters::Luminance>(state, cv::COLOR_RGB2GRAY, {});
}
void SaturationVsHsv(benchmark::State& state) {
    measure<Filters::Saturation>(state, cv::COLOR_RGB2HSV, {});
}
void HueVsHsv(benchmark::State& state) {
    measure<Filters::Hue>(state, cv::COLOR_RGB2HSV, {boost::make_shared<Data>(120)});
}

}  // namespace

BENCHMARK(LuminanceVsGray)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(SaturationVsHsv)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(HueVsHsv)->UseManualTime()->Unit(benchmark::kMicrosecond);
