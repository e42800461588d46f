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
    Data(const Type::Time& value);
    Data(const Type::Duration& value);

    Data(boost::shared_ptr<void> value);  // tagged Unknown
    Data(boost::shared_ptr<Type::Time> value);
    Data(boost::shared_ptr<Type::Duration> value);

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
    operator Type::Time*() const { return _payloadAs<Type::Time>(Time); }
    operator Type::Duration*() const { return _payloadAs<Type::Duration>(Duration); }

private:
    template <typename T>
    T* _payloadAs(DataType tag) const {
        return _type == tag ? static_cast<T*>(_data.get()) : nullptr;
    }

    boost::shared_ptr<void> _data;
    DataType _type;
    Type::Time _timestamp;
    // Whether the payload was made here from a value rather than handed over. Kept for the
    // layout and for debugging; nothing decides on it.
    [[maybe_unused]] bool _selfMade;
};

}  // namespace Tessarity

#endif
