#ifndef TESSARITY_TYPES_IMAGE_H
#define TESSARITY_TYPES_IMAGE_H

#include <tessarity/export.h>

#include <string>

#include <boost/shared_ptr.hpp>
#include <opencv2/core.hpp>

#include <tessarity/time.h>
#include <tessarity/types/region.h>

namespace Tessarity {
namespace Type {

class ColorImage;

// An image: a cv::Mat of N interleaved samples of type T per pixel, rows being the height,
// and the metadata that derived images inherit. `colorSpace` is a free tag, never read here;
// the angles are the extent the picture covers along its width and its height.
//
// Pixels arrive in one of four ways, and the constness of a pointer is the only thing that
// tells the first two apart:
//   const T*   copied at once; the caller's buffer is free again on return;
//   T*         borrowed: the matrix is a header over the caller's dense buffer, with no
//              reference count, so the buffer must outlive the image and every Data holding it;
//   w, h       a new matrix, contents not cleared;
//   cv::Mat    shared with the caller through OpenCV's reference count.
// A default (zero) time is replaced by the time of construction.
template <typename T, int N>
class TESSARITY_EXPORT Image {
public:
    typedef T Sample;
    static constexpr int Channels = N;
    static constexpr int MatType = CV_MAKETYPE(cv::traits::Depth<T>::value, N);

    Image(const T* pixels, unsigned int width, unsigned int height,
          const std::string& colorSpace = "unknow", const Time& time = Time(),
          float horizontalAngle = 0.0f, float verticalAngle = 0.0f)
        : Image(_header(const_cast<T*>(pixels), width, height).clone(), colorSpace, time,
                horizontalAngle, verticalAngle) {}

    Image(T* pixels, unsigned int width, unsigned int height,
          const std::string& colorSpace = "unknow", const Time& time = Time(),
          float horizontalAngle = 0.0f, float verticalAngle = 0.0f)
        : Image(_header(pixels, width, height), colorSpace, time, horizontalAngle, verticalAngle) {}

    Image(unsigned int width, unsigned int height, const std::string& colorSpace = "unknow",
          const Time& time = Time(), float horizontalAngle = 0.0f, float verticalAngle = 0.0f)
        : Image(cv::Mat(static_cast<int>(height), static_cast<int>(width), MatType), colorSpace,
                time, horizontalAngle, verticalAngle) {}

    // The matrix type is not checked: it is the caller's word that it fits the class.
    Image(const cv::Mat& mat, const std::string& colorSpace = "unknow", const Time& time = Time(),
          float horizontalAngle = 0.0f, float verticalAngle = 0.0f)
        : mat(mat),
          colorSpace(colorSpace),
          timestamp(time == Time() ? Time::now() : time),
          horizontalAngle(horizontalAngle),
          verticalAngle(verticalAngle) {}

    Image(const Image&) = default;
    Image& operator=(const Image&) = default;
    virtual ~Image() = default;

    unsigned int getWidth() const { return static_cast<unsigned int>(mat.cols); }
    unsigned int getHeight() const { return static_cast<unsigned int>(mat.rows); }

    // Width and height divided by `factor` (not 0), sampled by cv::resize with INTER_NEAREST;
    // the metadata is kept. A size that divides down to nothing gives an image without pixels.
    template <class C>
    boost::shared_ptr<C> scaleDown(unsigned int factor) const;

    // A copy of the columns x0..x1 and rows y0..y1, all inclusive, each bound rounded half up
    // on its own and clamped into the image. The angles shrink with the share of the width
    // and of the height that is kept.
    template <class C>
    boost::shared_ptr<C> extract(float x0, float y0, float x1, float y1) const;

    cv::Mat mat;
    std::string colorSpace;
    Time timestamp;
    float horizontalAngle;
    float verticalAngle;

protected:
    template <class C>
    boost::shared_ptr<C> _clone() const;

    // The sample `channel` of the pixel (x, y), through the row step so that borrowed and
    // extracted images are addressed alike.
    T& _sample(int x, int y, int channel) { return mat.ptr<T>(y)[x * N + channel]; }
    const T& _sample(int x, int y, int channel) const { return mat.ptr<T>(y)[x * N + channel]; }

private:
    static cv::Mat _header(T* pixels, unsigned int width, unsigned int height) {
        return cv::Mat(static_cast<int>(height), static_cast<int>(width), MatType, pixels);
    }
};

class TESSARITY_EXPORT ColorImage : public Image<unsigned char, 3> {
public:
    using Image::Image;

    boost::shared_ptr<ColorImage> clone() const;
    boost::shared_ptr<ColorImage> scaleDown(unsigned int factor) const;
    boost::shared_ptr<ColorImage> extract(const Region2& region) const;
    boost::shared_ptr<ColorImage> extract(float x0, float y0, float x1, float y1) const;

    unsigned char& pixelRed(int x, int y) { return _sample(x, y, 0); }
    unsigned char& pixelGreen(int x, int y) { return _sample(x, y, 1); }
    unsigned char& pixelBlue(int x, int y) { return _sample(x, y, 2); }
    const unsigned char& pixelRed(int x, int y) const { return _sample(x, y, 0); }
    const unsigned char& pixelGreen(int x, int y) const { return _sample(x, y, 1); }
    const unsigned char& pixelBlue(int x, int y) const { return _sample(x, y, 2); }
};

// All three bytes of a pixel are its sample.
class TESSARITY_EXPORT GrayscaleImage : public Image<unsigned char, 1> {
public:
    using Image::Image;

    boost::shared_ptr<GrayscaleImage> clone() const;
    boost::shared_ptr<GrayscaleImage> scaleDown(unsigned int factor) const;
    boost::shared_ptr<GrayscaleImage> extract(const Region2& region) const;
    boost::shared_ptr<GrayscaleImage> extract(float x0, float y0, float x1, float y1) const;
    boost::shared_ptr<ColorImage> toColorImage();

    unsigned char& pixel(int x, int y) { return _sample(x, y, 0); }
    const unsigned char& pixel(int x, int y) const { return _sample(x, y, 0); }
};

// 0 is off, anything above is on; rendered black and white.
class TESSARITY_EXPORT BinaryImage : public Image<unsigned char, 1> {
public:
    using Image::Image;

    boost::shared_ptr<BinaryImage> clone() const;
    boost::shared_ptr<BinaryImage> scaleDown(unsigned int factor) const;
    boost::shared_ptr<BinaryImage> extract(const Region2& region) const;
    boost::shared_ptr<BinaryImage> extract(float x0, float y0, float x1, float y1) const;
    boost::shared_ptr<ColorImage> toColorImage();

    unsigned char& pixel(int x, int y) { return _sample(x, y, 0); }
    const unsigned char& pixel(int x, int y) const { return _sample(x, y, 0); }
};

// Region numbers, 0 being the background.
class TESSARITY_EXPORT LabelImage : public Image<int, 1> {
public:
    using Image::Image;

    boost::shared_ptr<LabelImage> clone() const;
    boost::shared_ptr<LabelImage> scaleDown(unsigned int factor) const;
    boost::shared_ptr<LabelImage> extract(const Region2& region) const;
    boost::shared_ptr<LabelImage> extract(float x0, float y0, float x1, float y1) const;
    // Each label gets the colour (255, low byte, next byte) of the flat index of its first
    // pixel, so a picture's colours are stable within it. Labels are expected below the pixel
    // count; a label outside that range is drawn as if first met at the pixel in hand.
    boost::shared_ptr<ColorImage> toColorImage();

    // Every sample equal to `from` becomes `to`, in place; merging into an existing label is
    // allowed.
    void changeLabel(int from, int to);

    int& pixel(int x, int y) { return _sample(x, y, 0); }
    const int& pixel(int x, int y) const { return _sample(x, y, 0); }
};

// Distances in millimetres, 0 meaning no measurement. Rendered black for 0, grey under
// 200 mm, and on a heat scale from red at 200 mm to blue at 4000 mm and beyond.
class TESSARITY_EXPORT DepthImage : public Image<unsigned short, 1> {
public:
    using Image::Image;

    boost::shared_ptr<DepthImage> clone() const;
    boost::shared_ptr<DepthImage> scaleDown(unsigned int factor) const;
    boost::shared_ptr<DepthImage> extract(const Region2& region) const;
    boost::shared_ptr<DepthImage> extract(float x0, float y0, float x1, float y1) const;
    boost::shared_ptr<ColorImage> toColorImage();

    unsigned short& pixel(int x, int y) { return _sample(x, y, 0); }
    const unsigned short& pixel(int x, int y) const { return _sample(x, y, 0); }
};

// Points in metres. Rendered from the first component as a depth would be, from 300 mm to
// 4000 mm.
class TESSARITY_EXPORT XYZImage : public Image<float, 3> {
public:
    using Image::Image;

    boost::shared_ptr<XYZImage> clone() const;
    boost::shared_ptr<XYZImage> scaleDown(unsigned int factor) const;
    boost::shared_ptr<XYZImage> extract(const Region2& region) const;
    boost::shared_ptr<XYZImage> extract(float x0, float y0, float x1, float y1) const;
    boost::shared_ptr<ColorImage> toColorImage();

    float& pixelX(int x, int y) { return _sample(x, y, 0); }
    float& pixelY(int x, int y) { return _sample(x, y, 1); }
    float& pixelZ(int x, int y) { return _sample(x, y, 2); }
    const float& pixelX(int x, int y) const { return _sample(x, y, 0); }
    const float& pixelY(int x, int y) const { return _sample(x, y, 1); }
    const float& pixelZ(int x, int y) const { return _sample(x, y, 2); }
};

class TESSARITY_EXPORT MatrixImage : public Image<float, 1> {
public:
    using Image::Image;

    boost::shared_ptr<MatrixImage> clone() const;
    boost::shared_ptr<MatrixImage> scaleDown(unsigned int factor) const;
    boost::shared_ptr<MatrixImage> extract(const Region2& region) const;
    boost::shared_ptr<MatrixImage> extract(float x0, float y0, float x1, float y1) const;

    float& pixel(int x, int y) { return _sample(x, y, 0); }
    const float& pixel(int x, int y) const { return _sample(x, y, 0); }
};

}  // namespace Type
}  // namespace Tessarity

#endif
