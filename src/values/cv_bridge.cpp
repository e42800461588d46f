#include <tessarity/cv_bridge.h>

#include <stdexcept>
#include <string>

#include <boost/make_shared.hpp>

#include <tessarity/types/image.h>

namespace Tessarity {

namespace {

const char* const kNotAnImage = "Cannot convert Tessarity data to cv::Mat";
const char* const kModelNotAnImage = "Cannot convert Tessarity Data Tessarity Image";

// The result of visit on the typed image pointer of `data` (null if the payload is) when its
// tag is one of the six image classes that cross to OpenCV, else false.
template <typename Visit>
bool visitImage(const Data& data, Visit visit) {
    switch (data.getType()) {
        case ColorImage:
            return visit(static_cast<Type::ColorImage*>(data));
        case GrayscaleImage:
            return visit(static_cast<Type::GrayscaleImage*>(data));
        case BinaryImage:
            return visit(static_cast<Type::BinaryImage*>(data));
        case LabelImage:
            return visit(static_cast<Type::LabelImage*>(data));
        case DepthImage:
            return visit(static_cast<Type::DepthImage*>(data));
        case XYZImage:
            return visit(static_cast<Type::XYZImage*>(data));
        default:
            return false;  // MatrixImage included: it stays on this side
    }
}

struct Metadata {
    std::string colorSpace;
    Type::Time time;
    float horizontalAngle = 0.0f;
    float verticalAngle = 0.0f;
};

template <class C>
boost::shared_ptr<Data> wrap(const cv::Mat& mat, const Metadata& model) {
    return boost::make_shared<Data>(boost::make_shared<C>(
        mat, model.colorSpace, model.time, model.horizontalAngle, model.verticalAngle));
}

}  // namespace

cv::Mat dataToCvMat(const boost::shared_ptr<Data>& data) {
    cv::Mat mat;
    const bool isImage = visitImage(*data, [&mat](const auto* image) {
        if (image) mat = image->mat;
        return true;
    });
    if (!isImage) throw std::runtime_error(kNotAnImage);
    return mat;
}

boost::shared_ptr<Data> cvMatToData(const cv::Mat& mat, const DataType& type,
                                    const boost::shared_ptr<Data>& model) {
    // A model whose image pointer is null has no metadata to give either.
    Metadata metadata;
    const bool hasModel = visitImage(*model, [&metadata](const auto* image) {
        if (!image) return false;
        metadata = Metadata{image->colorSpace, image->timestamp, image->horizontalAngle,
                            image->verticalAngle};
        return true;
    });
    if (!hasModel) throw std::runtime_error(kModelNotAnImage);

    switch (type) {
        case ColorImage:
            return wrap<Type::ColorImage>(mat, metadata);
        case GrayscaleImage:
            return wrap<Type::GrayscaleImage>(mat, metadata);
        case BinaryImage:
            return wrap<Type::BinaryImage>(mat, metadata);
        case LabelImage:
            return wrap<Type::LabelImage>(mat, metadata);
        case DepthImage:
            return wrap<Type::DepthImage>(mat, metadata);
        case XYZImage:
            return wrap<Type::XYZImage>(mat, metadata);
        default:
            throw std::runtime_error(kNotAnImage);
    }
}

}  // namespace Tessarity
