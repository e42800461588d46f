#include "graph/filter.h"

#include "graph/port.h"

namespace Tessarity {

Filter::Filter(const std::string& name) : _name(name), _memoryManager(nullptr) {}

Filter::~Filter() {}

std::string Filter::getDescription() const { return "* no description *"; }

void Filter::synchronize(const Type::Time&, const Type::Duration&, const StringHash&,
                         const StringHash&, long long) {}

void Filter::synchronizeRelease(const StringHash&, const StringHash&, long long) {}

boost::shared_ptr<Port> Filter::getInput(const std::string& name) const {
    return Port::find(_inputs, name);
}

boost::shared_ptr<Port> Filter::getOutput(const std::string& name) const {
    return Port::find(_outputs, name);
}

}  // namespace Tessarity
