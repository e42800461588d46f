#include <tessarity/data.h>

#include <cstddef>
#include <sstream>
#include <utility>

#include <boost/make_shared.hpp>

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

Data::Data(const Type::Time& value)
    : _data(boost::make_shared<Type::Time>(value)), _type(Time), _selfMade(true) {}

Data::Data(const Type::Duration& value)
    : _data(boost::make_shared<Type::Duration>(value)), _type(Duration), _selfMade(true) {}

Data::Data(boost::shared_ptr<void> value)
    : _data(std::move(value)), _type(Unknown), _selfMade(false) {}

Data::Data(boost::shared_ptr<Type::Time> value)
    : _data(std::move(value)), _type(Time), _selfMade(false) {}

Data::Data(boost::shared_ptr<Type::Duration> value)
    : _data(std::move(value)), _type(Duration), _selfMade(false) {}

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
        case Time:
            text << "{Time second=" << static_cast<const Type::Time*>(payload)->getTotalSeconds()
                 << "}";
            break;
        case Duration:
            text << "{Duration Milliseconds="
                 << static_cast<const Type::Duration*>(payload)->getTotalMilliseconds() << "}";
            break;
        default:
            // Tags whose records print nothing of their own, Unknown, and foreign numbers.
            text << "{void*}";
            break;
    }
    return text.str();
}

}  // namespace Tessarity
