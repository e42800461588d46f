#include <tessarity/types/image.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#include <boost/make_shared.hpp>
#include <opencv2/imgproc.hpp>

namespace Tessarity {
namespace Type {

namespace {

// A bound given in pixels, rounded by adding one half and truncating. Out of range and NaN
// would be undefined for a plain cast; they saturate, and NaN counts as 0.
long long roundBound(float value) {
    const float shifted = value + 0.5f;
    if (std::isnan(shifted)) return 0;
    if (shifted >= 0x1p31f) return INT_MAX;
    if (shifted <= -0x1p31f) return INT_MIN;
    return static_cast<int>(shifted);
}

// Colours travel as 0x00BBGGRR, so that on a little-endian machine the first byte of a pixel
// is the lowest and a colour is stored by copying its bytes.
typedef std::uint32_t Rgb;
static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "colours are stored byte for byte");

inline Rgb rgb(unsigned char first, unsigned char second, unsigned char third) {
    return Rgb(first) | Rgb(second) << 8 | Rgb(third) << 16;
}

const Rgb kBlack = 0;
const Rgb kNear = 0x555555;  // (85, 85, 85): closer than the scale starts

// From red (t = 0) through green to blue (t = 1), in single precision; each byte truncated.
Rgb heat(float t) {
    const float u = 1.0f - t;
    const float u3 = u * u * u;
    const float t2 = t * t;
    return rgb(static_cast<unsigned char>(u3 * 255.0f),
               static_cast<unsigned char>((1.0f - (t2 + u3)) * 255.0f),
               static_cast<unsigned char>(t2 * 255.0f));
}

// The lesser of 1 and x, where a NaN counts as far.
inline float atMostOne(float x) { return std::min(1.0f, x); }

Rgb depthColour(unsigned short millimetres) {
    if (millimetres == 0) return kBlack;
    if (millimetres < 200) return kNear;
    return heat(atMostOne(static_cast<float>(millimetres - 200) / 3800.0f));
}

Rgb xyzColour(float metres) {
    if (metres == 0.0f) return kBlack;
    const float millimetres = metres * 1000.0f;
    if (millimetres < 300.0f) return kNear;
    return heat(atMostOne((millimetres - 300.0f) / 3700.0f));
}

// Every depth has its colour computed once: a table of 64 Ki entries, built on first use.
const std::vector<Rgb>& depthTable() {
    static const std::vector<Rgb> table = [] {
        std::vector<Rgb> colours(USHRT_MAX + 1);
        for (unsigned int v = 0; v <= USHRT_MAX; ++v)
            colours[v] = depthColour(static_cast<unsigned short>(v));
        return colours;
    }();
    return table;
}

// A picture of the source's size with the default metadata, stamped now.
boost::shared_ptr<ColorImage> pictureOf(const cv::Mat& source) {
    return boost::make_shared<ColorImage>(source.cols, source.rows);
}

// Walks the source row by row (through its step) and writes colour(sample, flat index) per
// pixel, in flat order. A row is composed in a small buffer of its own, four bytes at a time
// with the spare byte overwritten by the next pixel, and then copied out whole: the picture
// gets a few wide stores instead of one narrow store per pixel.
template <typename T, typename F>
boost::shared_ptr<ColorImage> render(const cv::Mat& source, int samplesPerPixel, F colour) {
    auto picture = pictureOf(source);
    if (picture->mat.empty()) return picture;
    const int width = source.cols;
    std::vector<unsigned char> row(3 * std::size_t(width) + 1);
    for (int y = 0, index = 0; y < source.rows; ++y) {
        const T* in = source.ptr<T>(y);
        unsigned char* composed = row.data();
        for (int x = 0; x < width; ++x, ++index) {
            const Rgb pixel = colour(in[x * samplesPerPixel], index);
            std::memcpy(composed + 3 * x, &pixel, sizeof pixel);
        }
        std::memcpy(picture->mat.ptr<unsigned char>(y), composed, 3 * std::size_t(width));
    }
    return picture;
}

}  // namespace

template <typename T, int N>
template <class C>
boost::shared_ptr<C> Image<T, N>::_clone() const {
    return boost::make_shared<C>(mat.clone(), colorSpace, timestamp, horizontalAngle,
                                 verticalAngle);
}

template <typename T, int N>
template <class C>
boost::shared_ptr<C> Image<T, N>::scaleDown(unsigned int factor) const {
    const int width = static_cast<int>(getWidth() / factor);
    const int height = static_cast<int>(getHeight() / factor);
    cv::Mat pixels;
    // cv::resize refuses an empty target or source.
    if (width > 0 && height > 0)
        cv::resize(mat, pixels, cv::Size(width, height), 0, 0, cv::INTER_NEAREST);
    else
        pixels.create(height, width, MatType);
    return boost::make_shared<C>(pixels, colorSpace, timestamp, horizontalAngle, verticalAngle);
}

template <typename T, int N>
template <class C>
boost::shared_ptr<C> Image<T, N>::extract(float x0, float y0, float x1, float y1) const {
    const long long width = mat.cols, height = mat.rows;
    const long long firstColumn = std::max(roundBound(x0), 0LL);
    const long long firstRow = std::max(roundBound(y0), 0LL);
    long long lastColumn = roundBound(x1), lastRow = roundBound(y1);
    if (lastColumn >= width) lastColumn = width - 1;
    if (lastRow >= height) lastRow = height - 1;
    // Bounds that cross (a start beyond the image, an end before it) keep nothing.
    const int columns = static_cast<int>(std::max(lastColumn - firstColumn + 1, 0LL));
    const int rows = static_cast<int>(std::max(lastRow - firstRow + 1, 0LL));

    cv::Mat pixels;
    if (columns > 0 && rows > 0)
        pixels =
            mat(cv::Rect(static_cast<int>(firstColumn), static_cast<int>(firstRow), columns, rows))
                .clone();
    else
        pixels.create(rows, columns, MatType);
    const float horizontal =
        static_cast<float>(columns) / static_cast<float>(width) * horizontalAngle;
    const float vertical = static_cast<float>(rows) / static_cast<float>(height) * verticalAngle;
    return boost::make_shared<C>(pixels, colorSpace, timestamp, horizontal, vertical);
}

// The operations every class shares, typed by the class; the template members are
// instantiated here for each class so that applications can call them too.
#define TESSARITY_IMAGE_OPERATIONS(C)                                                              \
    template boost::shared_ptr<C> Image<C::Sample, C::Channels>::scaleDown<C>(unsigned int) const; \
    template boost::shared_ptr<C> Image<C::Sample, C::Channels>::extract<C>(float, float, float,   \
                                                                            float) const;          \
    boost::shared_ptr<C> C::clone() const { return _clone<C>(); }                                  \
    boost::shared_ptr<C> C::scaleDown(unsigned int factor) const {                                 \
        return Image::scaleDown<C>(factor);                                                        \
    }                                                                                              \
    boost::shared_ptr<C> C::extract(const Region2& region) const {                                 \
        return Image::extract<C>(region.start.x(), region.start.y(), region.end.x(),               \
                                 region.end.y());                                                  \
    }                                                                                              \
    boost::shared_ptr<C> C::extract(float x0, float y0, float x1, float y1) const {                \
        return Image::extract<C>(x0, y0, x1, y1);                                                  \
    }

TESSARITY_IMAGE_OPERATIONS(ColorImage)
TESSARITY_IMAGE_OPERATIONS(GrayscaleImage)
TESSARITY_IMAGE_OPERATIONS(BinaryImage)
TESSARITY_IMAGE_OPERATIONS(LabelImage)
TESSARITY_IMAGE_OPERATIONS(DepthImage)
TESSARITY_IMAGE_OPERATIONS(XYZImage)
TESSARITY_IMAGE_OPERATIONS(MatrixImage)

#undef TESSARITY_IMAGE_OPERATIONS

boost::shared_ptr<ColorImage> GrayscaleImage::toColorImage() {
    auto picture = pictureOf(mat);
    if (!mat.empty()) cv::cvtColor(mat, picture->mat, cv::COLOR_GRAY2BGR);
    return picture;
}

boost::shared_ptr<ColorImage> BinaryImage::toColorImage() {
    auto picture = pictureOf(mat);
    if (mat.empty()) return picture;
    cv::Mat onOff;
    cv::compare(mat, 0.0, onOff, cv::CMP_GT);  // 255 where on, 0 where off
    cv::cvtColor(onOff, picture->mat, cv::COLOR_GRAY2BGR);
    return picture;
}

boost::shared_ptr<ColorImage> LabelImage::toColorImage() {
    auto picture = pictureOf(mat);
    if (picture->mat.empty()) return picture;
    const int width = mat.cols, count = mat.rows * mat.cols;
    // The flat index of each label's first pixel, by label. It grows as labels are met, so a
    // picture with few labels does not clear a table as large as itself.
    std::vector<int> first;
    // Labels come in runs, background included, so the last colour that can no longer change
    // is kept at hand, the background's to begin with, and runs of it are written four
    // pixels at a time. Rows are composed in a buffer as render() does.
    int knownLabel = 0;
    Rgb knownColour = kBlack;
    std::vector<unsigned char> row(3 * std::size_t(width) + 1);
    for (int y = 0, index = 0; y < mat.rows; ++y) {
        const int* in = mat.ptr<int>(y);
        unsigned char* composed = row.data();
        for (int x = 0; x < width; ++x, ++index) {
            while (x + 4 <= width && ((in[x] ^ knownLabel) | (in[x + 1] ^ knownLabel) |
                                      (in[x + 2] ^ knownLabel) | (in[x + 3] ^ knownLabel)) == 0) {
                for (int i = 0; i < 4; ++i) std::memcpy(composed + 3 * (x + i), &knownColour, 4);
                x += 4, index += 4;
            }
            if (x == width) break;
            const int label = in[x];
            Rgb colour = knownColour;
            if (label == 0) {
                knownLabel = 0, colour = knownColour = kBlack;
            } else if (label < 0 || label >= count) {
                // Outside the table a label is drawn as if first met here.
                colour = rgb(255, index & 0xFF, (index >> 8) & 0xFF);
            } else if (label != knownLabel) {
                if (static_cast<std::size_t>(label) >= first.size())
                    first.resize(std::min(std::max(first.size() * 2, std::size_t(label) + 1),
                                          std::size_t(count)));
                // A label first met at index 0 stores 0, which reads as "not met yet": its next
                // pixel stamps its own index, and that one stands.
                int& entry = first[label];
                if (entry == 0) entry = index;
                colour = rgb(255, entry & 0xFF, (entry >> 8) & 0xFF);
                if (entry != 0) knownLabel = label, knownColour = colour;
            }
            std::memcpy(composed + 3 * x, &colour, 4);
        }
        std::memcpy(picture->mat.ptr<unsigned char>(y), composed, 3 * std::size_t(width));
    }
    return picture;
}

void LabelImage::changeLabel(int from, int to) {
    if (from == to || mat.empty()) return;
    cv::Mat equal;
    cv::compare(mat, static_cast<double>(from), equal, cv::CMP_EQ);
    mat.setTo(to, equal);
}

boost::shared_ptr<ColorImage> DepthImage::toColorImage() {
    const Rgb* table = depthTable().data();
    return render<unsigned short>(mat, 1, [table](unsigned short v, int) { return table[v]; });
}

boost::shared_ptr<ColorImage> XYZImage::toColorImage() {
    return render<float>(mat, 3, [](float v, int) { return xyzColour(v); });
}

}  // namespace Type
}  // namespace Tessarity
