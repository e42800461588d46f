#include <tessarity/data.h>

#include <cstddef>
#include <sstream>
#include <utility>

#include <boost/make_shared.hpp>

#include <tessarity/types/audio_buffer.h>
#include <tessarity/types/color.h>
#include <tessarity/types/histogram.h>
#include <tessarity/types/human.h>
#include <tessarity/types/image.h>
#include <tessarity/types/object.h>
#include <tessarity/types/region.h>
#include <tessarity/types/vector.h>

namespace Tessarity {

namespace {

// Indexed by DataType; these spellings are what programs and user filters write.
const char* const typeNames[] = {"Invalid",        "Boolean",     "Integer",    "UnsignedInteger",
                                 "Float",          "Double",      "String",     "ColorImage",
                                 "GrayscaleImage", "BinaryImage", "LabelImage", "DepthImage",
                                 "XYZImage",       "MatrixImage", "Histogram",  "AudioBuffer",
                                 "Color",          "Vector2",     "Vector3",    "Vector4",
                                 "Vector6",        "Region2",     "Region3",    "Array",
                                 "Human",          "Object2D",    "Object3D",   "Time",
                                 "Duration",       "Unknown",     "Lambda"};
constexpr int typeCount = sizeof(typeNames) / sizeof(typeNames[0]);
static_assert(typeCount == Lambda + 1, "one name per DataType");

// Images print their class, but a ColorImage says only "Image".
template <typename I>
void writeImage(std::ostream& text, const char* name, const void* payload) {
    const I& image = *static_cast<const I*>(payload);
    text << "{" << name << " Width=" << image.getWidth() << " Height=" << image.getHeight()
         << " Data=" << static_cast<const void*>(image.mat.data) << "}";
}

template <typename O>
void writeObject(std::ostream& text, const char* name, const void* payload) {
    // toString is not const: it takes the object's lock.
    text << "{" << name << " " << const_cast<O*>(static_cast<const O*>(payload))->toString() << "}";
}

}  // namespace

Data::Data() : _type(Invalid), _selfMade(false) {}

Data::Data(bool value) : _data(boost::make_shared<bool>(value)), _type(Boolean), _selfMade(true) {}

Data::Data(int value) : _data(boost::make_shared<int>(value)), _type(Integer), _selfMade(true) {}

Data::Data(unsigned int value)
    : _data(boost::make_shared<unsigned int>(value)), _type(UnsignedInteger), _selfMade(true) {}

Data::Data(float value) : _data(boost::make_shared<float>(value)), _type(Float), _selfMade(true) {}

Data::Data(double value)
    : _data(boost::make_shared<double>(value)), _type(Double), _selfMade(true) {}

Data::Data(const std::string& value)
    : _data(boost::make_shared<std::string>(value)), _type(String), _selfMade(true) {}

// std::string refuses a null pointer with an exception; a value class must not throw.
Data::Data(const char* value)
    : _data(value ? boost::make_shared<std::string>(value) : boost::make_shared<std::string>()),
      _type(String),
      _selfMade(true) {}

Data::Data(const std::vector<boost::shared_ptr<Data>>& value)
    : _data(boost::make_shared<std::vector<boost::shared_ptr<Data>>>(value)),
      _type(Array),
      _selfMade(true) {}

Data::Data(const Type::Color& value)
    : _data(boost::make_shared<Type::Color>(value)), _type(Color), _selfMade(true) {}

Data::Data(const Type::Vector2& value)
    : _data(boost::make_shared<Type::Vector2>(value)), _type(Vector2), _selfMade(true) {}

Data::Data(float x, float y) : Data(Type::Vector2(x, y)) {}

Data::Data(const Type::Vector3& value)
    : _data(boost::make_shared<Type::Vector3>(value)), _type(Vector3), _selfMade(true) {}

Data::Data(float x, float y, float z) : Data(Type::Vector3(x, y, z)) {}

Data::Data(const Type::Vector4& value)
    : _data(boost::make_shared<Type::Vector4>(value)), _type(Vector4), _selfMade(true) {}

Data::Data(float x, float y, float z, float w) : Data(Type::Vector4(x, y, z, w)) {}

Data::Data(const Type::Vector6& value)
    : _data(boost::make_shared<Type::Vector6>(value)), _type(Vector6), _selfMade(true) {}

Data::Data(float x, float y, float z, float wx, float wy, float wz)
    : Data(Type::Vector6(x, y, z, wx, wy, wz)) {}

Data::Data(const Type::Histogram& value)
    : _data(boost::make_shared<Type::Histogram>(static_cast<const float*>(value.getData()),
                                                value.getSize(), value.getChannels())),
      _type(Histogram),
      _selfMade(true) {}

Data::Data(const Type::Region2& value)
    : _data(boost::make_shared<Type::Region2>(value)), _type(Region2), _selfMade(true) {}

Data::Data(const Type::Region3& value)
    : _data(boost::make_shared<Type::Region3>(value)), _type(Region3), _selfMade(true) {}

Data::Data(const Type::Time& value)
    : _data(boost::make_shared<Type::Time>(value)), _type(Time), _selfMade(true) {}

Data::Data(const Type::Duration& value)
    : _data(boost::make_shared<Type::Duration>(value)), _type(Duration), _selfMade(true) {}

Data::Data(boost::shared_ptr<void> value)
    : _data(std::move(value)), _type(Unknown), _selfMade(false) {}

#define TESSARITY_SHARED_CONSTRUCTOR(T, selfMade) \
    Data::Data(boost::shared_ptr<Type::T> value)  \
        : _data(std::move(value)), _type(T), _selfMade(selfMade) {}

TESSARITY_SHARED_CONSTRUCTOR(ColorImage, false)
TESSARITY_SHARED_CONSTRUCTOR(GrayscaleImage, false)
TESSARITY_SHARED_CONSTRUCTOR(BinaryImage, false)
TESSARITY_SHARED_CONSTRUCTOR(LabelImage, false)
TESSARITY_SHARED_CONSTRUCTOR(DepthImage, false)
TESSARITY_SHARED_CONSTRUCTOR(XYZImage, false)
TESSARITY_SHARED_CONSTRUCTOR(MatrixImage, false)
TESSARITY_SHARED_CONSTRUCTOR(AudioBuffer, false)
TESSARITY_SHARED_CONSTRUCTOR(Color, false)
TESSARITY_SHARED_CONSTRUCTOR(Vector2, false)
TESSARITY_SHARED_CONSTRUCTOR(Vector3, false)
TESSARITY_SHARED_CONSTRUCTOR(Vector4, false)
TESSARITY_SHARED_CONSTRUCTOR(Vector6, true)
TESSARITY_SHARED_CONSTRUCTOR(Histogram, false)
TESSARITY_SHARED_CONSTRUCTOR(Region2, false)
TESSARITY_SHARED_CONSTRUCTOR(Region3, false)
TESSARITY_SHARED_CONSTRUCTOR(Human, false)
TESSARITY_SHARED_CONSTRUCTOR(Object2D, false)
TESSARITY_SHARED_CONSTRUCTOR(Object3D, false)
TESSARITY_SHARED_CONSTRUCTOR(Time, false)
TESSARITY_SHARED_CONSTRUCTOR(Duration, false)
TESSARITY_SHARED_CONSTRUCTOR(Lambda, false)

#undef TESSARITY_SHARED_CONSTRUCTOR

std::string Data::getTypeName(DataType type) {
    if (type < 1 || type >= typeCount) return typeNames[Invalid];
    return typeNames[type];
}

DataType Data::getTypeFromName(const std::string& name) {
    for (int type = 1; type < typeCount; ++type)
        if (name == typeNames[type]) return static_cast<DataType>(type);
    return Invalid;
}

Data::operator bool() const { return _type == Boolean ? *static_cast<bool*>(_data.get()) : false; }

Data::operator int() const { return _type == Integer ? *static_cast<int*>(_data.get()) : 0; }

Data::operator unsigned int() const {
    return _type == UnsignedInteger ? *static_cast<unsigned int*>(_data.get()) : 0u;
}

Data::operator float() const {
    switch (_type) {
        case Integer:
            return static_cast<float>(*static_cast<int*>(_data.get()));
        case UnsignedInteger:
            return static_cast<float>(*static_cast<unsigned int*>(_data.get()));
        case Float:
            return *static_cast<float*>(_data.get());
        default:
            return 0.0f;
    }
}

Data::operator double() const {
    switch (_type) {
        case Integer:
            return *static_cast<int*>(_data.get());
        case UnsignedInteger:
            return *static_cast<unsigned int*>(_data.get());
        case Float:
            return *static_cast<float*>(_data.get());
        case Double:
            return *static_cast<double*>(_data.get());
        default:
            return 0.0;
    }
}

Data::operator std::string() const {
    return _type == String ? *static_cast<std::string*>(_data.get()) : std::string();
}

Data::operator std::vector<boost::shared_ptr<Data>>() const {
    typedef std::vector<boost::shared_ptr<Data>> Elements;
    return _type == Array ? *static_cast<Elements*>(_data.get()) : Elements();
}

std::string Data::toString() const {
    if (!_data) return std::string();
    std::ostringstream text;
    const void* payload = _data.get();
    switch (_type) {
        case Boolean:
            text << (*static_cast<const bool*>(payload) ? "True" : "False");
            break;
        case Integer:
            text << *static_cast<const int*>(payload);
            break;
        case UnsignedInteger:
            text << *static_cast<const unsigned int*>(payload);
            break;
        case Float:
            text << *static_cast<const float*>(payload) << "f";
            break;
        case Double:
            text << *static_cast<const double*>(payload);
            break;
        case String:
            text << *static_cast<const std::string*>(payload);
            break;
        case Array: {
            const auto& elements =
                *static_cast<const std::vector<boost::shared_ptr<Data>>*>(payload);
            text << "{";
            for (std::size_t i = 0; i < elements.size(); ++i) {
                if (i > 0) text << ";";
                text << (elements[i] ? elements[i]->toString() : std::string("NULL"));
            }
            text << "}";
            break;
        }
        case ColorImage:
            writeImage<Type::ColorImage>(text, "Image", payload);
            break;
        case GrayscaleImage:
            writeImage<Type::GrayscaleImage>(text, "GrayscaleImage", payload);
            break;
        case BinaryImage:
            writeImage<Type::BinaryImage>(text, "BinaryImage", payload);
            break;
        case LabelImage:
            writeImage<Type::LabelImage>(text, "LabelImage", payload);
            break;
        case DepthImage:
            writeImage<Type::DepthImage>(text, "DepthImage", payload);
            break;
        case XYZImage:
            writeImage<Type::XYZImage>(text, "XYZImage", payload);
            break;
        case MatrixImage:
            writeImage<Type::MatrixImage>(text, "MatrixImage", payload);
            break;
        case Histogram: {
            const auto& histogram = *static_cast<const Type::Histogram*>(payload);
            text << "{Histogram Channels=" << histogram.getChannels()
                 << " Size=" << histogram.getChannelSize() << "}";
            break;
        }
        case Vector2: {
            const auto& v = *static_cast<const Type::Vector2*>(payload);
            text << "{X=" << v.x() << " Y=" << v.y() << "}";
            break;
        }
        case Vector3: {
            const auto& v = *static_cast<const Type::Vector3*>(payload);
            text << "{X=" << v.x() << " Y=" << v.y() << " Z=" << v.z() << "}";
            break;
        }
        case Vector4: {
            const auto& v = *static_cast<const Type::Vector4*>(payload);
            text << "{X=" << v.x() << " Y=" << v.y() << " Z=" << v.z() << " W=" << v.w() << "}";
            break;
        }
        case Vector6: {
            const auto& v = *static_cast<const Type::Vector6*>(payload);
            text << "{X=" << v.x() << " Y=" << v.y() << " Z=" << v.z() << " WX=" << v.wx()
                 << " WY=" << v.wy() << " WZ=" << v.wz() << "}";
            break;
        }
        case Region2: {
            const auto& r = *static_cast<const Type::Region2*>(payload);
            text << "{Start=[" << r.start.x() << "," << r.start.y() << "] End=[" << r.end.x() << ","
                 << r.end.y() << "]}";
            break;
        }
        case Region3: {
            // No separator between y and z: readers of this text expect it so.
            const auto& r = *static_cast<const Type::Region3*>(payload);
            text << "{Start=[" << r.start.x() << "," << r.start.y() << r.start.z() << "] End=["
                 << r.end.x() << "," << r.end.y() << r.end.z() << "]}";
            break;
        }
        case Human: {
            // Two getters, so the human's lock is taken twice, one after the other.
            const auto& human = *static_cast<const Type::Human*>(payload);
            text << "{Human Id=" << human.getId() << " Name=" << human.getName() << "}";
            break;
        }
        case Object2D:
            writeObject<Type::Object2D>(text, "Object2D", payload);
            break;
        case Object3D:
            writeObject<Type::Object3D>(text, "Object3D", payload);
            break;
        case Time:
            text << "{Time second=" << static_cast<const Type::Time*>(payload)->getTotalSeconds()
                 << "}";
            break;
        case Duration:
            text << "{Duration Milliseconds="
                 << static_cast<const Type::Duration*>(payload)->getTotalMilliseconds() << "}";
            break;
        default:
            // AudioBuffer, Color, Lambda, Unknown and foreign numbers print no contents.
            text << "{void*}";
            break;
    }
    return text.str();
}

}  // namespace Tessarity
