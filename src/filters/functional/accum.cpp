#include "filters/functional/accum.h"

#include <cmath>

#include <boost/make_shared.hpp>
#include <opencv2/core/hal/intrin.hpp>

#include <tessarity/types/image.h>

#include "common/logging.h"
#include "graph/memory_manager.h"
#include "filters/image_layout.h"
#include "graph/port.h"

namespace Tessarity {
namespace Filters {

namespace {

const char* const kLogCategory = "tessarity.filter.accum";
const char* const kLogFile = "src/filters/accum";

typedef boost::shared_ptr<Data> DataPtr;

// A weight: the product truncated toward zero and wrapped to 32 bits, so that a factor outside
// 0 to 1 wraps as unsigned arithmetic does. False for a product that no integer holds (a NaN,
// an infinity, or beyond 64 bits), whose weight would be undefined.
bool weightOf(float product, unsigned int& weight) {
    if (!(std::fabs(product) < 9.2e18f)) return false;
    weight = static_cast<unsigned int>(static_cast<long long>(product));
    return true;
}

void blendRow(uchar* accumulator, const uchar* input, int count, unsigned int inputWeight,
              unsigned int accumulatorWeight) {
    int i = 0;
#if CV_SIMD128
    // With weights summing to 256 at most, as every factor from 0 to 1 gives, each sum of
    // products stays below 2^16 and the vector part works on 16-bit lanes.
    if (inputWeight <= 256 && accumulatorWeight <= 256 - inputWeight) {
        const cv::v_uint16x8 forInput = cv::v_setall_u16(static_cast<ushort>(inputWeight));
        const cv::v_uint16x8 forAccumulator =
            cv::v_setall_u16(static_cast<ushort>(accumulatorWeight));
        for (; i + 16 <= count; i += 16) {
            cv::v_uint16x8 in0, in1, acc0, acc1;
            cv::v_expand(cv::v_load(input + i), in0, in1);
            cv::v_expand(cv::v_load(accumulator + i), acc0, acc1);
            const cv::v_uint16x8 low =
                cv::v_shr<8>(cv::v_mul_wrap(in0, forInput) + cv::v_mul_wrap(acc0, forAccumulator));
            const cv::v_uint16x8 high =
                cv::v_shr<8>(cv::v_mul_wrap(in1, forInput) + cv::v_mul_wrap(acc1, forAccumulator));
            cv::v_store(accumulator + i, cv::v_pack(low, high));
        }
    }
#endif
    for (; i < count; ++i)
        accumulator[i] =
            static_cast<uchar>((input[i] * inputWeight + accumulator[i] * accumulatorWeight) >> 8);
}

void blendRow(ushort* accumulator, const ushort* input, int count, unsigned int inputWeight,
              unsigned int accumulatorWeight) {
    for (int i = 0; i < count; ++i)
        accumulator[i] =
            static_cast<ushort>((input[i] * inputWeight + accumulator[i] * accumulatorWeight) >> 8);
}


template <class C>
DataPtr cloneOf(const Data& in) {
    return boost::make_shared<Data>(imageOf<C>(in)->clone());
}

// Blends `in` into the accumulator; false, and no change, if their sizes differ: the blend
// pairs the samples one to one.
template <class C>
bool blendInto(const Data& accumulator, const Data& in, unsigned int inputWeight,
               unsigned int accumulatorWeight) {
    C* sum = imageOf<C>(accumulator);
    const C* image = imageOf<C>(in);
    if (!sum || sum->mat.rows != image->mat.rows || sum->mat.cols != image->mat.cols) return false;
    _applyAccumFilterImage(*sum, *image, inputWeight, accumulatorWeight);
    return true;
}

}  // namespace

template <class C>
void _applyAccumFilterImage(C& accumulator, const C& input, unsigned int inputWeight,
                            unsigned int accumulatorWeight) {
    typedef typename C::Sample T;
    const int count = accumulator.mat.cols * accumulator.mat.channels();
    for (int y = 0; y < accumulator.mat.rows; ++y)
        blendRow(accumulator.mat.template ptr<T>(y), input.mat.template ptr<T>(y), count,
                 inputWeight, accumulatorWeight);
}

template void _applyAccumFilterImage(Type::ColorImage&, const Type::ColorImage&, unsigned int,
                                     unsigned int);
template void _applyAccumFilterImage(Type::GrayscaleImage&, const Type::GrayscaleImage&,
                                     unsigned int, unsigned int);
template void _applyAccumFilterImage(Type::DepthImage&, const Type::DepthImage&, unsigned int,
                                     unsigned int);

Accum::Accum() : FilterPrimitive("Accum") {
    _addInput("in")->addType(ColorImage).addType(GrayscaleImage).addType(DepthImage);
    _addInput("factor")->addType(Float);
    _addOutput("out");
}

std::vector<boost::shared_ptr<Data>> Accum::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
    const StringHash& request, long long) {
    if (inputs.size() != 2 || !inputs[1] || inputs[1]->getType() != Float) return {};
    const float factor = *inputs[1];
    unsigned int inputWeight = 0, accumulatorWeight = 0;
    if (!weightOf(factor * 256.0f, inputWeight) ||
        !weightOf((1.0f - factor) * 256.0f, accumulatorWeight))
        return {};

    const DataType type = inputs[0] ? inputs[0]->getType() : Invalid;
    const bool valid = (type == ColorImage && imageOf<Type::ColorImage>(*inputs[0])) ||
                       (type == GrayscaleImage && imageOf<Type::GrayscaleImage>(*inputs[0])) ||
                       (type == DepthImage && imageOf<Type::DepthImage>(*inputs[0]));
    if (!valid) {
        TES_LOG(kelvo::log::Error, " [Invalid Input] -> Accum -> ...");
        return {};
    }
    MemoryManager* memory = _getMemoryManager();
    if (!memory) return {};  // not registered with an engine: nowhere to keep the blend
    const Data& in = *inputs[0];

    const DataPtr accumulator = memory->getData(process, request);
    if (!accumulator) {
        // The first image is absorbed: it is stored, and the answer is the null just read.
        memory->setData(process, request,
                        type == ColorImage       ? cloneOf<Type::ColorImage>(in)
                        : type == GrayscaleImage ? cloneOf<Type::GrayscaleImage>(in)
                                                 : cloneOf<Type::DepthImage>(in));
        return {accumulator};
    }
    // An image of another class than the first leaves the accumulator as it is.
    if (accumulator->getType() == type) {
        const bool blended =
            type == ColorImage
                ? blendInto<Type::ColorImage>(*accumulator, in, inputWeight, accumulatorWeight)
            : type == GrayscaleImage
                ? blendInto<Type::GrayscaleImage>(*accumulator, in, inputWeight, accumulatorWeight)
                : blendInto<Type::DepthImage>(*accumulator, in, inputWeight, accumulatorWeight);
        if (!blended) return {};
    }
    return {accumulator};
}

}  // namespace Filters
}  // namespace Tessarity
