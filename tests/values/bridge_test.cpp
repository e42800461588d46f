// Image values to cv::Mat and back, sharing one pixel buffer, with the model's metadata.
#include <stdexcept>

#include <gtest/gtest.h>
#include <tessarity/cv_bridge.h>
#include <boost/make_shared.hpp>

#include "kits/image_kit.h"

using namespace Tessarity;
using imagekit::forEachImageClass;
using imagekit::join;
typedef boost::shared_ptr<Data> Ptr;

static std::string failure(const std::function<void()>& call) {
    try {
        call();
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "no error";
}

TEST(Bridge, SharesThePixelBufferBothWaysForTheSixClasses) {
    const auto model = boost::make_shared<Data>(
        boost::make_shared<Type::GrayscaleImage>(2, 2, "hsv", Type::Time(42), 3.0f, 4.0f));
    forEachImageClass([&model](auto tag) {
        typedef typename decltype(tag)::Class C;
        auto image = boost::make_shared<C>(4, 3);
        const Ptr data = boost::make_shared<Data>(image);
        const DataType type = data->getType();
        SCOPED_TRACE(Data::getTypeName(type));
        if (type == MatrixImage) {
            // An image class, yet it stays on this side both ways.
            EXPECT_EQ("Cannot convert Tessarity data to cv::Mat",
                      failure([&] { dataToCvMat(data); }));
            EXPECT_EQ("Cannot convert Tessarity Data Tessarity Image",
                      failure([&] { cvMatToData(image->mat, GrayscaleImage, data); }));
            EXPECT_EQ("Cannot convert Tessarity data to cv::Mat",
                      failure([&] { cvMatToData(image->mat, MatrixImage, model); }));
            return;
        }
        cv::Mat mat = dataToCvMat(data);
        EXPECT_TRUE(mat.data == image->mat.data && mat.size() == cv::Size(4, 3));
        EXPECT_EQ(2, image->mat.u->refcount);

        cv::Mat fresh(5, 6, image->mat.type());
        const Ptr back = cvMatToData(fresh, type, model);
        const C* wrapped = *back;
        ASSERT_TRUE(back->getType() == type && wrapped);
        EXPECT_EQ(fresh.data, wrapped->mat.data);
        EXPECT_EQ(join("hsv", 42, 3, 4, 6, 5),
                  join(wrapped->colorSpace, wrapped->timestamp.getTotalMicroseconds(),
                       wrapped->horizontalAngle, wrapped->verticalAngle, wrapped->getWidth(),
                       wrapped->getHeight()));
    });

    // A later write through the matrix shows in the image, and the other way round.
    cv::Mat gray(2, 2, CV_8UC1, cv::Scalar(1));
    const Ptr binary = cvMatToData(gray, BinaryImage, model);
    gray.at<unsigned char>(1, 1) = 9;
    static_cast<Type::BinaryImage*>(*binary)->pixel(0, 0) = 7;
    EXPECT_EQ(join(9, 7), join(int(static_cast<Type::BinaryImage*>(*binary)->pixel(1, 1)),
                               int(gray.at<unsigned char>(0, 0))));
}

TEST(Bridge, RefusesWhatIsNoImageAndTakesTheTimeOfConversionForAZeroOne) {
    const Ptr number = boost::make_shared<Data>(3);
    const cv::Mat empty;
    EXPECT_EQ("Cannot convert Tessarity data to cv::Mat", failure([&] { dataToCvMat(number); }));
    EXPECT_EQ("Cannot convert Tessarity Data Tessarity Image",
              failure([&] { cvMatToData(empty, ColorImage, number); }));

    auto modelImage = boost::make_shared<Type::DepthImage>(1, 1);
    modelImage->timestamp = Type::Time();
    const Ptr model = boost::make_shared<Data>(modelImage);
    const Type::Time before = Type::Time::now();
    const Ptr back = cvMatToData(empty, LabelImage, model);  // an image without pixels
    const Type::LabelImage* labels = *back;
    EXPECT_TRUE(labels->mat.empty() && labels->timestamp >= before);
    EXPECT_EQ("Cannot convert Tessarity data to cv::Mat",
              failure([&] { cvMatToData(empty, Histogram, model); }));

    // A null image inside a Data has no pixels to give and no metadata to lend.
    const Ptr hollow = boost::make_shared<Data>(boost::shared_ptr<Type::ColorImage>());
    EXPECT_TRUE(dataToCvMat(hollow).empty());
    EXPECT_EQ("Cannot convert Tessarity Data Tessarity Image",
              failure([&] { cvMatToData(empty, ColorImage, hollow); }));
}
