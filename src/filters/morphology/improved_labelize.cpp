#include "filters/morphology/improved_labelize.h"

#include <climits>

#include <vision/labeling.h>
#include <opencv2/imgproc.hpp>

#include <tessarity/cv_bridge.h>

#include "common/logging.h"
#include "filters/morphology/image_input.h"
#include "filters/morphology/square_kernel.h"
#include "graph/port.h"

namespace Tessarity {
namespace Filters {

namespace {
const char* const kLogCategory = "tessarity.filter.labelize";
const char* const kLogFile = "src/filters/improved_labelize";

// `fraction` of `area` pixels, the single-precision product truncated toward zero; false when
// that product is no number or lies beyond an int.
bool areaBound(float fraction, int area, int& bound) {
    const float product = fraction * float(area);
    if (!(product >= float(INT_MIN) && product < -float(INT_MIN))) return false;
    bound = int(product);
    return true;
}

}  // namespace

ImprovedLabelize::ImprovedLabelize() : FilterPrimitive("ImprovedLabelize") {
    _addInput("inputImage")->addType(BinaryImage).addType(DepthImage).addType(GrayscaleImage);
    _addInput("toleranceH")->addType(Integer).setOptional(true);
    _addInput("toleranceV")->addType(Integer).setOptional(true);
    _addInput("kernel")->addType(Integer);
    _addInput("min")->addType(Float);
    _addInput("max")->addType(Float);
    _addOutput("labelizedImage")->addType(LabelImage);
    _addOutput("dilatedImage")->addType(BinaryImage).addType(DepthImage).addType(GrayscaleImage);
}

std::vector<boost::shared_ptr<Data>> ImprovedLabelize::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    if (inputs.size() != 6 || !inputs[0] || !inputs[3] || !inputs[4] || !inputs[5]) {
        TES_LOG(kelvo::log::Error, " [Invalid Input] -> ImprovedLabelize -> ...");
        return {};
    }
    const boost::shared_ptr<Data>& input = inputs[0];
    const int toleranceH = inputs[1] ? int(*inputs[1]) : 0;
    const int toleranceV = inputs[2] ? int(*inputs[2]) : 0;
    // OpenCV dilates every image class but the labels, and its assertion would leave the
    // worker's thread through the graph.
    const cv::Mat* image = input->getType() != LabelImage ? bridgedMat(input) : nullptr;
    if (!image) {
        TES_LOG(kelvo::log::Error, " [Invalid Input] -> Labelize -> ...");
        return {};
    }
    // The bounds are fractions of the image's area, which must itself be an int.
    const long long area = static_cast<long long>(image->rows) * image->cols;
    int smallest = 0, largest = 0;
    cv::Mat dilated;
    if (area > INT_MAX || !areaBound(float(*inputs[4]), int(area), smallest) ||
        !areaBound(float(*inputs[5]), int(area), largest) ||
        !squareMorphology(cv::dilate, *image, int(*inputs[3]), dilated)) {
        TES_LOG(kelvo::log::Error, " [Invalid Input] -> ImprovedLabelize -> ...");
        return {};
    }

    cv::Mat_<int> labels;
    switch (input->getType()) {
        case GrayscaleImage:
        case DepthImage:
            vision::connectedComponentLabeling2(dilated, labels, toleranceH, toleranceV, smallest,
                                                largest);
            break;
        case BinaryImage:
            vision::connectedComponentLabeling(dilated, labels, 255, smallest, largest);
            break;
        default:
            TES_LOG(kelvo::log::Error, " [Invalid Input] -> Labelize -> ...");
    }
    // Without labels the dilated image comes first, in the place of the labels.
    std::vector<boost::shared_ptr<Data>> out;
    if (!labels.empty()) out.push_back(cvMatToData(labels, LabelImage, input));
    out.push_back(cvMatToData(dilated, input->getType(), input));
    return out;
}

}  // namespace Filters
}  // namespace Tessarity
