#include "filters/arithmetic/threshold.h"

#include <cstdint>

#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
#endif

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <tessarity/cv_bridge.h>

#include "filters/arithmetic/operands.h"
#include "graph/port.h"

namespace Tessarity {
namespace Filters {

namespace {

// The largest sum of three bytes.
const unsigned int kBrightest = 3 * 255;

// out = 1 where r + g + b > bound, else 0, over `count` pixels, for a bound below 765: then
// bound - sum lies within 16 signed bits, whose sign is the answer, with no comparison to
// vectorise.
TESSARITY_PIXEL_LOOP void brighterThanEach(const uchar* __restrict pixels, uchar* __restrict out,
                                           int count, unsigned int bound) {
    const std::uint16_t limit = static_cast<std::uint16_t>(bound);
    for (int i = 0; i < count; ++i) {
        const std::uint16_t sum = pixels[3 * i] + pixels[3 * i + 1] + pixels[3 * i + 2];
        out[i] = static_cast<uchar>(static_cast<std::uint16_t>(limit - sum) >> 15);
    }
}

#if defined(__x86_64__) && defined(__GNUC__)
// The same, 32 pixels at a time, on processors with AVX2; answers how many pixels it did. The
// compiler cannot pair three interleaved bytes well, so the pairing is spelled out: each 128-bit
// lane takes 16 pixels (48 bytes, in three registers), byte shuffles lay every pixel's red and
// green side by side in a 16-bit slot and its blue alone in another, a multiply-add of the pairs
// by one sums red and green, and the blue is added. Sums compare as signed 16-bit numbers, and
// the all-ones answers narrow to 0xFF in pixel order before the mask down to 1.
__attribute__((target("avx2"))) int brighterThanAvx2(const uchar* pixels, uchar* out, int count,
                                                     unsigned int bound) {
#define TES_LANES(...) _mm256_broadcastsi128_si256(_mm_setr_epi8(__VA_ARGS__))
    const char z = -1;  // a shuffle index that writes 0
    // Pixels 0 to 7 of a lane, from its registers a and b; pixels 8 to 15, from b and c.
    const __m256i pairsA = TES_LANES(0, 1, 3, 4, 6, 7, 9, 10, 12, 13, 15, z, z, z, z, z);
    const __m256i pairsB = TES_LANES(z, z, z, z, z, z, z, z, z, z, z, 0, 2, 3, 5, 6);
    const __m256i bluesA = TES_LANES(2, z, 5, z, 8, z, 11, z, 14, z, z, z, z, z, z, z);
    const __m256i bluesB = TES_LANES(z, z, z, z, z, z, z, z, z, z, 1, z, 4, z, 7, z);
    const __m256i pairsB2 = TES_LANES(8, 9, 11, 12, 14, 15, z, z, z, z, z, z, z, z, z, z);
    const __m256i pairsC = TES_LANES(z, z, z, z, z, z, 1, 2, 4, 5, 7, 8, 10, 11, 13, 14);
    const __m256i bluesB2 = TES_LANES(10, z, 13, z, z, z, z, z, z, z, z, z, z, z, z, z);
    const __m256i bluesC = TES_LANES(z, z, z, z, 0, z, 3, z, 6, z, 9, z, 12, z, 15, z);
#undef TES_LANES
    const __m256i ones = _mm256_set1_epi8(1);
    const __m256i limits = _mm256_set1_epi16(static_cast<short>(bound));
    int i = 0;
    for (; i + 32 <= count; i += 32) {
        const uchar* p = pixels + 3 * i;
        __m256i registers[3];
        for (int r = 0; r < 3; ++r)
            registers[r] = _mm256_inserti128_si256(
                _mm256_castsi128_si256(
                    _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 16 * r))),
                _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 48 + 16 * r)), 1);
        const __m256i a = registers[0], b = registers[1], c = registers[2];
        const __m256i low = _mm256_add_epi16(
            _mm256_maddubs_epi16(
                _mm256_or_si256(_mm256_shuffle_epi8(a, pairsA), _mm256_shuffle_epi8(b, pairsB)),
                ones),
            _mm256_or_si256(_mm256_shuffle_epi8(a, bluesA), _mm256_shuffle_epi8(b, bluesB)));
        const __m256i high = _mm256_add_epi16(
            _mm256_maddubs_epi16(
                _mm256_or_si256(_mm256_shuffle_epi8(b, pairsB2), _mm256_shuffle_epi8(c, pairsC)),
                ones),
            _mm256_or_si256(_mm256_shuffle_epi8(b, bluesB2), _mm256_shuffle_epi8(c, bluesC)));
        const __m256i above =
            _mm256_packs_epi16(_mm256_cmpgt_epi16(low, limits), _mm256_cmpgt_epi16(high, limits));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + i), _mm256_and_si256(above, ones));
    }
    return i;
}
#endif

void brighterThan(const uchar* pixels, uchar* out, int count, unsigned int bound) {
    int done = 0;
#if defined(__x86_64__) && defined(__GNUC__)
    static const bool avx2 = __builtin_cpu_supports("avx2");
    if (avx2) done = brighterThanAvx2(pixels, out, count, bound);
#endif
    brighterThanEach(pixels + 3 * done, out + done, count - done, bound);
}

// A BinaryImage of 0 and 1, with the metadata of the colour image.
boost::shared_ptr<Data> colourAbove(const Data& in, int ceiling) {
    const Type::ColorImage* image = Operands::imageOf<Type::ColorImage>(in);
    if (!image) return boost::shared_ptr<Data>();
    auto out = boost::make_shared<Type::BinaryImage>(image->getWidth(), image->getHeight(),
                                                     image->colorSpace, image->timestamp,
                                                     image->horizontalAngle, image->verticalAngle);
    // Three times the ceiling in 32-bit unsigned arithmetic: a negative ceiling wraps to a
    // bound that no sum passes.
    const unsigned int bound = 3u * static_cast<unsigned int>(ceiling);
    if (bound >= kBrightest) {
        out->mat.setTo(cv::Scalar::all(0));
    } else {
        // Rows laid end to end are walked as one, so that only the image's last pixels are
        // left to the narrow loop.
        const bool flat = image->mat.isContinuous() && out->mat.isContinuous();
        const int rows = flat ? 1 : image->mat.rows;
        const int width = flat ? int(image->mat.total()) : image->mat.cols;
        for (int y = 0; y < rows; ++y)
            brighterThan(image->mat.ptr<uchar>(y), out->mat.ptr<uchar>(y), width, bound);
    }
    return boost::make_shared<Data>(out);
}

// 255 above the ceiling, 0 elsewhere, with the metadata of the input. On bytes OpenCV's
// threshold gives exactly what comparing with the ceiling gives (a ceiling below 0 passes all,
// one from 255 up none), only faster; depths are compared.
template <class C>
boost::shared_ptr<Data> above(const boost::shared_ptr<Data>& in, int ceiling) {
    const C* image = Operands::imageOf<C>(*in);
    if (!image) return boost::shared_ptr<Data>();
    // OpenCV refuses to compare a matrix without pixels with a number.
    cv::Mat out(image->mat.size(), CV_8UC1);
    if (!out.empty() && image->mat.depth() == CV_8U)
        cv::threshold(image->mat, out, ceiling, 255, cv::THRESH_BINARY);
    else if (!out.empty())
        cv::compare(image->mat, static_cast<double>(ceiling), out, cv::CMP_GT);
    return cvMatToData(out, BinaryImage, in);
}

}  // namespace

Threshold::Threshold() : FilterPrimitive("Threshold") {
    _addInput("in")->addType(ColorImage).addType(DepthImage).addType(GrayscaleImage);
    _addInput("ceil")->addType(Integer);
    _addOutput("out")->addType(BinaryImage);
}

std::vector<boost::shared_ptr<Data>> Threshold::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    if (!Operands::arePair(inputs) || inputs[1]->getType() != Integer) return {};
    const boost::shared_ptr<Data>& in = inputs[0];
    const int ceiling = *inputs[1];
    switch (in->getType()) {
        case ColorImage:
            return Operands::result(colourAbove(*in, ceiling));
        case DepthImage:
            return Operands::result(above<Type::DepthImage>(in, ceiling));
        case GrayscaleImage:
            return Operands::result(above<Type::GrayscaleImage>(in, ceiling));
        default:
            return {};
    }
}

}  // namespace Filters
}  // namespace Tessarity
