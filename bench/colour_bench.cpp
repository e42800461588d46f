// The colour measures on a 640x480 picture, each beside the OpenCV colour conversion that does
// the nearest work: the filter's time, OpenCV's, and their ratio.
#include <benchmark/benchmark.h>
#include <boost/make_shared.hpp>
#include <opencv2/imgproc.hpp>

#include <tessarity/types/image.h>

#include "filter_scenes.h"

#include "filters/colour/hue.h"
#include "filters/colour/luminance.h"
#include "filters/colour/saturation.h"

namespace {

using namespace Tessarity;
using filterbench::Values;
using filterbench::noise;
using filterbench::versusOpenCV;

// Luminance against the conversion to gray, Hue and Saturation against the one to HSV.
template <class F>
void measure(benchmark::State& state, cv::ColorConversionCodes code, const Values& extra) {
    F filter;
    const cv::Mat a = noise(CV_8UC3, 5);
    Values inputs{filterbench::value<Type::ColorImage>(a)};
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
