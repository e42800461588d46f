#include <tessarity/types/human.h>

#include <limits>

#include "common/logging.h"

namespace Tessarity {
namespace Type {

namespace {

const char* const kLogCategory = "tessarity.datahuman";
const char* const kLogFile = "src/datahuman";

typedef boost::mutex::scoped_lock Lock;

template <typename Map>
typename Map::mapped_type valueOr(const Map& map, const typename Map::key_type& key,
                                  const typename Map::mapped_type& missing) {
    typename Map::const_iterator found = map.find(key);
    return found == map.end() ? missing : found->second;
}

}  // namespace

Human::Human() : _id(0) {}

std::string Human::getName() const {
    Lock lock(_mutex);
    return _name;
}

void Human::setName(const std::string& name) {
    Lock lock(_mutex);
    _name = name;
}

unsigned long long Human::getId() const {
    Lock lock(_mutex);
    return _id;
}

void Human::setId(unsigned long long id) {
    Lock lock(_mutex);
    _id = id;
}

boost::shared_ptr<Vector3> Human::getPosition() const {
    Lock lock(_mutex);
    return _position;
}

void Human::setPosition(boost::shared_ptr<Vector3> position) {
    Lock lock(_mutex);
    _position = std::move(position);
}

float Human::getScore(const std::string& name) const {
    Lock lock(_mutex);
    return valueOr(_scores, name, std::numeric_limits<float>::quiet_NaN());
}

bool Human::hasScore(const std::string& name) const {
    Lock lock(_mutex);
    return _scores.count(name) != 0;
}

void Human::setScore(const std::string& name, float score) {
    Lock lock(_mutex);
    _scores[name] = score;
}

void Human::removeScore(const std::string& name) {
    Lock lock(_mutex);
    if (_scores.erase(name) == 0)
        TES_LOG(kelvo::log::Warning,
                "Human " << _id << " does not have any score called \" " << name << "\"");
}

boost::shared_ptr<Object2D> Human::getObject2D(const std::string& name) const {
    Lock lock(_mutex);
    return valueOr(_objects2D, name, boost::shared_ptr<Object2D>());
}

bool Human::hasObject2D(const std::string& name) const {
    Lock lock(_mutex);
    return _objects2D.count(name) != 0;
}

void Human::setObject2D(const std::string& name, boost::shared_ptr<Object2D> object) {
    Lock lock(_mutex);
    _objects2D[name] = std::move(object);
}

void Human::removeObject2D(const std::string& name) {
    Lock lock(_mutex);
    if (_objects2D.erase(name) == 0)
        TES_LOG(kelvo::log::Warning,
                "Human " << _id << " does not have any Object2D called \" " << name << "\"");
}

boost::shared_ptr<Object3D> Human::getObject3D(const std::string& name) const {
    Lock lock(_mutex);
    return valueOr(_objects3D, name, boost::shared_ptr<Object3D>());
}

bool Human::hasObject3D(const std::string& name) const {
    Lock lock(_mutex);
    return _objects3D.count(name) != 0;
}

void Human::setObject3D(const std::string& name, boost::shared_ptr<Object3D> object) {
    Lock lock(_mutex);
    _objects3D[name] = std::move(object);
}

void Human::removeObject3D(const std::string& name) {
    Lock lock(_mutex);
    if (_objects3D.erase(name) == 0)
        TES_LOG(kelvo::log::Warning,
                "Human " << _id << " does not have any Object3D called \" " << name << "\"");
}

boost::shared_ptr<Data> Human::getPropertyData(int key) const {
    Lock lock(_mutex);
    return valueOr(_properties, key, boost::shared_ptr<Data>());
}

bool Human::hasProperty(int key) const {
    Lock lock(_mutex);
    return _properties.count(key) != 0;
}

void Human::setPropertyData(int key, boost::shared_ptr<Data> value) {
    Lock lock(_mutex);
    _properties[key] = std::move(value);
}

void Human::removeProperty(int key) {
    Lock lock(_mutex);
    if (_properties.erase(key) == 0)
        TES_LOG(kelvo::log::Warning, "Human " << _id << " does not have any property " << key);
}

}  // namespace Type
}  // namespace Tessarity
