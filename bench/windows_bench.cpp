// The window filters on 640x480 pictures: Mask and ScaleDown beside the OpenCV call nearest to
// each, SNN on its own, in megapixels per second.
#include <chrono>

#include <benchmark/benchmark.h>
#include <boost/make_shared.hpp>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <tessarity/types/image.h>

#include "filters/windows/mask.h"
#include "filters/windows/scale_down.h"
#include "filters/windows/snn.h"

namespace {

using namespace Tessarity;
typedef boost::shared_ptr<Data> Ptr;
typedef std::chrono::steady_clock Clock;

const int kWidth = 640, kHeight = 480;

template <typename Call>
double seconds(Call call) {
    const Clock::time_point start = Clock::now();
    call();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// Our call and OpenCV's by turns in each iteration, on one thread, so that both meet the same
// caches and the same load; the iteration time is ours, with OpenCV's time and the ratio
// ours / OpenCV as counters.
template <typename Ours, typename Theirs>
void versusOpenCV(benchmark::State& state, Ours ours, Theirs theirs) {
    const int threads = cv::getNumThreads();
    cv::setNumThreads(1);
    double oursSeconds = 0, theirsSeconds = 0;
    for (auto _ : state) {
        const double elapsed = seconds(ours);
        oursSeconds += elapsed;
        theirsSeconds += seconds(theirs);
        state.SetIterationTime(elapsed);
    }
    const double iterations = static_cast<double>(state.iterations());
    state.counters["opencv_us"] = theirsSeconds * 1e6 / iterations;
    state.counters["ratio"] = oursSeconds / theirsSeconds;
    cv::setNumThreads(threads);
}

cv::Mat randomPixels(int type) {
    cv::Mat pixels(kHeight, kWidth, type);
    cv::randu(pixels, cv::Scalar::all(0), cv::Scalar::all(256));
    return pixels;
}

template <class C>
Ptr imageOf(const cv::Mat& pixels) {
    return boost::make_shared<Data>(boost::make_shared<C>(pixels, "rgb", Type::Time(1)));
}

void MaskColorImage(benchmark::State& state) {
    Filters::Mask mask;
    const cv::Mat on = randomPixels(CV_8UC1) > 127;
    const Ptr in = imageOf<Type::ColorImage>(randomPixels(CV_8UC3));
    const Ptr binary = imageOf<Type::BinaryImage>(on);
    const cv::Mat& pixels = static_cast<Type::ColorImage*>(*in)->mat;
    versusOpenCV(
        state,
        [&] {
            benchmark::DoNotOptimize(mask.applyFilter({binary, in}, "p", "r", 0));
        },
        [&] {
            cv::Mat result;
            pixels.copyTo(result, on);
            benchmark::DoNotOptimize(result.data);
        });
}
BENCHMARK(MaskColorImage)->UseManualTime()->Unit(benchmark::kMicrosecond);

void ScaleDownFilter(benchmark::State& state, int type) {
    Filters::ScaleDown scale;
    const cv::Mat pixels = randomPixels(type);
    const Ptr in =
        type == CV_8UC3 ? imageOf<Type::ColorImage>(pixels) : imageOf<Type::GrayscaleImage>(pixels);
    const int factor = static_cast<int>(state.range(0));
    const Ptr by = boost::make_shared<Data>(factor);
    versusOpenCV(
        state,
        [&] {
            benchmark::DoNotOptimize(scale.applyFilter({in, by}, "p", "r", 0));
        },
        [&] {
            cv::Mat small;
            cv::resize(pixels, small, cv::Size(kWidth / factor, kHeight / factor), 0, 0,
                       cv::INTER_NEAREST);
            benchmark::DoNotOptimize(small.data);
        });
}
BENCHMARK_CAPTURE(ScaleDownFilter, colour, CV_8UC3)
    ->Arg(2)
    ->Arg(3)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(ScaleDownFilter, gray, CV_8UC1)
    ->Arg(2)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

void SnnFilter(benchmark::State& state) {
    Filters::SNN snn;
    const Ptr in = imageOf<Type::GrayscaleImage>(randomPixels(CV_8UC1));
    const Ptr size = boost::make_shared<Data>(static_cast<int>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(snn.applyFilter({in, size}, "p", "r", 0));
    state.counters["megapixels_per_s"] =
        benchmark::Counter(kWidth * kHeight * 1e-6 * static_cast<double>(state.iterations()),
                           benchmark::Counter::kIsRate);
}
BENCHMARK(SnnFilter)->Arg(3)->Arg(5)->Unit(benchmark::kMicrosecond);

}  // namespace
