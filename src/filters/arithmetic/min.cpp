#include "filters/arithmetic/min.h"

#include <opencv2/core.hpp>

#include "filters/arithmetic/operands.h"

namespace Tessarity {
namespace Filters {

namespace {

// The tie-break decides which operand a NaN yields: "right" in every case.
struct Smaller {
    int operator()(int left, int right) const { return left >= right ? right : left; }
    template <typename T>
    T operator()(T left, T right) const {
        return right > left ? left : right;
    }
};

void smaller(const cv::Mat& a, const cv::Mat& b, cv::Mat& out) { cv::min(a, b, out); }

}  // namespace

Min::Min() : OperandFilter("Min", {ColorImage, GrayscaleImage}) {}

std::vector<boost::shared_ptr<Data>> Min::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    return Operands::sameKind(inputs, smaller, Smaller());
}

}  // namespace Filters
}  // namespace Tessarity
