#ifndef TESSARITY_FILTERS_ARITHMETIC_OPERANDS_H
#define TESSARITY_FILTERS_ARITHMETIC_OPERANDS_H

#include <vector>

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <tessarity/data.h>
#include <tessarity/types/image.h>

#include "filters/image_layout.h"

// What the arithmetic filters share: the checks on their operands, arithmetic on two numbers
// of one type, and the per-sample operations on two images of one class.
namespace Tessarity {
namespace Filters {
namespace Operands {

typedef std::vector<boost::shared_ptr<Data>> Values;

// Exactly two entries, both set.
inline bool arePair(const Values& inputs) { return inputs.size() == 2 && inputs[0] && inputs[1]; }

// The result vector: one entry for "out", or nothing at all when there is no result.
inline Values result(const boost::shared_ptr<Data>& out) { return out ? Values{out} : Values{}; }

using Filters::imageOf;

template <class C>
bool sameSize(const C& left, const C& right) {
    return left.mat.rows == right.mat.rows && left.mat.cols == right.mat.cols;
}

// `operation(left, right, out)` on the matrices of two images of class C, into a new image of
// their size, with the colour space "unknow", the current time and no angles. Null when either
// is no image of C, or when their sizes differ: the samples are paired one to one, and a
// smaller right operand has none to pair with.
template <class C, typename Operation>
boost::shared_ptr<Data> perSample(const Data& left, const Data& right, Operation operation) {
    const C* a = imageOf<C>(left);
    const C* b = imageOf<C>(right);
    if (!a || !b || !sameSize(*a, *b)) return boost::shared_ptr<Data>();
    auto out = boost::make_shared<C>(a->getWidth(), a->getHeight());
    if (!out->mat.empty()) operation(a->mat, b->mat, out->mat);
    return boost::make_shared<Data>(out);
}

// `operation` on two numbers of one type, Integer, Float or Double, as a new Data of that
// type; null for any other pair.
template <typename Operation>
boost::shared_ptr<Data> numbers(const Data& left, const Data& right, Operation operation) {
    if (left.getType() != right.getType()) return boost::shared_ptr<Data>();
    switch (left.getType()) {
        case Integer:
            return boost::make_shared<Data>(operation(int(left), int(right)));
        case Float:
            return boost::make_shared<Data>(operation(float(left), float(right)));
        case Double:
            return boost::make_shared<Data>(operation(double(left), double(right)));
        default:
            return boost::shared_ptr<Data>();
    }
}

// Two operands of one type: `onImages(left, right, out)` on the matrices of colour or gray
// images (as `perSample`), `onNumbers` on numbers (as `numbers`); nothing for any other pair.
template <typename OnImages, typename OnNumbers>
Values sameKind(const Values& inputs, OnImages onImages, OnNumbers onNumbers) {
    if (!arePair(inputs)) return {};
    const Data& left = *inputs[0];
    const Data& right = *inputs[1];
    if (left.getType() != right.getType()) return {};
    switch (left.getType()) {
        case ColorImage:
            return result(perSample<Type::ColorImage>(left, right, onImages));
        case GrayscaleImage:
            return result(perSample<Type::GrayscaleImage>(left, right, onImages));
        default:
            return result(numbers(left, right, onNumbers));
    }
}

// Integer arithmetic wraps in 32 bits; going through unsigned keeps it defined.
inline int wrapped(unsigned int value) { return static_cast<int>(value); }

}  // namespace Operands
}  // namespace Filters
}  // namespace Tessarity

#endif
