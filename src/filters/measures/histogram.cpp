#include "filters/measures/histogram.h"

#include <boost/make_shared.hpp>

#include <tessarity/types/histogram.h>

#include "filters/measures/byte_counts.h"
#include "filters/morphology/image_input.h"
#include "graph/port.h"

namespace Tessarity {
namespace Filters {

namespace {

// 256 bins for each of the N channels of an 8-bit image, interleaved.
template <int N>
boost::shared_ptr<Data> histogramOf(const cv::Mat& image) {
    std::uint32_t counts[N][256];
    countBytes<N>(image, counts);
    auto histogram = boost::make_shared<Type::Histogram>(256 * N, N);
    for (int v = 0; v < 256; ++v)
        for (int c = 0; c < N; ++c) histogram->data(v, c) = float(counts[c][v]);
    return boost::make_shared<Data>(histogram);
}

}  // namespace

Histogram::Histogram() : FilterPrimitive("Histogram") {
    _addInput("in")->addType(ColorImage).addType(GrayscaleImage);
    _addOutput("out");
}

std::vector<boost::shared_ptr<Data>> Histogram::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    if (inputs.size() != 1 || !inputs[0]) return {};
    const DataType type = inputs[0]->getType();
    const cv::Mat* image =
        type == ColorImage || type == GrayscaleImage ? bridgedMat(inputs[0]) : nullptr;
    if (!image) return {};
    return {type == ColorImage ? histogramOf<3>(*image) : histogramOf<1>(*image)};
}

}  // namespace Filters
}  // namespace Tessarity
