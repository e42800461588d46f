// Labelling of a 640x480 scene against OpenCV's bare 4-connected labelling of the same image:
// each case reports both times per call and their ratio.
#include <chrono>

#include <benchmark/benchmark.h>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <vision/labeling.h>

namespace {

// Gray ellipses on black with noise inside them, and salt in the background.
const cv::Mat& grayScene() {
    static const cv::Mat scene = [] {
        cv::RNG rng(12345);
        cv::Mat gray(480, 640, CV_8UC1, cv::Scalar(0));
        for (int i = 0; i < 80; ++i)
            cv::ellipse(gray, cv::Point(rng.uniform(0, 640), rng.uniform(0, 480)),
                        cv::Size(rng.uniform(5, 60), rng.uniform(5, 60)), rng.uniform(0, 180), 0,
                        360, cv::Scalar(rng.uniform(40, 220)), cv::FILLED);
        cv::Mat noise(gray.size(), CV_16SC1);
        rng.fill(noise, cv::RNG::NORMAL, 0, 4);
        cv::Mat noisy;
        cv::add(gray, noise, noisy, gray != 0, CV_8U);
        for (int i = 0; i < 6000; ++i)
            noisy.at<uchar>(rng.uniform(0, 480), rng.uniform(0, 640)) = uchar(rng.uniform(1, 256));
        return noisy;
    }();
    return scene;
}

const cv::Mat& binaryScene() {
    static const cv::Mat scene = grayScene() != 0;
    return scene;
}

template <typename Call>
double seconds(Call call) {
    const auto start = std::chrono::steady_clock::now();
    call();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Our call and OpenCV's alternate within each iteration, so that both meet the same load on a
// shared machine; the iteration time is ours alone.
void compare(benchmark::State& state, const cv::Mat& image, int tolerance) {
    cv::Mat_<int> labels;
    cv::Mat reference;
    double ours = 0, opencv = 0;
    for (auto _ : state) {
        const double time = seconds([&] {
            vision::connectedComponentLabeling(image, labels, tolerance, 0, 0);
            benchmark::DoNotOptimize(labels.data);
        });
        state.SetIterationTime(time);
        ours += time;
        opencv += seconds([&] {
            benchmark::DoNotOptimize(cv::connectedComponents(image, reference, 4, CV_32S));
        });
    }
    const double calls = double(state.iterations());
    state.counters["ours_ns"] = ours / calls * 1e9;
    state.counters["opencv_ns"] = opencv / calls * 1e9;
    state.counters["ratio"] = ours / opencv;
}

void BinaryTolerance255VsOpenCV(benchmark::State& state) { compare(state, binaryScene(), 255); }
BENCHMARK(BinaryTolerance255VsOpenCV)->UseManualTime()->Unit(benchmark::kMicrosecond);

void GrayTolerance10VsOpenCV(benchmark::State& state) { compare(state, grayScene(), 10); }
BENCHMARK(GrayTolerance10VsOpenCV)->UseManualTime()->Unit(benchmark::kMicrosecond);

}  // namespace
