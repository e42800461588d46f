#ifndef TESSARITY_FILTERS_IMAGE_LAYOUT_H
#define TESSARITY_FILTERS_IMAGE_LAYOUT_H

#include <opencv2/core.hpp>

#include <tessarity/data.h>
#include <tessarity/types/image.h>

// What the image filters check before their loops read pixels. The image classes take the
// caller's word for their matrix, and the loops walk samples by the layout of the class, so an
// image made around a foreign cv::Mat (another type, more than two dimensions) is refused.

// A pixel loop that the compiler vectorises for the processor it runs on: beside the baseline
// copy, an AVX2 one, chosen once when the library loads. GCC's cheap vectoriser of -O2 leaves
// loops with a remainder alone, so such loops ask for the full cost model.
// ThreadSanitizer instruments the resolver that picks the copy, which then runs while the
// library is relocated, before the sanitizer's runtime is ready: its builds keep the baseline.
#if defined(__SANITIZE_THREAD__)
#define TESSARITY_PIXEL_LOOP
#elif defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__)
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

// Whether a matrix is a plane of samples of the matrix type `type`, or has no pixels.
inline bool isPlaneOf(const cv::Mat& mat, int type) {
    return mat.dims <= 2 && (mat.empty() || mat.type() == type);
}

// The image of class C in `value`, or null when the tag is another, the payload is missing or
// the matrix does not have C's layout.
template <class C>
C* imageOf(const Data& value) {
    C* image = value;
    return image && image->mat.type() == C::MatType && image->mat.dims <= 2 ? image : nullptr;
}

}  // namespace Filters
}  // namespace Tessarity

#endif
