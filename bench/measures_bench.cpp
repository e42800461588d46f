// The image measures on 640x480 scenes, each beside the OpenCV call nearest to it: histograms
// beside cv::calcHist, Otsu beside cv::threshold's own, and the region measures beside
// cv::connectedComponentsWithStats of the binary image whose regions they measure.
#include <benchmark/benchmark.h>

#include <tessarity/types/image.h>

#include "filter_scenes.h"
#include "filters/measures/bounding_box.h"
#include "filters/measures/density.h"
#include "filters/measures/gravity.h"
#include "filters/measures/histogram.h"
#include "filters/measures/otsu.h"
#include "filters/measures/ratio.h"

namespace {

using namespace filterbench;
namespace Type = Tessarity::Type;

void calcHist(const cv::Mat& image, int channel) {
    const int bins = 256;
    const float range[] = {0, 256};
    const float* ranges[] = {range};
    cv::Mat histogram;
    cv::calcHist(&image, 1, &channel, cv::Mat(), histogram, 1, &bins, ranges);
    benchmark::DoNotOptimize(histogram.data);
}

void HistogramOfGray(benchmark::State& state) {
    Tessarity::Filters::Histogram filter;
    versusOpenCV(state, filter, {value<Type::GrayscaleImage>(grayScene())},
                 [] { calcHist(grayScene(), 0); });
}
BENCHMARK(HistogramOfGray)->UseManualTime()->Unit(benchmark::kMicrosecond);

// OpenCV counts one channel a call.
void HistogramOfColour(benchmark::State& state) {
    Tessarity::Filters::Histogram filter;
    versusOpenCV(state, filter, {value<Type::ColorImage>(colourScene())}, [] {
        for (int c = 0; c < 3; ++c) calcHist(colourScene(), c);
    });
}
BENCHMARK(HistogramOfColour)->UseManualTime()->Unit(benchmark::kMicrosecond);

void Otsu(benchmark::State& state) {
    Tessarity::Filters::Otsu filter;
    versusOpenCV(state, filter, {value<Type::GrayscaleImage>(grayScene())}, [] {
        cv::Mat out;
        cv::threshold(grayScene(), out, 0, 1, cv::THRESH_BINARY | cv::THRESH_OTSU);
        benchmark::DoNotOptimize(out.data);
    });
}
BENCHMARK(Otsu)->UseManualTime()->Unit(benchmark::kMicrosecond);

void regionsVersusStats(benchmark::State& state, Tessarity::Filter& filter, const Values& bounds) {
    Values inputs{value<Type::LabelImage>(labelScene())};
    inputs.insert(inputs.end(), bounds.begin(), bounds.end());
    versusOpenCV(state, filter, inputs, [] {
        cv::Mat labels, stats, centroids;
        benchmark::DoNotOptimize(
            cv::connectedComponentsWithStats(binaryScene(), labels, stats, centroids, 4, CV_32S));
    });
    double regions = 0;
    cv::minMaxIdx(labelScene(), nullptr, &regions);
    state.counters["regions"] = regions;
}

void Density(benchmark::State& state) {
    Tessarity::Filters::Density filter;
    regionsVersusStats(
        state, filter,
        {boost::make_shared<Tessarity::Data>(20), boost::make_shared<Tessarity::Data>(5000)});
}
BENCHMARK(Density)->UseManualTime()->Unit(benchmark::kMicrosecond);

void Ratio(benchmark::State& state) {
    Tessarity::Filters::Ratio filter;
    regionsVersusStats(
        state, filter,
        {boost::make_shared<Tessarity::Data>(0.5f), boost::make_shared<Tessarity::Data>(2.0f)});
}
BENCHMARK(Ratio)->UseManualTime()->Unit(benchmark::kMicrosecond);

void Gravity(benchmark::State& state) {
    Tessarity::Filters::Gravity filter;
    regionsVersusStats(state, filter, {});
}
BENCHMARK(Gravity)->UseManualTime()->Unit(benchmark::kMicrosecond);

void BoundingBox(benchmark::State& state) {
    Tessarity::Filters::BoundingBox filter;
    regionsVersusStats(state, filter, {});
}
BENCHMARK(BoundingBox)->UseManualTime()->Unit(benchmark::kMicrosecond);

}  // namespace
