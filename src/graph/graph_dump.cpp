#include "graph/graph_dump.h"

#include <sstream>

#include "graph/port.h"

namespace Tessarity {

std::string dotBoxWithPorts(const std::string& owner, const std::string& label,
                            const std::vector<boost::shared_ptr<Port>>& inputs,
                            const std::vector<boost::shared_ptr<Port>>& outputs, long id) {
    const std::string suffix = "_" + std::to_string(id);
    const std::string box = owner + suffix;
    std::ostringstream dot;
    dot << "node[shape=component, style=filled, fillcolor=white];\n"
        << box << "[label=" << label << "];\n"
        << "node[shape=ellipse, style=filled, fillcolor=white];\n";
    for (const boost::shared_ptr<Port>& port : inputs) {
        const std::string portId = owner + "_" + port->getName() + suffix;
        dot << portId << " [label=" << port->getName() << "];\n"
            << portId << " -> " << box << ";\n";
    }
    for (const boost::shared_ptr<Port>& port : outputs) {
        const std::string portId = owner + "_" + port->getName() + suffix;
        dot << portId << " [label=" << port->getName() << "];\n"
            << box << " -> " << portId << ";\n";
    }
    return dot.str();
}

}  // namespace Tessarity
