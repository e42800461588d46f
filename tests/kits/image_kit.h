// Helpers for the image tests: the seven image classes one after the other, images filled from
// a list of samples, and pictures read back as rows of text.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include <tessarity/types/image.h>
#include <opencv2/core.hpp>

namespace imagekit {

using namespace Tessarity::Type;

template <class C>
struct Tag {
    typedef C Class;
};

// Calls f(Tag<C>()) for every image class.
template <typename F>
void forEachImageClass(F f) {
    f(Tag<ColorImage>()), f(Tag<GrayscaleImage>()), f(Tag<BinaryImage>()), f(Tag<LabelImage>());
    f(Tag<DepthImage>()), f(Tag<XYZImage>()), f(Tag<MatrixImage>());
}

// The values as text, each followed by a blank, so that a row of results reads as one line.
template <typename... T>
std::string join(const T&... values) {
    std::ostringstream out;
    ((out << values << ' '), ...);
    return out.str();
}

// An image of `width` columns whose samples, in flat order, are `samples` (repeated or cut to
// fill it), in a matrix of its own.
template <class C>
C filled(int width, int height, const std::vector<double>& samples) {
    C image(width, height, "tag", Time(5), 1.0f, 0.5f);
    typedef typename C::Sample T;
    for (int y = 0, i = 0; y < height; ++y)
        for (int x = 0; x < width * C::Channels; ++x, ++i)
            image.mat.template ptr<T>(y)[x] = static_cast<T>(samples[i % samples.size()]);
    return image;
}

// The pixels of a CV_8UC3 picture as "r,g,b" per pixel, blank-separated, rows joined by "|".
inline std::string rows(const cv::Mat& picture) {
    std::ostringstream text;
    for (int y = 0; y < picture.rows; ++y) {
        if (y) text << "|";
        for (int x = 0; x < picture.cols; ++x) {
            const cv::Vec3b& p = picture.at<cv::Vec3b>(y, x);
            text << (x ? " " : "") << int(p[0]) << "," << int(p[1]) << "," << int(p[2]);
        }
    }
    return text.str();
}

}  // namespace imagekit
