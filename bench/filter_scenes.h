// The 640x480 scenes of the filter benchmarks, and a comparison of a filter's call with the
// OpenCV call nearest to it.
#pragma once

#include <chrono>
#include <vector>

#include <benchmark/benchmark.h>
#include <boost/make_shared.hpp>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <tessarity/data.h>
#include <tessarity/types/image.h>

#include "graph/filter.h"

namespace filterbench {

typedef std::vector<boost::shared_ptr<Tessarity::Data>> Values;

// Gray ellipses on black with noise inside them, and salt in the background.
inline const cv::Mat& grayScene() {
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

// The lit pixels of the gray scene, as 255.
inline const cv::Mat& binaryScene() {
    static const cv::Mat scene = grayScene() != 0;
    return scene;
}

// The gray scene in three channels, each with noise of its own.
inline const cv::Mat& colourScene() {
    static const cv::Mat scene = [] {
        cv::RNG rng(777);
        std::vector<cv::Mat> channels;
        for (int c = 0; c < 3; ++c) {
            cv::Mat noise(grayScene().size(), CV_16SC1), channel;
            rng.fill(noise, cv::RNG::NORMAL, 0, 3 + c);
            cv::add(grayScene(), noise, channel, cv::noArray(), CV_8U);
            channels.push_back(channel);
        }
        cv::Mat colour;
        cv::merge(channels, colour);
        return colour;
    }();
    return scene;
}

// The 4-connected regions of the binary scene, numbered in raster order.
inline const cv::Mat& labelScene() {
    static const cv::Mat scene = [] {
        cv::Mat labels;
        cv::connectedComponents(binaryScene(), labels, 4, CV_32S);
        return labels;
    }();
    return scene;
}

template <class C>
boost::shared_ptr<Tessarity::Data> value(const cv::Mat& mat) {
    return boost::make_shared<Tessarity::Data>(boost::make_shared<C>(mat, "rgb"));
}

// Ours and OpenCV's call alternate within each iteration, so that both meet the same caches
// and the same load of a shared machine, and on one thread, as our own loops run. The time
// reported is ours, with OpenCV's time and the ratio as counters.
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
        const Clock::time_point end = Clock::now();
        const double elapsed = std::chrono::duration<double>(middle - start).count();
        oursSeconds += elapsed;
        theirsSeconds += std::chrono::duration<double>(end - middle).count();
        state.SetIterationTime(elapsed);
    }
    const double calls = double(state.iterations());
    state.counters["ours_us"] = oursSeconds * 1e6 / calls;
    state.counters["opencv_us"] = theirsSeconds * 1e6 / calls;
    state.counters["ratio"] = oursSeconds / theirsSeconds;
    cv::setNumThreads(threads);
}

// A filter's call on `inputs` beside OpenCV's.
template <typename Theirs>
void versusOpenCV(benchmark::State& state, Tessarity::Filter& filter, const Values& inputs,
                  Theirs theirs) {
    versusOpenCV(
        state,
        [&] {
            Values out = filter.applyFilter(inputs, "bench", "bench", 0);
            benchmark::DoNotOptimize(out.data());
        },
        theirs);
}

// A 640x480 matrix of uniform noise.
inline cv::Mat noise(int type, int seed) {
    cv::Mat pixels(480, 640, type);
    cv::RNG(seed).fill(pixels, cv::RNG::UNIFORM, 0, 256);
    return pixels;
}

}  // namespace filterbench
