#ifndef TESSARITY_FILTERS_COLOUR_MEASURE_H
#define TESSARITY_FILTERS_COLOUR_MEASURE_H

#include <vector>

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <tessarity/data.h>
#include <tessarity/types/image.h>

#include "filters/image_layout.h"

namespace Tessarity {
namespace Filters {
namespace Colour {

// The frame of the per-pixel measures: a GrayscaleImage of the size of the colour image `in`,
// with its colour space, time and angles, whose row y is written by
// `row(pixels of row y, output row y, width)`. The bytes of a pixel are read as red, green and
// blue whatever the colour space says. Nothing when `in` holds no colour image, or one made
// around a matrix of another layout.
template <typename Row>
std::vector<boost::shared_ptr<Data>> measure(const Data& in, Row row) {
    const Type::ColorImage* image = imageOf<Type::ColorImage>(in);
    if (!image) return {};
    auto out = boost::make_shared<Type::GrayscaleImage>(
        image->getWidth(), image->getHeight(), image->colorSpace, image->timestamp,
        image->horizontalAngle, image->verticalAngle);
    for (int y = 0; y < image->mat.rows; ++y)
        row(image->mat.ptr<uchar>(y), out->mat.ptr<uchar>(y), image->mat.cols);
    return {boost::make_shared<Data>(out)};
}

}  // namespace Colour
}  // namespace Filters
}  // namespace Tessarity

#endif
