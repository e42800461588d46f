#ifndef TESSARITY_DATA_H
#define TESSARITY_DATA_H

#include <tessarity/export.h>

#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include <tessarity/datatype.h>
#include <tessarity/duration.h>
#include <tessarity/time.h>

namespace Tessarity {

namespace Type {
class Color;
class Vector2;
class Vector3;
class Vector4;
class Vector6;
class Region2;
class Region3;
class Histogram;
class AudioBuffer;
class Human;
class Object2D;
class Object3D;
class ColorImage;
class GrayscaleImage;
class BinaryImage;
class LabelImage;
class DepthImage;
class XYZImage;
class MatrixImage;
class Lambda;
}  // namespace Type

// The one value type that flows through a graph: a tag, a shared untyped payload and a
// timestamp. Constructors from a value copy it into a fresh payload; constructors from a
// shared pointer keep that very pointer, so every holder sees one object. Conversions never
// throw: a tag that does not match gives zero, null or empty.
class TESSARITY_EXPORT Data {
public:
    Data();
    Data(bool value);
    Data(int value);
    Data(unsigned int value);
    Data(float value);
    Data(double value);
    Data(const std::string& value);
    Data(const char* value);  // null gives the empty string
    Data(const std::vector<boost::shared_ptr<Data>>& value);
    Data(const Type::Color& value);
    Data(const Type::Vector2& value);
    Data(float x, float y);
    Data(const Type::Vector3& value);
    Data(float x, float y, float z);
    Data(const Type::Vector4& value);
    Data(float x, float y, float z, float w);
    Data(const Type::Vector6& value);
    Data(float x, float y, float z, float wx, float wy, float wz);
    Data(const Type::Histogram& value);  // a new histogram with a copy of the bins
    Data(const Type::Region2& value);
    Data(const Type::Region3& value);
    Data(const Type::Time& value);
    Data(const Type::Duration& value);

    // Images, audio buffers, humans and objects come by shared pointer only.
    Data(boost::shared_ptr<void> value);  // tagged Unknown
    Data(boost::shared_ptr<Type::ColorImage> value);
    Data(boost::shared_ptr<Type::GrayscaleImage> value);
    Data(boost::shared_ptr<Type::BinaryImage> value);
    Data(boost::shared_ptr<Type::LabelImage> value);
    Data(boost::shared_ptr<Type::DepthImage> value);
    Data(boost::shared_ptr<Type::XYZImage> value);
    Data(boost::shared_ptr<Type::MatrixImage> value);
    Data(boost::shared_ptr<Type::AudioBuffer> value);
    Data(boost::shared_ptr<Type::Color> value);
    Data(boost::shared_ptr<Type::Vector2> value);
    Data(boost::shared_ptr<Type::Vector3> value);
    Data(boost::shared_ptr<Type::Vector4> value);
    Data(boost::shared_ptr<Type::Vector6> value);
    Data(boost::shared_ptr<Type::Histogram> value);
    Data(boost::shared_ptr<Type::Region2> value);
    Data(boost::shared_ptr<Type::Region3> value);
    Data(boost::shared_ptr<Type::Human> value);
    Data(boost::shared_ptr<Type::Object2D> value);
    Data(boost::shared_ptr<Type::Object3D> value);
    Data(boost::shared_ptr<Type::Time> value);
    Data(boost::shared_ptr<Type::Duration> value);
    Data(boost::shared_ptr<Type::Lambda> value);

    static std::string getTypeName(DataType type);
    static DataType getTypeFromName(const std::string& name);

    DataType getType() const { return _type; }
    boost::shared_ptr<void> getRawData() const { return _data; }

    void setTimestamp(const Type::Time& time) { _timestamp = time; }
    Type::Time getTimestamp() const { return _timestamp; }

    std::string toString() const;

    // The payload whatever the tag.
    operator void*() const { return _data.get(); }

    // The value conversions dereference the payload unchecked once the tag matches.
    operator bool() const;
    operator int() const;
    operator unsigned int() const;
    operator float() const;   // also from Integer and UnsignedInteger
    operator double() const;  // also from Integer, UnsignedInteger and Float
    operator std::string() const;
    operator std::vector<boost::shared_ptr<Data>>() const;

    // Pointer conversions accept their own tag only, with no widening. They take no reference:
    // the pointer lives as long as some holder of the payload does.
    operator bool*() const { return _payloadAs<bool>(Boolean); }
    operator int*() const { return _payloadAs<int>(Integer); }
    operator unsigned int*() const { return _payloadAs<unsigned int>(UnsignedInteger); }
    operator float*() const { return _payloadAs<float>(Float); }
    operator double*() const { return _payloadAs<double>(Double); }
    operator std::string*() const { return _payloadAs<std::string>(String); }
    operator std::vector<boost::shared_ptr<Data>>*() const {
        return _payloadAs<std::vector<boost::shared_ptr<Data>>>(Array);
    }
    operator Type::ColorImage*() const { return _payloadAs<Type::ColorImage>(ColorImage); }
    operator Type::GrayscaleImage*() const {
        return _payloadAs<Type::GrayscaleImage>(GrayscaleImage);
    }
    operator Type::BinaryImage*() const { return _payloadAs<Type::BinaryImage>(BinaryImage); }
    operator Type::LabelImage*() const { return _payloadAs<Type::LabelImage>(LabelImage); }
    operator Type::DepthImage*() const { return _payloadAs<Type::DepthImage>(DepthImage); }
    operator Type::XYZImage*() const { return _payloadAs<Type::XYZImage>(XYZImage); }
    operator Type::MatrixImage*() const { return _payloadAs<Type::MatrixImage>(MatrixImage); }
    operator Type::Histogram*() const { return _payloadAs<Type::Histogram>(Histogram); }
    operator Type::AudioBuffer*() const { return _payloadAs<Type::AudioBuffer>(AudioBuffer); }
    operator Type::Color*() const { return _payloadAs<Type::Color>(Color); }
    operator Type::Vector2*() const { return _payloadAs<Type::Vector2>(Vector2); }
    operator Type::Vector3*() const { return _payloadAs<Type::Vector3>(Vector3); }
    operator Type::Vector4*() const { return _payloadAs<Type::Vector4>(Vector4); }
    operator Type::Vector6*() const { return _payloadAs<Type::Vector6>(Vector6); }
    operator Type::Region2*() const { return _payloadAs<Type::Region2>(Region2); }
    operator Type::Region3*() const { return _payloadAs<Type::Region3>(Region3); }
    operator Type::Human*() const { return _payloadAs<Type::Human>(Human); }
    operator Type::Object2D*() const { return _payloadAs<Type::Object2D>(Object2D); }
    operator Type::Object3D*() const { return _payloadAs<Type::Object3D>(Object3D); }
    operator Type::Time*() const { return _payloadAs<Type::Time>(Time); }
    operator Type::Duration*() const { return _payloadAs<Type::Duration>(Duration); }
    operator Type::Lambda*() const { return _payloadAs<Type::Lambda>(Lambda); }

private:
    template <typename T>
    T* _payloadAs(DataType tag) const {
        return _type == tag ? static_cast<T*>(_data.get()) : nullptr;
    }

    boost::shared_ptr<void> _data;
    DataType _type;
    Type::Time _timestamp;
    // Whether the payload was made here from a value rather than handed over. Kept for the
    // layout and for debugging; nothing decides on it. A shared Vector6 is marked as made here,
    // unlike the other shared pointers.
    [[maybe_unused]] bool _selfMade;
};

}  // namespace Tessarity

#endif
