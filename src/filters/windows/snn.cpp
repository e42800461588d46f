#include "filters/windows/snn.h"

#include <cstdlib>

#include <boost/make_shared.hpp>
#include <opencv2/core/hal/intrin.hpp>

#include <tessarity/types/image.h>

#include "common/logging.h"
#include "filters/image_layout.h"
#include "graph/port.h"

namespace Tessarity {
namespace Filters {

namespace {
const char* const kLogCategory = "tessarity.filter.snn";
const char* const kLogFile = "src/filters/snn";
// The line names Dilation, not this filter, and readers of the log expect it so.
const char* const kInvalidInput = " [Invalid Input] -> Dilation -> ...";

// Sums fit 16-bit lanes while 255 times the divisor does: squares up to a side of 21.
const unsigned long long kLargestVectorDivisor = 65535 / 255;

// Two pixels mirrored through the centre, as (column, row) offsets from it; the first wins a
// tie.
struct Pair {
    int firstX, firstY, secondX, secondY;
};

// The pairs of a square of radius r: left against right along the row, then for each distance
// from the row, upper (right to left) against lower (left to right).
std::vector<Pair> pairsOf(int r) {
    std::vector<Pair> pairs;
    for (int d = 1; d <= r; ++d) pairs.push_back({-d, 0, d, 0});
    for (int dy = 1; dy <= r; ++dy)
        for (int i = 0; i <= 2 * r; ++i) pairs.push_back({r - i, -dy, -r + i, dy});
    return pairs;
}

inline unsigned char nearer(unsigned char first, unsigned char second, unsigned char centre) {
    return std::abs(second - centre) < std::abs(first - centre) ? second : first;
}

// One pixel straight from the definition, for the columns the vector loop leaves over and for
// squares whose sums outgrow 16 bits. The sum is wide enough for any square a picture holds.
unsigned char smoothPixel(const cv::Mat& in, int x, int y, int r, unsigned long long divisor) {
    const unsigned char* row = in.ptr<unsigned char>(y);
    const unsigned char centre = row[x];
    unsigned long long sum = centre;
    for (int d = 1; d <= r; ++d) sum += nearer(row[x - d], row[x + d], centre);
    for (int dy = 1; dy <= r; ++dy) {
        const unsigned char* upper = in.ptr<unsigned char>(y - dy);
        const unsigned char* lower = in.ptr<unsigned char>(y + dy);
        for (int i = 0; i <= 2 * r; ++i) sum += nearer(upper[x + r - i], lower[x - r + i], centre);
    }
    return static_cast<unsigned char>(sum / divisor);
}

// The pairs as byte offsets from the centre pixel within the picture.
struct Offsets {
    std::vector<std::ptrdiff_t> firsts, seconds;
};

Offsets offsetsOf(const std::vector<Pair>& pairs, const cv::Mat& in) {
    const std::ptrdiff_t step = static_cast<std::ptrdiff_t>(in.step[0]);
    Offsets offsets;
    for (const Pair& pair : pairs) {
        offsets.firsts.push_back(pair.firstY * step + pair.firstX);
        offsets.seconds.push_back(pair.secondY * step + pair.secondX);
    }
    return offsets;
}

// Row y from column r, sixteen pixels at a time, in 16-bit sums; returns the first column
// left. The quotient goes through single precision, exact here: a sum and the divisor stay far
// below 2^24, so the rounded quotient never reaches the next whole number.
int smoothRow(const cv::Mat& in, cv::Mat& out, int y, int r, const Offsets& offsets,
              unsigned long long divisor) {
    const unsigned char* centres = in.ptr<unsigned char>(y);
    unsigned char* results = out.ptr<unsigned char>(y);
    const cv::v_float32x4 q = cv::v_setall_f32(static_cast<float>(divisor));
    const std::size_t count = offsets.firsts.size();
    int x = r;
    for (; x + 16 <= in.cols - r; x += 16) {
        const unsigned char* at = centres + x;
        const cv::v_uint8x16 centre = cv::v_load(at);
        cv::v_uint16x8 low, high;
        cv::v_expand(centre, low, high);
        for (std::size_t p = 0; p < count; ++p) {
            const cv::v_uint8x16 first = cv::v_load(at + offsets.firsts[p]);
            const cv::v_uint8x16 second = cv::v_load(at + offsets.seconds[p]);
            const cv::v_uint8x16 chosen = cv::v_select(
                cv::v_absdiff(second, centre) < cv::v_absdiff(first, centre), second, first);
            cv::v_uint16x8 chosenLow, chosenHigh;
            cv::v_expand(chosen, chosenLow, chosenHigh);
            low = cv::v_add_wrap(low, chosenLow);
            high = cv::v_add_wrap(high, chosenHigh);
        }
        cv::v_uint16x8 means[2];
        const cv::v_uint16x8 sums[2] = {low, high};
        for (int half = 0; half < 2; ++half) {
            cv::v_uint32x4 a, b;
            cv::v_expand(sums[half], a, b);
            const cv::v_int32x4 qa = cv::v_trunc(cv::v_cvt_f32(cv::v_reinterpret_as_s32(a)) / q);
            const cv::v_int32x4 qb = cv::v_trunc(cv::v_cvt_f32(cv::v_reinterpret_as_s32(b)) / q);
            means[half] = cv::v_pack(cv::v_reinterpret_as_u32(qa), cv::v_reinterpret_as_u32(qb));
        }
        cv::v_store(results + x, cv::v_pack(means[0], means[1]));
    }
    return x;
}

// The interior of `out` from `in`, a picture at least 2r + 1 pixels wide and high.
void smooth(const cv::Mat& in, cv::Mat& out, int r) {
    if (r == 0) {
        in.copyTo(out);
        return;
    }
    const unsigned long long side = 2ULL * static_cast<unsigned long long>(r) + 1;
    const unsigned long long divisor = ((side * side - 1) >> 1) + 1;
    const bool vector = divisor <= kLargestVectorDivisor;
    const Offsets offsets = vector ? offsetsOf(pairsOf(r), in) : Offsets();
    for (int y = r; y < in.rows - r; ++y) {
        int x = vector ? smoothRow(in, out, y, r, offsets, divisor) : r;
        for (; x < in.cols - r; ++x)
            out.ptr<unsigned char>(y)[x] = smoothPixel(in, x, y, r, divisor);
    }
}

}  // namespace

SNN::SNN() : FilterPrimitive("SNN") {
    _addInput("in")->addType(GrayscaleImage).addType(ColorImage);
    _addInput("size")->addType(Integer);
    _addOutput("out")->addType(BinaryImage);
}

std::vector<boost::shared_ptr<Data>> SNN::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    const Type::GrayscaleImage* in =
        inputs.size() == 2 && inputs[0] ? imageOf<Type::GrayscaleImage>(*inputs[0]) : nullptr;
    // The loops walk a plain matrix of bytes; a negative size would reach outside it.
    if (!in || !inputs[1] ||
        inputs[1]->getType() != Integer || int(*inputs[1]) < 0) {
        TES_LOG(kelvo::log::Error, kInvalidInput);
        return {};
    }
    const int size = *inputs[1];
    const long long side = size % 2 ? size : size + 1LL;
    const int r = static_cast<int>((side - 1) / 2);
    auto out = boost::make_shared<Type::GrayscaleImage>(in->getWidth(), in->getHeight(),
                                                        in->colorSpace, in->timestamp,
                                                        in->horizontalAngle, in->verticalAngle);
    out->mat.setTo(cv::Scalar::all(0));
    if (side <= in->mat.cols && side <= in->mat.rows) smooth(in->mat, out->mat, r);
    return {boost::make_shared<Data>(out)};
}

}  // namespace Filters
}  // namespace Tessarity
