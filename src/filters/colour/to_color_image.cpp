#include "filters/colour/to_color_image.h"

#include <boost/make_shared.hpp>

#include <tessarity/types/audio_buffer.h>
#include <tessarity/types/image.h>

#include "filters/image_layout.h"
#include "graph/port.h"

namespace Tessarity {
namespace Filters {

namespace {

// The picture of an image of class C; nothing if its matrix has another layout than C's,
// which the rendering would misread.
template <class C>
boost::shared_ptr<Data> pictureOf(const Data& in) {
    C* image = imageOf<C>(in);
    if (!image) return boost::shared_ptr<Data>();
    return boost::make_shared<Data>(image->toColorImage());
}

// A buffer without channels has no band to draw in, and one without samples to read is
// refused rather than read.
boost::shared_ptr<Data> waveOf(const Data& in) {
    Type::AudioBuffer* audio = in;
    if (!audio || audio->getChannels() == 0 || (!audio->getData() && audio->getSize() > 0))
        return boost::shared_ptr<Data>();
    return boost::make_shared<Data>(audio->toColorImage());
}

}  // namespace

ToColorImage::ToColorImage() : FilterPrimitive("ToColorImage") {
    _addInput("in")
        ->addType(ColorImage)
        .addType(BinaryImage)
        .addType(LabelImage)
        .addType(GrayscaleImage)
        .addType(AudioBuffer)
        .addType(DepthImage)
        .addType(XYZImage);
    _addOutput("out")->addType(ColorImage);
}

std::vector<boost::shared_ptr<Data>> ToColorImage::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    if (inputs.size() != 1 || !inputs[0]) return {};
    const Data& in = *inputs[0];
    boost::shared_ptr<Data> out;
    switch (in.getType()) {
        case ColorImage:
            return inputs;
        case BinaryImage:
            out = pictureOf<Type::BinaryImage>(in);
            break;
        case LabelImage:
            out = pictureOf<Type::LabelImage>(in);
            break;
        case GrayscaleImage:
            out = pictureOf<Type::GrayscaleImage>(in);
            break;
        case AudioBuffer:
            out = waveOf(in);
            break;
        case DepthImage:
            out = pictureOf<Type::DepthImage>(in);
            break;
        case XYZImage:
            out = pictureOf<Type::XYZImage>(in);
            break;
        default:
            break;
    }
    return out ? std::vector<boost::shared_ptr<Data>>{out} : std::vector<boost::shared_ptr<Data>>{};
}

}  // namespace Filters
}  // namespace Tessarity
