#ifndef TESSARITY_TYPES_HISTOGRAM_H
#define TESSARITY_TYPES_HISTOGRAM_H

#include <tessarity/export.h>

#include <utility>
#include <vector>

#include <boost/shared_ptr.hpp>

namespace Tessarity {
namespace Type {

class ColorImage;

// Float bins of one or more channels, interleaved: bin i of channel c stands at
// i * channels + c, and `size` counts the bins of all channels. As with images, a const
// pointer is copied and a non-const one borrowed. The searches and the rendering read the
// first bin unchecked, so a histogram has at least one bin.
class TESSARITY_EXPORT Histogram {
public:
    Histogram(const float* bins, unsigned int size, unsigned int channels);
    // The caller keeps the bins alive and frees them.
    Histogram(float* bins, unsigned int size, unsigned int channels);
    // `size` bins cleared to 0.
    Histogram(unsigned int size, unsigned int channels);
    ~Histogram();

    Histogram(const Histogram&) = delete;
    Histogram& operator=(const Histogram&) = delete;

    unsigned int getSize() const { return _size; }
    unsigned int getChannels() const { return _channels; }
    unsigned int getChannelSize() const { return _channels ? _size / _channels : 0; }
    float* getData() const { return _bins; }

    float& data(int bin, int channel) { return _bins[bin * int(_channels) + channel]; }
    const float& data(int bin, int channel) const { return _bins[bin * int(_channels) + channel]; }

    // Over all bins, or over one channel's.
    float min() const;
    float max() const;
    float min(int channel) const;
    float max(int channel) const;

    // The flat index of the greatest bin, the first of equals.
    unsigned int argmax() const;
    // The flat indices of the n greatest bins, greatest first; equals in no promised order.
    std::vector<unsigned int> argmax(unsigned int n) const;

    void clear();

    // A bar chart, one column per bin, 640 rows high, on white: black bars, or red, green
    // and blue by turns for a three-channel histogram.
    boost::shared_ptr<ColorImage> toColorImage() const;

    static bool _greaterThan(const std::pair<int, float>& a, const std::pair<int, float>& b) {
        return a.second > b.second;
    }

private:
    unsigned int _size;
    unsigned int _channels;
    float* _bins;
    bool _ownsBins;
};

}  // namespace Type
}  // namespace Tessarity

#endif
