// Morphology and labelling on 640x480 scenes, each beside the bare OpenCV call: the labelling
// beside cv::connectedComponents with 4-connectivity, the morphology beside cv::dilate and
// cv::erode with the same kernel. Geodesic has no peer: its time and its rate stand alone.
#include <benchmark/benchmark.h>

#include <tessarity/types/image.h>

#include "filter_scenes.h"
#include "filters/morphology/dilation.h"
#include "filters/morphology/erosion.h"
#include "filters/morphology/geodesic.h"
#include "filters/morphology/labelize.h"

namespace {

using namespace filterbench;
namespace Type = Tessarity::Type;

boost::shared_ptr<Tessarity::Data> integer(int value) {
    return boost::make_shared<Tessarity::Data>(value);
}

void connectedComponents(const cv::Mat& image) {
    cv::Mat labels;
    benchmark::DoNotOptimize(cv::connectedComponents(image, labels, 4, CV_32S));
}

void LabelizeBinary(benchmark::State& state) {
    Tessarity::Filters::Labelize filter;
    versusOpenCV(state, filter, {value<Type::BinaryImage>(binaryScene()), integer(0)},
                 [] { connectedComponents(binaryScene()); });
}
BENCHMARK(LabelizeBinary)->UseManualTime()->Unit(benchmark::kMicrosecond);

void LabelizeGrayTolerance10(benchmark::State& state) {
    Tessarity::Filters::Labelize filter;
    versusOpenCV(state, filter, {value<Type::GrayscaleImage>(grayScene()), integer(10)},
                 [] { connectedComponents(grayScene()); });
}
BENCHMARK(LabelizeGrayTolerance10)->UseManualTime()->Unit(benchmark::kMicrosecond);

template <class Filter>
void morphology(benchmark::State& state, bool dilate) {
    Filter filter;
    const int size = int(state.range(0));
    const cv::Mat kernel = cv::Mat::ones(size | 1, size | 1, CV_8U);
    versusOpenCV(state, filter, {value<Type::GrayscaleImage>(grayScene()), integer(size)}, [&] {
        cv::Mat out;
        if (dilate)
            cv::dilate(grayScene(), out, kernel);
        else
            cv::erode(grayScene(), out, kernel);
        benchmark::DoNotOptimize(out.data);
    });
}

void Dilation(benchmark::State& state) { morphology<Tessarity::Filters::Dilation>(state, true); }
BENCHMARK(Dilation)->Arg(3)->Arg(7)->UseManualTime()->Unit(benchmark::kMicrosecond);

void Erosion(benchmark::State& state) { morphology<Tessarity::Filters::Erosion>(state, false); }
BENCHMARK(Erosion)->Arg(3)->Arg(7)->UseManualTime()->Unit(benchmark::kMicrosecond);

// The regions of the scene grown over its background, which is most of the picture.
void Geodesic(benchmark::State& state) {
    Tessarity::Filters::Geodesic filter;
    const Values inputs{value<Type::LabelImage>(labelScene())};
    for (auto _ : state) {
        Values out = filter.applyFilter(inputs, "bench", "bench", 0);
        benchmark::DoNotOptimize(out.data());
    }
    state.counters["Mpixel/s"] =
        benchmark::Counter(double(state.iterations()) * double(labelScene().total()) / 1e6,
                           benchmark::Counter::kIsRate);
}
BENCHMARK(Geodesic)->Unit(benchmark::kMicrosecond);

}  // namespace
