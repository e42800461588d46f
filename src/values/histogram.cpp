#include <tessarity/types/histogram.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <exception>

#include <boost/make_shared.hpp>

#include <tessarity/types/image.h>

#include "common/logging.h"

namespace Tessarity {
namespace Type {

namespace {

const char* const kLogCategory = "Tessarity";
const char* const kLogFile = "src/datahistogram";

const int kChartHeight = 640;

// A difference of bins as a whole number. Out of range and NaN would be undefined for a plain
// cast; they saturate, and NaN counts as 0.
long long wholePart(float value) {
    if (std::isnan(value)) return 0;
    if (value >= 0x1p63f) return LLONG_MAX;
    return static_cast<long long>(value);
}

float* allocate(unsigned int size, const char* label) {
    try {
        return new float[size];
    } catch (const std::exception& error) {
        TES_LOG(kelvo::log::Error,
                label << "Received exception during histogram creation : " << error.what());
        return nullptr;
    }
}

}  // namespace

Histogram::Histogram(const float* bins, unsigned int size, unsigned int channels)
    : _size(size),
      _channels(channels),
      _bins(allocate(size, "Histogram(const dataType*)")),
      _ownsBins(true) {
    if (_bins) std::copy(bins, bins + size, _bins);
}

Histogram::Histogram(float* bins, unsigned int size, unsigned int channels)
    : _size(size), _channels(channels), _bins(bins), _ownsBins(false) {}

Histogram::Histogram(unsigned int size, unsigned int channels)
    : _size(size), _channels(channels), _bins(allocate(size, "Histogram(...)")), _ownsBins(true) {
    if (_bins) clear();
}

Histogram::~Histogram() {
    if (_ownsBins) delete[] _bins;
}

float Histogram::min() const { return *std::min_element(_bins, _bins + _size); }

float Histogram::max() const { return *std::max_element(_bins, _bins + _size); }

float Histogram::min(int channel) const {
    float least = _bins[channel];
    for (unsigned int i = channel + _channels; i < _size; i += _channels)
        if (_bins[i] < least) least = _bins[i];
    return least;
}

float Histogram::max(int channel) const {
    float greatest = _bins[channel];
    for (unsigned int i = channel + _channels; i < _size; i += _channels)
        if (_bins[i] > greatest) greatest = _bins[i];
    return greatest;
}

unsigned int Histogram::argmax() const {
    unsigned int best = 0;
    for (unsigned int i = 1; i < _size; ++i)
        if (_bins[i] > _bins[best]) best = i;  // strictly greater: the first of equals stays
    return best;
}

std::vector<unsigned int> Histogram::argmax(unsigned int n) const {
    const unsigned int k = std::min(n, _size);
    if (k == 0) return std::vector<unsigned int>();
    if (k == 1) return std::vector<unsigned int>(1, argmax());
    std::vector<std::pair<int, float>> all(_size), best(k);
    for (unsigned int i = 0; i < _size; ++i) all[i] = std::make_pair(int(i), _bins[i]);
    std::partial_sort_copy(all.begin(), all.end(), best.begin(), best.end(), _greaterThan);
    std::vector<unsigned int> indices(k);
    for (unsigned int i = 0; i < k; ++i) indices[i] = static_cast<unsigned int>(best[i].first);
    return indices;
}

void Histogram::clear() { std::fill(_bins, _bins + _size, 0.0f); }

boost::shared_ptr<ColorImage> Histogram::toColorImage() const {
    const float lo = min();
    const long long range = wholePart(max() - lo);
    // The least power of two that brings the range within the chart by halvings that each
    // round down.
    int shift = 0;
    while ((range >> shift) > kChartHeight) ++shift;
    const long long scale = 1LL << shift;

    auto chart = boost::make_shared<ColorImage>(_size, kChartHeight);
    chart->mat.setTo(cv::Scalar(255, 255, 255));
    const cv::Vec3b black(0, 0, 0);
    const cv::Vec3b triple[3] = {cv::Vec3b(255, 0, 0), cv::Vec3b(0, 255, 0), cv::Vec3b(0, 0, 255)};
    for (unsigned int i = 0; i < _size; ++i) {
        const long long v = wholePart(_bins[i] - lo);
        if (v < scale) continue;
        const int height = static_cast<int>(v >> shift);
        const cv::Vec3b colour = _channels == 3 ? triple[i % 3] : black;
        // A bar stands on row 640, one below the picture: its lowest pixel is not drawn.
        for (int row = kChartHeight - height + 1; row < kChartHeight; ++row)
            chart->mat.at<cv::Vec3b>(row, static_cast<int>(i)) = colour;
    }
    return chart;
}

}  // namespace Type
}  // namespace Tessarity
