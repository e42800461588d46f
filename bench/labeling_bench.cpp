// Labelling of a 640x480 scene against OpenCV's bare 4-connected labelling of the same image:
// each case reports both times per call and their ratio.
#include <benchmark/benchmark.h>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <vision/labeling.h>

#include "filter_scenes.h"

namespace {

void compare(benchmark::State& state, const cv::Mat& image, int tolerance) {
    cv::Mat_<int> labels;
    cv::Mat reference;
    filterbench::versusOpenCV(
        state,
        [&] {
            vision::connectedComponentLabeling(image, labels, tolerance, 0, 0);
            benchmark::DoNotOptimize(labels.data);
        },
        [&] { benchmark::DoNotOptimize(cv::connectedComponents(image, reference, 4, CV_32S)); });
}

void BinaryTolerance255VsOpenCV(benchmark::State& state) {
    compare(state, filterbench::binaryScene(), 255);
}
BENCHMARK(BinaryTolerance255VsOpenCV)->UseManualTime()->Unit(benchmark::kMicrosecond);

void GrayTolerance10VsOpenCV(benchmark::State& state) {
    compare(state, filterbench::grayScene(), 10);
}
BENCHMARK(GrayTolerance10VsOpenCV)->UseManualTime()->Unit(benchmark::kMicrosecond);

}  // namespace
