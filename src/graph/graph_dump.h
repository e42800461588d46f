#ifndef TESSARITY_GRAPH_GRAPH_DUMP_H
#define TESSARITY_GRAPH_GRAPH_DUMP_H

#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

namespace Tessarity {

class Port;

// Graphviz text shared by the dumps of nodes and composites: the box OWNER_ID labelled
// `label`, and each port as a named ellipse OWNER_PORT_ID with its edge to or from the box.
std::string dotBoxWithPorts(const std::string& owner, const std::string& label,
                            const std::vector<boost::shared_ptr<Port>>& inputs,
                            const std::vector<boost::shared_ptr<Port>>& outputs, long id);

}  // namespace Tessarity

#endif
