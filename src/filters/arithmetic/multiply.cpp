#include "filters/arithmetic/multiply.h"

#include <opencv2/core.hpp>
#include <opencv2/core/hal/intrin.hpp>

#include <tessarity/cv_bridge.h>

#include "filters/arithmetic/operands.h"

namespace Tessarity {
namespace Filters {

namespace {

struct Times {
    int operator()(int a, int b) const {
        return Operands::wrapped(static_cast<unsigned>(a) * static_cast<unsigned>(b));
    }
    template <typename T>
    T operator()(T a, T b) const {
        return a * b;
    }
};

// out = a * b / 255, truncated, over `count` bytes. The vector part divides the 16-bit products
// by 255 as (x + 1 + (x >> 8)) >> 8, which is exact for every x up to 255 * 255.
void normalisedProducts(const uchar* a, const uchar* b, uchar* out, int count) {
    int i = 0;
#if CV_SIMD128
    const cv::v_uint16x8 one = cv::v_setall_u16(1);
    for (; i + 16 <= count; i += 16) {
        cv::v_uint16x8 low, high;
        cv::v_mul_expand(cv::v_load(a + i), cv::v_load(b + i), low, high);
        low = cv::v_shr<8>(low + one + cv::v_shr<8>(low));
        high = cv::v_shr<8>(high + one + cv::v_shr<8>(high));
        cv::v_store(out + i, cv::v_pack(low, high));
    }
#endif
    for (; i < count; ++i) out[i] = static_cast<uchar>(unsigned(a[i]) * b[i] / 255u);
}

void normalisedProduct(const cv::Mat& a, const cv::Mat& b, cv::Mat& out) {
    const int count = a.cols * a.channels();
    for (int y = 0; y < a.rows; ++y)
        normalisedProducts(a.ptr<uchar>(y), b.ptr<uchar>(y), out.ptr<uchar>(y), count);
}

// The gray image scaled by OpenCV's rules (rounded, saturated), handed on as a BinaryImage with
// the metadata of the gray one.
boost::shared_ptr<Data> scaled(const boost::shared_ptr<Data>& left, int factor) {
    const Type::GrayscaleImage* gray = Operands::imageOf<Type::GrayscaleImage>(*left);
    if (!gray) return boost::shared_ptr<Data>();
    // OpenCV's matrix expressions refuse a matrix without pixels: it scales to one alike.
    const cv::Mat out = gray->mat.empty() ? cv::Mat(gray->mat.size(), CV_8UC1)
                                          : cv::Mat(static_cast<double>(factor) * gray->mat);
    return cvMatToData(out, BinaryImage, left);
}

// Sizes are not compared here: OpenCV refuses a mismatch with its own exception.
boost::shared_ptr<Data> bitwise(const boost::shared_ptr<Data>& left, const Data& right) {
    const Type::BinaryImage* a = Operands::imageOf<Type::BinaryImage>(*left);
    const Type::BinaryImage* b = Operands::imageOf<Type::BinaryImage>(right);
    if (!a || !b) return boost::shared_ptr<Data>();
    cv::Mat out;
    cv::bitwise_and(a->mat, b->mat, out);
    return cvMatToData(out, BinaryImage, left);
}

}  // namespace

Multiply::Multiply() : OperandFilter("Multiply", {ColorImage, BinaryImage, GrayscaleImage}) {}

std::vector<boost::shared_ptr<Data>> Multiply::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    if (!Operands::arePair(inputs)) return {};
    const Data& left = *inputs[0];
    const Data& right = *inputs[1];
    const DataType leftType = left.getType(), rightType = right.getType();
    // Gray times gray, an Integer times gray and mixed image classes pass the ports and find
    // no pair here.
    if (leftType == ColorImage && rightType == ColorImage)
        return Operands::result(
            Operands::perSample<Type::ColorImage>(left, right, normalisedProduct));
    if (leftType == GrayscaleImage && rightType == Integer)
        return Operands::result(scaled(inputs[0], int(right)));
    if (leftType == BinaryImage && rightType == BinaryImage)
        return Operands::result(bitwise(inputs[0], right));
    return Operands::result(Operands::numbers(left, right, Times()));
}

}  // namespace Filters
}  // namespace Tessarity
