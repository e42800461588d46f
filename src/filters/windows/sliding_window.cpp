#include "filters/windows/sliding_window.h"

#include <algorithm>

#include <boost/make_shared.hpp>
#include <opencv2/core/hal/intrin.hpp>

#include <tessarity/types/image.h>

#include "common/logging.h"
#include "graph/memory_manager.h"
#include "graph/port.h"

namespace Tessarity {
namespace Filters {

namespace {
const char* const kLogCategory = "tessarity.filter.slidingwindow";
const char* const kLogFile = "src/filters/slidingwindow";
const char* const kInvalidInput = " [Invalid Input] -> SlidingWindow -> ...";

typedef boost::shared_ptr<Data> Ptr;

// sums[i] += samples[i] / divisor, the sum wrapping at the sample's width. For 8-bit s and d
// with d >= 2, s / d is exactly (s * ceil(65536 / d)) >> 16, which the vector unit does eight
// samples at a time.
void addQuotients(const unsigned char* samples, unsigned char* sums, std::size_t n,
                  unsigned char divisor) {
    std::size_t i = 0;
    if (divisor == 1) {
        for (; i + 16 <= n; i += 16)
            cv::v_store(sums + i, cv::v_add_wrap(cv::v_load(sums + i), cv::v_load(samples + i)));
    } else {
        const cv::v_uint16x8 magic =
            cv::v_setall_u16(static_cast<unsigned short>((65536 + divisor - 1) / divisor));
        for (; i + 16 <= n; i += 16) {
            cv::v_uint16x8 low, high;
            cv::v_expand(cv::v_load(samples + i), low, high);
            const cv::v_uint8x16 quotients =
                cv::v_pack(cv::v_mul_hi(low, magic), cv::v_mul_hi(high, magic));
            cv::v_store(sums + i, cv::v_add_wrap(cv::v_load(sums + i), quotients));
        }
    }
    for (; i < n; ++i) sums[i] = static_cast<unsigned char>(sums[i] + samples[i] / divisor);
}

// The same for 16-bit samples, through single precision: for s and d below 65536 the rounded
// quotient never reaches the next whole number (s + d stays far below 2^24), so truncating it
// gives s / d.
void addQuotients(const unsigned short* samples, unsigned short* sums, std::size_t n,
                  unsigned short divisor) {
    std::size_t i = 0;
    const cv::v_float32x4 d = cv::v_setall_f32(divisor);
    for (; i + 8 <= n; i += 8) {
        cv::v_uint32x4 low, high;
        cv::v_expand(cv::v_load(samples + i), low, high);
        const cv::v_int32x4 lowQuotients =
            cv::v_trunc(cv::v_cvt_f32(cv::v_reinterpret_as_s32(low)) / d);
        const cv::v_int32x4 highQuotients =
            cv::v_trunc(cv::v_cvt_f32(cv::v_reinterpret_as_s32(high)) / d);
        const cv::v_uint16x8 quotients = cv::v_pack(cv::v_reinterpret_as_u32(lowQuotients),
                                                    cv::v_reinterpret_as_u32(highQuotients));
        cv::v_store(sums + i, cv::v_add_wrap(cv::v_load(sums + i), quotients));
    }
    for (; i < n; ++i) sums[i] = static_cast<unsigned short>(sums[i] + samples[i] / divisor);
}

// The largest window whose count the samples of `type` can hold.
int largestWindow(DataType type) {
    return type == ColorImage || type == GrayscaleImage ? 255 : 65535;
}

// The pixels of an image a window may hold, if its matrix is laid out as its class says: the
// average walks the samples by that layout. Null for anything else.
template <class C>
const cv::Mat* pixelsOf(const C* image) {
    return image && image->mat.dims <= 2 && image->mat.type() == C::MatType ? &image->mat : nullptr;
}

const cv::Mat* pixelsOf(const Data& value) {
    switch (value.getType()) {
        case ColorImage:
            return pixelsOf(static_cast<Type::ColorImage*>(value));
        case GrayscaleImage:
            return pixelsOf(static_cast<Type::GrayscaleImage*>(value));
        case DepthImage:
            return pixelsOf(static_cast<Type::DepthImage*>(value));
        default:
            return nullptr;
    }
}

template <class C>
Ptr copyOf(const C* image) {
    return pixelsOf(image) ? boost::make_shared<Data>(image->clone()) : Ptr();
}

// A new value around a private copy of the image in `value`; null for anything a window cannot
// hold.
Ptr copyOf(const Data& value) {
    switch (value.getType()) {
        case ColorImage:
            return copyOf(static_cast<Type::ColorImage*>(value));
        case GrayscaleImage:
            return copyOf(static_cast<Type::GrayscaleImage*>(value));
        case DepthImage:
            return copyOf(static_cast<Type::DepthImage*>(value));
        default:
            return Ptr();
    }
}

// Whether `input` may enter the window: of the class of its images, and of their size, since
// the average walks every image as far as the first one reaches.
bool fits(const std::vector<Ptr>& window, const Data& input) {
    const cv::Mat* pixels = pixelsOf(input);
    if (!pixels) return false;
    for (const Ptr& entry : window) {
        const cv::Mat* held = entry ? pixelsOf(*entry) : nullptr;
        if (!held || entry->getType() != input.getType() || held->size != pixels->size)
            return false;
    }
    return true;
}

template <class C>
Ptr average(const std::vector<Ptr>& window) {
    std::vector<const C*> images;
    images.reserve(window.size());
    for (const Ptr& entry : window) images.push_back(static_cast<C*>(*entry));
    return _applySlidingWindow<C>(images.data(), static_cast<unsigned int>(images.size()));
}

}  // namespace

template <class C>
boost::shared_ptr<Data> _applySlidingWindow(const C* const* images, unsigned int count) {
    typedef typename C::Sample T;
    const T divisor = static_cast<T>(count);
    if (divisor == 0) return Ptr();
    const cv::Mat& first = images[0]->mat;
    auto mean = boost::make_shared<C>(static_cast<unsigned int>(first.cols),
                                      static_cast<unsigned int>(first.rows));
    mean->mat.setTo(cv::Scalar::all(0));
    const std::size_t samples = static_cast<std::size_t>(first.cols) * C::Channels;
    // Row by row, so that a row of sums stays in the cache while every image is added to it.
    for (int y = 0; y < first.rows; ++y) {
        T* sums = mean->mat.template ptr<T>(y);
        for (unsigned int i = 0; i < count; ++i)
            addQuotients(images[i]->mat.template ptr<T>(y), sums, samples, divisor);
    }
    return boost::make_shared<Data>(mean);
}

template boost::shared_ptr<Data> _applySlidingWindow<Type::ColorImage>(
    const Type::ColorImage* const*, unsigned int);
template boost::shared_ptr<Data> _applySlidingWindow<Type::GrayscaleImage>(
    const Type::GrayscaleImage* const*, unsigned int);
template boost::shared_ptr<Data> _applySlidingWindow<Type::DepthImage>(
    const Type::DepthImage* const*, unsigned int);

SlidingWindow::SlidingWindow() : FilterPrimitive("SlidingWindow") {
    _addInput("in")->addType(ColorImage).addType(GrayscaleImage).addType(DepthImage);
    _addInput("size")->addType(Integer);
    _addOutput("out");
}

std::vector<boost::shared_ptr<Data>> SlidingWindow::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
    const StringHash& request, long long) {
    MemoryManager* memory = _getMemoryManager();
    if (inputs.size() != 2 || !inputs[0] || !inputs[1] || inputs[1]->getType() != Integer ||
        !memory)
        return {};
    const Ptr& input = inputs[0];
    const int size = *inputs[1];
    // A negative size, or one whose count does not fit in a sample, has no average.
    if (size <= 0 || size > largestWindow(input->getType())) return {};

    const Ptr stored = memory->getData(process, request);
    if (!stored) {
        // One private copy stands for every image of the first window: the window never hands
        // its images out nor writes into them, so they need not be distinct objects.
        std::vector<Ptr> window;
        if (const Ptr copy = copyOf(*input))
            window.assign(static_cast<std::size_t>(size), copy);
        else
            for (int i = 0; i < size; ++i) TES_LOG(kelvo::log::Error, kInvalidInput);
        memory->setData(process, request, boost::make_shared<Data>(window));
        return {input};
    }
    std::vector<Ptr>* window = *stored;
    if (!window || window->size() != static_cast<std::size_t>(size) || !fits(*window, *input))
        return {};

    // The oldest image drops out at the front; shifting moves pointers, not pixels.
    std::rotate(window->begin(), window->begin() + 1, window->end());
    window->back() = copyOf(*input);
    Ptr mean;  // fits() has let in the three classes only
    switch (input->getType()) {
        case ColorImage:
            mean = average<Type::ColorImage>(*window);
            break;
        case GrayscaleImage:
            mean = average<Type::GrayscaleImage>(*window);
            break;
        default:
            mean = average<Type::DepthImage>(*window);
            break;
    }
    return {mean};
}

}  // namespace Filters
}  // namespace Tessarity
