#include "filters/morphology/square_morphology_filter.h"

#include <tessarity/cv_bridge.h>

#include "common/logging.h"
#include "filters/morphology/image_input.h"
#include "graph/port.h"

namespace Tessarity {
namespace Filters {

SquareMorphologyFilter::SquareMorphologyFilter(const std::string& name, Morphology morphology,
                                               const char* logCategory, const char* logFile)
    : FilterPrimitive(name), _morphology(morphology), _logCategory(logCategory),
      _logFile(logFile) {
    _addInput("in")->addType(BinaryImage).addType(GrayscaleImage).addType(DepthImage);
    _addInput("size")->addType(Integer);
    _addOutput("out")->addType(BinaryImage).addType(GrayscaleImage).addType(DepthImage);
}

std::vector<boost::shared_ptr<Data>> SquareMorphologyFilter::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    const DataType type = inputs.size() == 2 && inputs[0] ? inputs[0]->getType() : Invalid;
    const cv::Mat* source = type == GrayscaleImage || type == BinaryImage || type == DepthImage
                                ? bridgedMat(inputs[0])
                                : nullptr;
    cv::Mat result;
    if (!source || !inputs[1] || inputs[1]->getType() != Integer ||
        !squareMorphology(_morphology, *source, int(*inputs[1]), result)) {
        const char* const kLogCategory = _logCategory;
        const char* const kLogFile = _logFile;
        TES_LOG(kelvo::log::Error, " [Invalid Input] -> " << getName() << " -> ...");
        return {};
    }
    return {cvMatToData(result, type, inputs[0])};
}

}  // namespace Filters
}  // namespace Tessarity
