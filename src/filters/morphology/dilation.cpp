#include "filters/morphology/dilation.h"

#include <opencv2/imgproc.hpp>

#include <tessarity/cv_bridge.h>

#include "common/logging.h"
#include "filters/morphology/image_input.h"
#include "filters/morphology/square_kernel.h"
#include "graph/port.h"

namespace Tessarity {
namespace Filters {

namespace {
const char* const kLogCategory = "tessarity.filter.dilation";
const char* const kLogFile = "src/filters/dilation";
}  // namespace

Dilation::Dilation() : FilterPrimitive("Dilation") {
    _addInput("in")->addType(BinaryImage).addType(GrayscaleImage).addType(DepthImage);
    _addInput("size")->addType(Integer);
    _addOutput("out")->addType(BinaryImage).addType(GrayscaleImage).addType(DepthImage);
}

std::vector<boost::shared_ptr<Data>> Dilation::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    const DataType type = inputs.size() == 2 && inputs[0] ? inputs[0]->getType() : Invalid;
    const cv::Mat* source = type == GrayscaleImage || type == BinaryImage || type == DepthImage
                                ? bridgedMat(inputs[0])
                                : nullptr;
    cv::Mat result;
    if (!source || !inputs[1] || inputs[1]->getType() != Integer ||
        !squareMorphology(cv::dilate, *source, int(*inputs[1]), result)) {
        TES_LOG(kelvo::log::Error, " [Invalid Input] -> Dilation -> ...");
        return {};
    }
    return {cvMatToData(result, type, inputs[0])};
}

}  // namespace Filters
}  // namespace Tessarity
