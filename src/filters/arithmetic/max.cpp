#include "filters/arithmetic/max.h"

#include <opencv2/core.hpp>

#include "filters/arithmetic/operands.h"

namespace Tessarity {
namespace Filters {

namespace {

// The tie-break decides which operand a NaN yields: "right" in every case.
struct Larger {
    int operator()(int left, int right) const { return left <= right ? right : left; }
    template <typename T>
    T operator()(T left, T right) const {
        return left > right ? left : right;
    }
};

void larger(const cv::Mat& a, const cv::Mat& b, cv::Mat& out) { cv::max(a, b, out); }

}  // namespace

Max::Max() : OperandFilter("Max", {ColorImage, GrayscaleImage}) {}

std::vector<boost::shared_ptr<Data>> Max::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    return Operands::sameKind(inputs, larger, Larger());
}

}  // namespace Filters
}  // namespace Tessarity
