#include "filters/arithmetic/sub.h"

#include <opencv2/core.hpp>

#include "filters/arithmetic/operands.h"

namespace Tessarity {
namespace Filters {

namespace {

struct Minus {
    int operator()(int a, int b) const {
        return Operands::wrapped(static_cast<unsigned>(a) - static_cast<unsigned>(b));
    }
    template <typename T>
    T operator()(T a, T b) const {
        return a - b;
    }
};

void distance(const cv::Mat& a, const cv::Mat& b, cv::Mat& out) { cv::absdiff(a, b, out); }

}  // namespace

Sub::Sub() : OperandFilter("Sub", {ColorImage, GrayscaleImage, DepthImage}) {}

std::vector<boost::shared_ptr<Data>> Sub::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    if (!Operands::arePair(inputs)) return {};
    const Data& left = *inputs[0];
    const Data& right = *inputs[1];
    if (left.getType() != right.getType()) return {};
    switch (left.getType()) {
        case GrayscaleImage:
            return Operands::result(
                Operands::perSample<Type::GrayscaleImage>(left, right, distance));
        case ColorImage:
            return Operands::result(Operands::perSample<Type::ColorImage>(left, right, distance));
        case DepthImage:
            return Operands::result(Operands::perSample<Type::DepthImage>(left, right, distance));
        default:
            return Operands::result(Operands::numbers(left, right, Minus()));
    }
}

}  // namespace Filters
}  // namespace Tessarity
