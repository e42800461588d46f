// Accum on a stream of 640x480 images, beside OpenCV's weighted sum into the same matrix: the
// filter's time, OpenCV's, and their ratio.
#include <benchmark/benchmark.h>
#include <boost/make_shared.hpp>
#include <opencv2/core.hpp>

#include <tessarity/types/image.h>

#include "filter_scenes.h"

#include "filters/functional/accum.h"
#include "graph/memory_manager.h"

namespace {

using namespace Tessarity;
using filterbench::Values;
using filterbench::noise;
using filterbench::versusOpenCV;

// The blend of a new frame into the running one, in place on both sides.
template <class C>
void AccumVsAddWeighted(benchmark::State& state) {
    MemoryManager memory;
    Filters::Accum filter;
    filter.bindMemoryManager(&memory);
    const cv::Mat frame = noise(C::MatType, 6);
    cv::Mat running = noise(C::MatType, 7);
    const Values inputs{filterbench::value<C>(frame), boost::make_shared<Data>(0.3f)};
    filter.applyFilter({filterbench::value<C>(running), inputs[1]}, "p", "r", 0);  // the first is absorbed
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
