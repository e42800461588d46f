#include <tessarity/types/object.h>

#include <sstream>

#include <tessarity/data.h>

namespace Tessarity {
namespace Type {

namespace {

// "{ key = value}" per property, nothing between them; the region is not shown.
std::string propertiesText(const Object2D::Properties& properties, boost::mutex& mutex) {
    std::ostringstream text;
    boost::mutex::scoped_lock lock(mutex);
    for (const auto& property : properties)
        text << "{ " << property.first << " = " << property.second->toString() << "}";
    return text.str();
}

}  // namespace

std::string Object2D::toString() { return propertiesText(_properties, _propertiesMutex); }

std::string Object3D::toString() { return propertiesText(_properties, _propertiesMutex); }

}  // namespace Type
}  // namespace Tessarity
