#include <tessarity/types/audio_buffer.h>

#include <algorithm>

#include <boost/make_shared.hpp>

#include <tessarity/types/image.h>

namespace Tessarity {
namespace Type {

namespace {

const int kWaveWidth = 320;
const int kWaveHeight = 240;

}  // namespace

AudioBuffer::AudioBuffer(unsigned int size, unsigned int channels, unsigned int sampleRate,
                         Time timestamp)
    : _size(size),
      _channels(channels),
      _data(new short[size]()),
      _ownsData(true),
      _sampleRate(sampleRate),
      _timestamp(timestamp) {}

AudioBuffer::AudioBuffer(const short* samples, unsigned int size, unsigned int channels,
                         unsigned int sampleRate, Time timestamp)
    : _size(size),
      _channels(channels),
      _data(new short[size]),
      _ownsData(true),
      _sampleRate(sampleRate),
      _timestamp(timestamp) {
    std::copy(samples, samples + size, _data);
}

AudioBuffer::AudioBuffer(short* samples, unsigned int size, unsigned int channels,
                         unsigned int sampleRate, Time timestamp)
    : _size(size),
      _channels(channels),
      _data(samples),
      _ownsData(false),
      _sampleRate(sampleRate),
      _timestamp(timestamp) {}

AudioBuffer::~AudioBuffer() {
    if (_ownsData) delete[] _data;
}

boost::shared_ptr<ColorImage> AudioBuffer::toColorImage() {
    auto picture = boost::make_shared<ColorImage>(kWaveWidth, kWaveHeight);
    picture->mat.setTo(cv::Scalar::all(0));
    const unsigned int samplesPerChannel = _size / _channels;
    // With less than one sample per channel there is no wave to draw.
    if (samplesPerChannel == 0) return picture;

    const int band = kWaveHeight / static_cast<int>(_channels);
    const int halfBand = band / 2;
    const float horizontalScale = static_cast<float>(kWaveWidth) / samplesPerChannel;
    const float verticalScale = halfBand / 32767.0f;
    for (int c = 0; c < static_cast<int>(_channels); ++c) {
        const int centre = c * band + halfBand;
        for (int x = 0; x < kWaveWidth; ++x) {
            const int sample = static_cast<int>(x / horizontalScale);
            const int h = static_cast<int>(data(sample, c) * verticalScale);
            // From the centre line to centre - h, both included. A full negative swing of the
            // last band would reach one row below the picture; that row is not drawn.
            const int top = std::max(std::min(centre, centre - h), 0);
            const int bottom = std::min(std::max(centre, centre - h), kWaveHeight - 1);
            for (int row = top; row <= bottom; ++row) picture->pixelBlue(x, row) = 255;
        }
    }
    return picture;
}

}  // namespace Type
}  // namespace Tessarity
