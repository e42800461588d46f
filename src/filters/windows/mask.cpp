#include "filters/windows/mask.h"

#include <tessarity/cv_bridge.h>
#include <tessarity/types/image.h>

#include "common/logging.h"
#include "graph/port.h"

namespace Tessarity {
namespace Filters {

namespace {
const char* const kLogCategory = "tessarity.filter.mask";
const char* const kLogFile = "src/filters/mask";

// Whether `value` holds the pixels of one of the image classes that cross to OpenCV.
bool hasPixels(const Data& value) {
    const Type::ColorImage* colour = value;
    const Type::GrayscaleImage* gray = value;
    const Type::BinaryImage* binary = value;
    const Type::LabelImage* labels = value;
    const Type::DepthImage* depth = value;
    const Type::XYZImage* points = value;
    return colour || gray || binary || labels || depth || points;
}

}  // namespace

Mask::Mask() : FilterPrimitive("Mask") {
    _addInput("mask")->addType(BinaryImage);
    _addInput("in")
        ->addType(ColorImage)
        .addType(GrayscaleImage)
        .addType(LabelImage)
        .addType(DepthImage)
        .addType(BinaryImage)
        .addType(XYZImage);
    _addOutput("out");
}

std::vector<boost::shared_ptr<Data>> Mask::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    if (inputs.size() != 2 || !inputs[1]) return {};
    // A mask without pixels would have OpenCV copy everything, or the bridge throw.
    if (!inputs[0] || !hasPixels(*inputs[0]) || !hasPixels(*inputs[1])) {
        TES_LOG(kelvo::log::Error, " [Invalid Input] -> Mask -> ...");
        return {};
    }
    // copyTo clears a matrix that it allocates before copying under the mask.
    cv::Mat result;
    dataToCvMat(inputs[1]).copyTo(result, dataToCvMat(inputs[0]));
    return {cvMatToData(result, inputs[1]->getType(), inputs[1])};
}

}  // namespace Filters
}  // namespace Tessarity
