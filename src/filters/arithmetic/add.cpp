#include "filters/arithmetic/add.h"

#include <tessarity/cv_bridge.h>

#include "filters/arithmetic/operands.h"

namespace Tessarity {
namespace Filters {

namespace {

struct Plus {
    int operator()(int a, int b) const {
        return Operands::wrapped(static_cast<unsigned>(a) + static_cast<unsigned>(b));
    }
    template <typename T>
    T operator()(T a, T b) const {
        return a + b;
    }
};

// The saturating sum of two images of class C, with the metadata of `left`. Sizes are not
// compared here: OpenCV refuses a mismatch with its own exception.
template <class C>
boost::shared_ptr<Data> sum(const boost::shared_ptr<Data>& left, const Data& right, DataType type) {
    const C* a = Operands::imageOf<C>(*left);
    const C* b = Operands::imageOf<C>(right);
    if (!a || !b) return boost::shared_ptr<Data>();
    cv::Mat out;
    cv::add(a->mat, b->mat, out);
    return cvMatToData(out, type, left);
}

}  // namespace

Add::Add() : OperandFilter("Add", {ColorImage, GrayscaleImage, BinaryImage}) {}

std::vector<boost::shared_ptr<Data>> Add::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    if (!Operands::arePair(inputs)) return {};
    const Data& right = *inputs[1];
    const DataType type = inputs[0]->getType();
    if (type != right.getType()) return {};
    switch (type) {
        case ColorImage:
            return Operands::result(sum<Type::ColorImage>(inputs[0], right, type));
        case GrayscaleImage:
            return Operands::result(sum<Type::GrayscaleImage>(inputs[0], right, type));
        case BinaryImage:
            return Operands::result(sum<Type::BinaryImage>(inputs[0], right, type));
        default:
            return Operands::result(Operands::numbers(*inputs[0], right, Plus()));
    }
}

}  // namespace Filters
}  // namespace Tessarity
