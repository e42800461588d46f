// Accum on a stream of 640x480 images, beside OpenCV's weighted sum into the same matrix: the
// filter's time, OpenCV's, and their ratio.
#include <chrono>

#include <benchmark/benchmark.h>
#include <boost/make_shared.hpp>
#include <opencv2/core.hpp>

#include <tessarity/types/image.h>

#include "filters/functional/accum.h"
#include "graph/memory_manager.h"

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

// The blend of a new frame into the running one, in place on both sides.
template <class C>
void AccumVsAddWeighted(benchmark::State& state) {
    MemoryManager memory;
    Filters::Accum filter;
    filter.bindMemoryManager(&memory);
    const cv::Mat frame = noise(C::MatType, 6);
    cv::Mat running = noise(C::MatType, 7);
    const Values inputs{valueOf<C>(frame), boost::make_shared<Data>(0.3f)};
    filter.applyFilter({valueOf<C>(running), inputs[1]}, "p", "r", 0);  // the first is absorbed
    versusOpenCV(
        state, [&] { benchmark::DoNotOptimize(filter.applyFilter(inputs, "p", "r", 0)); },
        [&] {
            cv::addWeighted(frame, 0.3, running, 0.7, 0.0, running);
            benchmark::DoNotOptimize(running.data);
        });
}

}  // namespace

BENCHMARK_TEMPLATE(AccumVsAddWeighted, Type::ColorImage)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(AccumVsAddWeighted, Type::GrayscaleImage)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
