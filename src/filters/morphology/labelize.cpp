#include "filters/morphology/labelize.h"

#include <vision/labeling.h>

#include <tessarity/cv_bridge.h>

#include "common/logging.h"
#include "filters/morphology/image_input.h"
#include "graph/port.h"

namespace Tessarity {
namespace Filters {

namespace {
const char* const kLogCategory = "tessarity.filter.labelize";
const char* const kLogFile = "src/filters/labelize";
}  // namespace

Labelize::Labelize() : FilterPrimitive("Labelize") {
    _addInput("in")->addType(BinaryImage).addType(DepthImage).addType(GrayscaleImage);
    _addInput("tolerance")->addType(Integer).setOptional(true);
    _addOutput("out")->addType(LabelImage);
}

std::vector<boost::shared_ptr<Data>> Labelize::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    if (inputs.size() != 2 || !inputs[0]) {
        TES_LOG(kelvo::log::Error, " [Invalid Input] -> Labelize -> ...");
        return {};
    }
    const int tolerance = inputs[1] ? int(*inputs[1]) : 0;
    const cv::Mat* image = bridgedMat(inputs[0]);
    cv::Mat_<int> labels;
    switch (image ? inputs[0]->getType() : Invalid) {
        case GrayscaleImage:
        case DepthImage:
            vision::connectedComponentLabeling(*image, labels, tolerance, 0, 0);
            break;
        case BinaryImage:
            // Any two lit neighbours join, whatever the tolerance.
            vision::connectedComponentLabeling(*image, labels, 255, 0, 0);
            break;
        default:
            TES_LOG(kelvo::log::Error, " [Invalid Input] -> Labelize -> ...");
    }
    if (labels.empty()) return {};
    return {cvMatToData(labels, LabelImage, inputs[0])};
}

}  // namespace Filters
}  // namespace Tessarity
