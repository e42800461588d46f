#include "graph/filter_primitive.h"

#include <sstream>

#include <boost/make_shared.hpp>

#include "graph/port.h"

namespace Tessarity {

FilterPrimitive::FilterPrimitive(const std::string& name) : Filter(name) {}

void FilterPrimitive::abortFilter(const StringHash&, const StringHash&, long long) {}

boost::shared_ptr<Port> FilterPrimitive::_addInput(const std::string& name) {
    _inputs.push_back(boost::make_shared<Port>(name));
    return _inputs.back();
}

boost::shared_ptr<Port> FilterPrimitive::_addOutput(const std::string& name) {
    _outputs.push_back(boost::make_shared<Port>(name));
    return _outputs.back();
}

std::string FilterPrimitive::dumpToDot(long& id, int) const {
    const std::string suffix = "_" + std::to_string(id);
    const std::string box = _name + suffix;
    std::ostringstream dot;
    dot << "subgraph cluster_" << box << "\n"
        << "{\n"
        << "label = \"" << _name << " (Primitive Filter)\";\n"
        << "style=filled;\n"
        << "fillcolor=white;\n"
        << "\n"
        << "node[shape=component, style=filled, fillcolor=white];\n"
        << box << "[label=" << _name << "];\n"
        << "node[shape=circle, style=filled, fillcolor=black];\n";
    for (const boost::shared_ptr<Port>& port : _inputs) {
        const std::string portId = _name + "_" + port->getName() + suffix;
        dot << portId << " [label=\"\"];\n" << portId << " -> " << box << ";\n";
    }
    for (const boost::shared_ptr<Port>& port : _outputs) {
        const std::string portId = _name + "_" + port->getName() + suffix;
        dot << portId << " [label=\"\"];\n" << box << " -> " << portId << ";\n";
    }
    dot << "}\n\n";
    return dot.str();
}

}  // namespace Tessarity
