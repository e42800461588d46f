#ifndef TESSARITY_FILTERS_COLOUR_MEASURE_H
#define TESSARITY_FILTERS_COLOUR_MEASURE_H

#include <vector>

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <tessarity/data.h>
#include <tessarity/types/image.h>

// A pixel loop that the compiler vectorises for the processor it runs on: beside the baseline
// copy, an AVX2 one, chosen once when the library loads. GCC's cheap vectoriser of -O2 leaves
// loops with a remainder alone, so such loops ask for the full cost model.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__)
#define TESSARITY_PIXEL_LOOP                         \
    __attribute__((target_clones("avx2", "default"), \
                   optimize("tree-vectorize", "vect-cost-model=dynamic")))
#elif defined(__x86_64__) && defined(__clang__)
#define TESSARITY_PIXEL_LOOP __attribute__((target_clones("avx2", "default")))
#else
#define TESSARITY_PIXEL_LOOP
#endif

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
    const Type::ColorImage* image = in;
    if (!image || image->mat.type() != CV_8UC3 || image->mat.dims > 2) return {};
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
