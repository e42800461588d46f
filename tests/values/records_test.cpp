// The value records through the public headers only: vectors, regions, objects, humans,
// histograms and the seven image classes, carried in Data.
#include <cfloat>
#include <climits>
#include <cmath>
#include <sstream>

#include <sys/resource.h>

#include <gtest/gtest.h>
#include <tessarity/tessarity.h>

#include "kits/image_kit.h"
#include "kits/log_capture.h"

using namespace Tessarity;
using imagekit::filled;
using imagekit::forEachImageClass;
using imagekit::join;
typedef boost::shared_ptr<Data> Ptr;

template <typename V>
static std::string text(const V& value) {
    return Data(value).toString();
}

static std::string logged(const LogCapture& log) {
    std::string lines;
    for (const LogCapture::Line& line : log.lines())
        lines += join(line.level, line.category, line.message) + "\n";
    return lines;
}

TEST(Vectors, ComponentwiseExactAndReturnedByValue) {
    using Type::Vector2;
    using Type::Vector6;
    // Compound forms write and return a copy; accessors are references.
    Type::Vector3 v(1, 2, 3);
    (v += Type::Vector3(1, 1, 1)) *= Type::Vector3(10, 10, 10);
    v.z() = 9;
    Vector6 w(1, 1, 1, 1, 1, 1);
    w /= Vector6(1, 2, 4, 8, 16, 32);
    EXPECT_EQ(
        "{X=3 Y=8} 11 25 {X=-2 Y=-2} {X=4 Y=6} {X=inf Y=2} {X=2 Y=3 Z=9} "
        "{X=1 Y=0.5 Z=0.25 WX=0.125 WY=0.0625 WZ=0.03125} {Start=[5,5] End=[1,1]} ",
        join(text(Vector2(1, 2) * Vector2(3, 4)), Vector2(1, 2).dot(Vector2(3, 4)),
             Type::Vector4(1, 2, 2, 4).dot(Type::Vector4(1, 2, 2, 4)),
             text(Vector2(1, 2) - Vector2(3, 4)), text(Vector2(1, 2) + Vector2(3, 4)),
             text(Vector2(1, 4) / Vector2(0, 2)), text(v), text(w),
             text(Type::Region2(5, 5, 1, 1))));
    // Exact: the last bit counts, a NaN is unequal to itself, and so is every component.
    const Vector2 withNan(NAN, 0);
    EXPECT_TRUE(Vector2(0.1f, 0) == Vector2(0.1f, 0) && !(withNan == withNan) &&
                !(Vector2(0.1f, 0) == Vector2(std::nextafter(0.1f, 1.0f), 0)) &&
                !(Vector6(1, 2, 3, 4, 5, 6) == Vector6(1, 2, 3, 4, 5, 7)));
}

TEST(Data, EveryRecordHasItsTagItsTextAndItsOwnPointerConversion) {
    auto gray = boost::make_shared<Type::GrayscaleImage>(4, 3);
    auto histogram = boost::make_shared<Type::Histogram>(6, 2);
    auto human = boost::make_shared<Type::Human>();
    human->setId(7);
    human->setName("Ada");
    auto object = boost::make_shared<Type::Object2D>(boost::make_shared<Type::Region2>(0, 0, 1, 1));
    std::ostringstream pixels;
    pixels << static_cast<void*>(gray->mat.data);

    const Data values[] = {
        Data(Type::Color(1, 2, 3)),
        Data(1.5f, 2),
        Data(1, 2, 3),
        Data(1, 2, 3, 4),
        Data(1, 2, 3, 4, 5, 6),
        Data(*histogram),
        Data(Type::Region3(1, 2, 3, 4, 5, 6)),
        Data(gray),
        Data(boost::make_shared<Type::ColorImage>(gray->mat.data, 2, 1)),
        Data(human),
        Data(object),
        Data(boost::make_shared<Type::Object3D>(boost::shared_ptr<Type::Region3>())),
        Data(boost::make_shared<Type::AudioBuffer>(4, 1, 8000, Type::Time())),
        Data(boost::make_shared<Type::Vector6>(0, 0, 0, 0, 0, 0)),
        // Without channels there is no channel size, rather than a division fault.
        Data(boost::make_shared<Type::Histogram>(1, 0))};
    std::string texts, types;
    for (const Data& value : values) {
        texts += value.toString() + " ";
        types += Data::getTypeName(value.getType()) + " ";
    }
    EXPECT_EQ(
        "{void*} {X=1.5 Y=2} {X=1 Y=2 Z=3} {X=1 Y=2 Z=3 W=4} "
        "{X=1 Y=2 Z=3 WX=4 WY=5 WZ=6} {Histogram Channels=2 Size=3} "
        "{Start=[1,23] End=[4,56]} {GrayscaleImage Width=4 Height=3 Data=" +
            pixels.str() + "} {Image Width=2 Height=1 Data=" + pixels.str() +
            "} {Human Id=7 Name=Ada} {Object2D } {Object3D } {void*} {X=0 Y=0 Z=0 WX=0 "
            "WY=0 WZ=0} {Histogram Channels=0 Size=0} ",
        texts);
    EXPECT_EQ(
        "Color Vector2 Vector3 Vector4 Vector6 Histogram Region3 GrayscaleImage ColorImage "
        "Human Object2D Object3D AudioBuffer Vector6 Histogram ",
        types);

    // A shared pointer is kept; a value is copied; pointers need the exact tag.
    const Data shared(gray), copied(*histogram);
    EXPECT_EQ(gray.get(), static_cast<Type::GrayscaleImage*>(shared));
    EXPECT_TRUE(!static_cast<Type::BinaryImage*>(shared) &&
                !static_cast<Type::Vector3*>(values[6]) &&
                static_cast<Type::Human*>(values[9]) == human.get());
    histogram->data(0, 0) = 5;
    EXPECT_EQ(join(0, 2), join(static_cast<Type::Histogram*>(copied)->max(),
                               static_cast<Type::Vector3*>(values[2])->y()));
    const Data empty{boost::shared_ptr<Type::ColorImage>()};
    EXPECT_TRUE(empty.getType() == ColorImage && empty.toString().empty() &&
                !static_cast<Type::ColorImage*>(empty));
}

// Every numeric conversion of every numeric tag at its extremes. A NaN matches a NaN, and the
// sign of a zero counts.
TEST(Data, NumericConversionsAtTheirExtremes) {
    struct Row {
        Data data;
        float asFloat;
        double asDouble;
        int asInt;
        unsigned int asUnsigned;
    };
    const float inf = INFINITY, nan = NAN;
    const Row rows[] = {
        {Data(0), 0, 0, 0, 0},
        {Data(-1), -1, -1, -1, 0},
        {Data(INT_MIN), -0x1p31f, -2147483648.0, INT_MIN, 0},
        {Data(INT_MAX), 0x1p31f, 2147483647.0, INT_MAX, 0},
        {Data(0u), 0, 0, 0, 0},
        {Data(0x80000000u), 0x1p31f, 2147483648.0, 0, 0x80000000u},  // not read as signed
        {Data(UINT_MAX), 0x1p32f, 4294967295.0, 0, UINT_MAX},
        {Data(-0.0f), -0.0f, -0.0, 0, 0},
        {Data(nan), nan, nan, 0, 0},
        {Data(inf), inf, inf, 0, 0},
        {Data(-inf), -inf, -inf, 0, 0},
        {Data(FLT_MAX), FLT_MAX, FLT_MAX, 0, 0},
        {Data(double(nan)), 0, nan, 0, 0},  // a Double never narrows
        {Data(-1e300), 0, -1e300, 0, 0},
        {Data(DBL_MAX), 0, DBL_MAX, 0, 0},
        {Data(true), 0, 0, 0, 0},
        {Data("12"), 0, 0, 0, 0},
        {Data(Type::Time(3)), 0, 0, 0, 0},
    };
    auto same = [](double a, double b) {
        return (std::isnan(a) && std::isnan(b)) || (a == b && std::signbit(a) == std::signbit(b));
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(Data::getTypeName(row.data.getType()) + " " + row.data.toString());
        EXPECT_TRUE(same(row.asFloat, float(row.data))) << float(row.data);
        EXPECT_TRUE(same(row.asDouble, double(row.data))) << double(row.data);
        EXPECT_EQ(row.asInt, int(row.data));
        EXPECT_EQ(row.asUnsigned, static_cast<unsigned int>(row.data));
        EXPECT_EQ(row.data.getType() == Boolean, bool(row.data));
    }
}

TEST(Objects, PropertiesPrintInMapOrderAndTheRegionIsShared) {
    auto region = boost::make_shared<Type::Region3>(0, 0, 0, 1, 1, 1);
    Type::Object3D object(region);
    EXPECT_EQ(region, object.getRegion());
    object.setPropertyData(7, boost::make_shared<Data>(3));
    EXPECT_EQ("{ 7 = 3}", object.toString());
    object.setPropertyData(8, boost::make_shared<Data>("x"));
    const std::string both = object.toString();
    EXPECT_TRUE(both == "{ 7 = 3}{ 8 = x}" || both == "{ 8 = x}{ 7 = 3}") << both;
    object.removeProperty(7);
    EXPECT_TRUE(!object.hasProperty(7) && object.hasProperty(8) && !object.getPropertyData(7));
}

TEST(Human, GuardedRecordThatWarnsOnlyWhenRemovingWhatIsMissing) {
    Type::Human human;
    EXPECT_TRUE(!human.getPosition() && human.getId() == 0 && human.getName().empty() &&
                std::isnan(human.getScore("x")) && !human.hasScore("x") &&
                !human.getObject2D("head") && !human.getObject3D("head") &&
                !human.getPropertyData(3));

    human.setId(7);
    human.setScore("x", 1);
    human.setScore("x", 2);
    auto head = boost::make_shared<Type::Object2D>(boost::make_shared<Type::Region2>(0, 0, 1, 1));
    human.setObject2D("head", head);
    human.setObject3D("body", boost::make_shared<Type::Object3D>(nullptr));
    human.setPropertyData(3, boost::make_shared<Data>(1));
    auto position = boost::make_shared<Type::Vector3>(1, 2, 3);
    human.setPosition(position);
    EXPECT_TRUE(human.getScore("x") == 2 && human.getObject2D("head") == head &&
                human.getPosition() == position && human.hasObject3D("body") &&
                human.hasProperty(3) && int(*human.getPropertyData(3)) == 1);

    // Each removal twice: only the second of each complains.
    LogCapture log;
    for (int pass = 0; pass < 2; ++pass) {
        human.removeScore("x");
        human.removeObject2D("head");
        human.removeObject3D("body");
        human.removeProperty(3);
    }
    EXPECT_EQ(
        "3 tessarity.datahuman Human 7 does not have any score called \" x\" \n"
        "3 tessarity.datahuman Human 7 does not have any Object2D called \" head\" \n"
        "3 tessarity.datahuman Human 7 does not have any Object3D called \" body\" \n"
        "3 tessarity.datahuman Human 7 does not have any property 3 \n",
        logged(log));
    EXPECT_FALSE(human.hasScore("x") || human.hasObject2D("head") || human.hasProperty(3));
}

TEST(Histogram, SearchesOverAllBinsOrOneChannel) {
    float bins[] = {1, 3, 2, -2, 9, 0};
    Type::Histogram borrowed(bins, 6, 2), copied(static_cast<const float*>(bins), 6, 2);
    EXPECT_EQ("3 2 -2 9 -2 3 1 9 4 ",
              join(borrowed.getChannelSize(), borrowed.getChannels(), borrowed.min(),
                   borrowed.max(), borrowed.min(1), borrowed.max(1), borrowed.min(0),
                   borrowed.max(0), borrowed.argmax()));
    bins[4] = 0;  // the borrowed one sees it, the copy does not
    EXPECT_EQ(join(1, 4, 0, 9),
              join(borrowed.argmax(), copied.argmax(), borrowed.data(2, 0), copied.data(2, 0)));
    float firstOfEquals[] = {1, 3, 3};
    EXPECT_EQ(1u, Type::Histogram(firstOfEquals, 3, 1).argmax());

    auto indices = [](const std::vector<unsigned int>& found) {
        std::string out;
        for (unsigned int i : found) out += std::to_string(i) + " ";
        return out;
    };
    EXPECT_EQ("4 1 |4 ||6 0 ", indices(copied.argmax(2)) + "|" + indices(copied.argmax(1)) + "|" +
                                   indices(copied.argmax(0)) + "|" +
                                   join(copied.argmax(50).size(), Type::Histogram(1, 1).argmax()));
    copied.clear();
    EXPECT_EQ(join(0, 0), join(copied.min(), copied.max()));
}

TEST(Histogram, BinsThatCannotBeAllocatedAreLoggedNotThrown) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizers' allocators abort where the plain one throws";
#else
    // With 8 GiB of address space, 16 GiB of bins cannot be had.
    rlimit saved;
    ASSERT_EQ(0, getrlimit(RLIMIT_AS, &saved));
    rlimit capped = saved;
    capped.rlim_cur = 8ULL << 30;
    ASSERT_EQ(0, setrlimit(RLIMIT_AS, &capped));
    LogCapture log;
    const float one = 1;
    Type::Histogram copied(&one, UINT_MAX, 1), cleared(UINT_MAX, 1);
    setrlimit(RLIMIT_AS, &saved);
    EXPECT_TRUE(!copied.getData() && !cleared.getData() && copied.getSize() == UINT_MAX);
    EXPECT_EQ(
        "2 Tessarity Histogram(const dataType*)Received exception during histogram creation : "
        "std::bad_alloc \n"
        "2 Tessarity Histogram(...)Received exception during histogram creation : "
        "std::bad_alloc \n",
        logged(log));
#endif
}

TEST(Images, ConstPointersCopyAndOthersBorrowInEveryClass) {
    forEachImageClass([](auto tag) {
        typedef typename decltype(tag)::Class C;
        typedef typename C::Sample T;
        SCOPED_TRACE(Data::getTypeName(Data(boost::shared_ptr<C>()).getType()));
        std::vector<T> buffer(4 * 3 * C::Channels, T(1));
        const T* frozen = buffer.data();
        C copied(frozen, 4, 3), borrowed(buffer.data(), 4, 3, "yuv", Type::Time(5), 2.0f, 1.0f);
        buffer[C::Channels * 5] = T(7);  // the pixel (1, 1)
        EXPECT_EQ(T(1), copied.mat.template at<T>(1, C::Channels));
        EXPECT_EQ(T(7), borrowed.mat.template at<T>(1, C::Channels));
        EXPECT_EQ(static_cast<void*>(buffer.data()), borrowed.mat.data);
        EXPECT_TRUE(copied.mat.type() == C::MatType && copied.getWidth() == 4 &&
                    copied.getHeight() == 3 && copied.colorSpace == "unknow" &&
                    copied.timestamp != Type::Time() && copied.horizontalAngle == 0 &&
                    copied.verticalAngle == 0);

        // Derived images keep the metadata; clone and extract own their pixels.
        cv::Mat shared = borrowed.mat;
        const Type::Image<T, C::Channels>& base = borrowed;  // the template's own members too
        auto derived = {C(shared, "yuv", Type::Time(5), 2.0f, 1.0f), *borrowed.clone(),
                        *borrowed.scaleDown(2), *borrowed.extract(Type::Region2(0, 1, 3, 2)),
                        *base.template extract<C>(0, 1, 3, 2)};
        std::string shapes;
        for (const C& image : derived) {
            EXPECT_TRUE(image.colorSpace == "yuv" && image.timestamp == Type::Time(5));
            shapes += join(image.getWidth(), image.getHeight(), image.horizontalAngle,
                           image.verticalAngle, image.mat.data == borrowed.mat.data);
        }
        EXPECT_EQ("4 3 2 1 1 4 3 2 1 0 2 1 2 1 0 4 2 2 0.666667 0 4 2 2 0.666667 0 ", shapes);
    });
}

TEST(Images, PixelAccessorsFollowTheRowStep) {
    unsigned char rgb[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    Type::ColorImage wide(rgb, 2, 2);
    Type::ColorImage column(wide.mat.colRange(1, 2));  // a view with a step of two pixels
    column.pixelBlue(0, 1) = 99;
    EXPECT_EQ(join(4, 5, 6, 99), join(int(column.pixelRed(0, 0)), int(column.pixelGreen(0, 0)),
                                      int(column.pixelBlue(0, 0)), int(rgb[11])));
    float xyz[] = {1, 2, 3, 4, 5, 6};
    const Type::XYZImage points(xyz, 2, 1);
    EXPECT_EQ(join(4, 5, 6), join(points.pixelX(1, 0), points.pixelY(1, 0), points.pixelZ(1, 0)));
    Type::LabelImage labels = filled<Type::LabelImage>(3, 2, {2, 5, 2, 0});
    auto flat = [&labels] {
        return join(labels.pixel(0, 0), labels.pixel(1, 0), labels.pixel(2, 0), labels.pixel(0, 1),
                    labels.pixel(1, 1), labels.pixel(2, 1));
    };
    labels.changeLabel(2, 2);
    EXPECT_EQ("2 5 2 0 2 5 ", flat());
    labels.changeLabel(2, 5);  // merges into the region already labelled 5
    EXPECT_EQ("5 5 5 0 5 5 ", flat());
}
