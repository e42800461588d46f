#ifndef TESSARITY_TYPES_OBJECT_H
#define TESSARITY_TYPES_OBJECT_H

#include <tessarity/export.h>

#include <string>
#include <utility>

#include <boost/shared_ptr.hpp>
#include <boost/thread/mutex.hpp>
#include <boost/unordered_map.hpp>

#include <tessarity/types/region.h>

namespace Tessarity {

class Data;

namespace Type {

// A tracked thing: a region shared with whoever handed it in, and numbered properties. Only the
// properties are guarded; the region pointer is set once and read freely.
template <typename R>
class TESSARITY_EXPORT Object {
public:
    typedef boost::unordered_map<int, boost::shared_ptr<Data>> Properties;

    explicit Object(boost::shared_ptr<R> region) : _region(std::move(region)) {}
    virtual ~Object() = default;

    // The properties as "{ key = value}" one after the other, in the map's order. A property
    // must not hold this object: the lock is held while the values print.
    virtual std::string toString() = 0;

    boost::shared_ptr<R> getRegion() const { return _region; }
    void setRegion(boost::shared_ptr<R> region) { _region = std::move(region); }

    boost::shared_ptr<Data> getPropertyData(int key) const {
        boost::mutex::scoped_lock lock(_propertiesMutex);
        typename Properties::const_iterator found = _properties.find(key);
        return found == _properties.end() ? boost::shared_ptr<Data>() : found->second;
    }
    bool hasProperty(int key) const {
        boost::mutex::scoped_lock lock(_propertiesMutex);
        return _properties.count(key) != 0;
    }
    void setPropertyData(int key, boost::shared_ptr<Data> value) {
        boost::mutex::scoped_lock lock(_propertiesMutex);
        _properties[key] = std::move(value);
    }
    void removeProperty(int key) {
        boost::mutex::scoped_lock lock(_propertiesMutex);
        _properties.erase(key);
    }

protected:
    boost::shared_ptr<R> _region;
    Properties _properties;
    mutable boost::mutex _propertiesMutex;
};

class TESSARITY_EXPORT Object2D : public Object<Region2> {
public:
    explicit Object2D(boost::shared_ptr<Region2> region) : Object(std::move(region)) {}
    std::string toString() override;
};

class TESSARITY_EXPORT Object3D : public Object<Region3> {
public:
    explicit Object3D(boost::shared_ptr<Region3> region) : Object(std::move(region)) {}
    std::string toString() override;
};

}  // namespace Type
}  // namespace Tessarity

#endif
