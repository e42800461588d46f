#ifndef TESSARITY_TYPES_HUMAN_H
#define TESSARITY_TYPES_HUMAN_H

#include <tessarity/export.h>

#include <map>
#include <string>

#include <boost/shared_ptr.hpp>
#include <boost/thread/mutex.hpp>
#include <boost/unordered_map.hpp>

#include <tessarity/types/object.h>
#include <tessarity/types/vector.h>

namespace Tessarity {

class Data;

namespace Type {

// A person: an identity, a position and open sets of named scores and objects and numbered
// properties. Unlike the other records it changes after construction, so every operation
// holds the object's mutex; what the getters hand out is a copy or a shared pointer and is no
// longer guarded. The mutex is not recursive, so no operation calls another.
class TESSARITY_EXPORT Human {
public:
    Human();

    std::string getName() const;
    void setName(const std::string& name);
    unsigned long long getId() const;
    void setId(unsigned long long id);
    boost::shared_ptr<Vector3> getPosition() const;
    void setPosition(boost::shared_ptr<Vector3> position);

    // A quiet NaN for an unknown name.
    float getScore(const std::string& name) const;
    bool hasScore(const std::string& name) const;
    void setScore(const std::string& name, float score);
    void removeScore(const std::string& name);

    // Null for an unknown name; otherwise the object that was stored, not a copy.
    boost::shared_ptr<Object2D> getObject2D(const std::string& name) const;
    bool hasObject2D(const std::string& name) const;
    void setObject2D(const std::string& name, boost::shared_ptr<Object2D> object);
    void removeObject2D(const std::string& name);

    boost::shared_ptr<Object3D> getObject3D(const std::string& name) const;
    bool hasObject3D(const std::string& name) const;
    void setObject3D(const std::string& name, boost::shared_ptr<Object3D> object);
    void removeObject3D(const std::string& name);

    boost::shared_ptr<Data> getPropertyData(int key) const;
    bool hasProperty(int key) const;
    void setPropertyData(int key, boost::shared_ptr<Data> value);
    void removeProperty(int key);

private:
    unsigned long long _id;
    std::string _name;
    boost::shared_ptr<Vector3> _position;
    std::map<std::string, float> _scores;
    std::map<std::string, boost::shared_ptr<Object2D>> _objects2D;
    std::map<std::string, boost::shared_ptr<Object3D>> _objects3D;
    boost::unordered_map<int, boost::shared_ptr<Data>> _properties;
    mutable boost::mutex _mutex;
};

}  // namespace Type
}  // namespace Tessarity

#endif
