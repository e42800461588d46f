#include "filters/windows/scale_down.h"

#include <boost/make_shared.hpp>

#include <tessarity/types/image.h>

#include "common/logging.h"
#include "graph/port.h"

namespace Tessarity {
namespace Filters {

namespace {
const char* const kLogCategory = "tessarity.filter.scaleDown";
const char* const kLogFile = "src/filters/scaledown";

typedef boost::shared_ptr<Data> Ptr;

template <class C>
Ptr scaled(const C* image, unsigned int factor) {
    return image ? boost::make_shared<Data>(image->scaleDown(factor)) : Ptr();
}

// The image in `value` shrunk by `factor`; null for a value of another class.
Ptr scaled(const Data& value, unsigned int factor) {
    switch (value.getType()) {
        case ColorImage:
            return scaled(static_cast<Type::ColorImage*>(value), factor);
        case GrayscaleImage:
            return scaled(static_cast<Type::GrayscaleImage*>(value), factor);
        case BinaryImage:
            return scaled(static_cast<Type::BinaryImage*>(value), factor);
        case LabelImage:
            return scaled(static_cast<Type::LabelImage*>(value), factor);
        case DepthImage:
            return scaled(static_cast<Type::DepthImage*>(value), factor);
        default:
            return Ptr();
    }
}

}  // namespace

ScaleDown::ScaleDown() : FilterPrimitive("ScaleDown") {
    _addInput("in")
        ->addType(ColorImage)
        .addType(BinaryImage)
        .addType(DepthImage)
        .addType(GrayscaleImage)
        .addType(LabelImage);
    _addInput("factor")->addType(Integer);
    _addOutput("out");
}

std::vector<boost::shared_ptr<Data>> ScaleDown::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    if (inputs.size() != 2 || !inputs[0] || !inputs[1] || inputs[1]->getType() != Integer)
        return {};
    const int factor = *inputs[1];
    // Nothing divides by 0.
    if (factor == 0) return {};
    std::vector<Ptr> results;
    // A negative factor lets the input through, and then shrinks by its unsigned reading, a
    // factor so large that nothing is left.
    if (factor < 0) results.push_back(inputs[0]);
    if (const Ptr smaller = scaled(*inputs[0], static_cast<unsigned int>(factor)))
        results.push_back(smaller);
    else
        TES_LOG(kelvo::log::Error, " [Invalid Input] -> ScaleDown -> ...");
    return results;
}

}  // namespace Filters
}  // namespace Tessarity
