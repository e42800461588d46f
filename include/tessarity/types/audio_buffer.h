#ifndef TESSARITY_TYPES_AUDIO_BUFFER_H
#define TESSARITY_TYPES_AUDIO_BUFFER_H

#include <tessarity/export.h>

#include <boost/shared_ptr.hpp>

#include <tessarity/time.h>

namespace Tessarity {
namespace Type {

class ColorImage;

// Interleaved signed 16-bit samples: sample s of channel c stands at s * channels + c, and
// `size` counts the samples of all channels together. As with images, a const pointer is
// copied and a non-const one borrowed; the time is kept as given, zero included.
class TESSARITY_EXPORT AudioBuffer {
public:
    // `size` samples cleared to zero.
    AudioBuffer(unsigned int size, unsigned int channels, unsigned int sampleRate, Time timestamp);
    AudioBuffer(const short* samples, unsigned int size, unsigned int channels,
                unsigned int sampleRate, Time timestamp);
    // The caller keeps the buffer alive and frees it.
    AudioBuffer(short* samples, unsigned int size, unsigned int channels, unsigned int sampleRate,
                Time timestamp);
    ~AudioBuffer();

    AudioBuffer(const AudioBuffer&) = delete;
    AudioBuffer& operator=(const AudioBuffer&) = delete;

    unsigned int getSize() const { return _size; }
    unsigned int getChannels() const { return _channels; }
    unsigned int getSampleRate() const { return _sampleRate; }
    Time getTimestamp() const { return _timestamp; }
    short* getData() const { return _data; }

    short& data(int sample, int channel) { return _data[sample * int(_channels) + channel]; }
    const short& data(int sample, int channel) const {
        return _data[sample * int(_channels) + channel];
    }

    // The waveform on a black 320 by 240 picture, one band per channel, in blue. `channels`
    // must not be 0.
    boost::shared_ptr<ColorImage> toColorImage();

private:
    unsigned int _size;
    unsigned int _channels;
    short* _data;
    bool _ownsData;
    unsigned int _sampleRate;
    Time _timestamp;
};

}  // namespace Type
}  // namespace Tessarity

#endif
