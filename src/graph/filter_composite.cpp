#include "graph/filter_composite.h"

#include <boost/make_shared.hpp>

#include "common/logging.h"
#include "graph/graph_dump.h"
#include "graph/node_filter.h"
#include "graph/port.h"

namespace Tessarity {

namespace {
const char* const kLogCategory = "tessarity.Composite ";
const char* const kLogFile = "src/filtercomposite";
}  // namespace

FilterComposite::FilterComposite(const std::string& name) : Filter(name) {}

boost::shared_ptr<NodeFilter> FilterComposite::getNode(const std::string& name) const {
    auto node = _nodes.find(name);
    if (node != _nodes.end()) return node->second;
    TES_LOG(kelvo::log::Error, "Can't retrieved node \"" << name << "\": node unknown.");
    return boost::shared_ptr<NodeFilter>();
}

bool FilterComposite::addNode(boost::shared_ptr<NodeFilter> node) {
    if (_nodes.emplace(node->getName(), node).second) return true;
    TES_LOG(kelvo::log::Error,
            "Can't add node \"" << node->getName() << "\": node is already present.");
    return false;
}

bool FilterComposite::exportInput(const std::string& nodeName, const std::string& portName,
                                  const std::string& exportName) {
    boost::shared_ptr<NodeFilter> node = getNode(nodeName);
    if (!node) return false;
    boost::shared_ptr<Port> inner = node->getInput(portName);
    if (!inner) return false;
    _inputs.push_back(boost::make_shared<Port>(exportName, inner));
    _inputs.back()->setOptional(true);
    return true;
}

bool FilterComposite::exportOutput(const std::string& nodeName, const std::string& portName,
                                   const std::string& exportName) {
    boost::shared_ptr<NodeFilter> node = getNode(nodeName);
    if (!node) return false;
    boost::shared_ptr<Port> inner = node->getOutput(portName);
    if (!inner) return false;
    _outputs.push_back(boost::make_shared<Port>(exportName, inner));
    return true;
}

// Counts spread inward from the exported outputs only: an inner node that feeds no output
// takes no part, and a node reached by two outputs is counted twice.
void FilterComposite::synchronize(const Type::Time& time, const Type::Duration& tolerance,
                                  const StringHash& process, const StringHash& request,
                                  long long depth) {
    for (const boost::shared_ptr<Port>& output : _outputs)
        if (Node* node = output->getNode())
            node->synchronize(time, tolerance, process, request, depth + 1);
}

void FilterComposite::synchronizeRelease(const StringHash& process, const StringHash& request,
                                         long long depth) {
    for (const boost::shared_ptr<Port>& output : _outputs)
        if (Node* node = output->getNode()) node->synchronizeRelease(process, request, depth + 1);
}

std::vector<boost::shared_ptr<Data>> FilterComposite::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
    const StringHash& request, long long depth) {
    if (inputs.size() != _inputs.size()) {
        TES_LOG(kelvo::log::Fatal, _name << "->applyFilter(): missing input data");
        return std::vector<boost::shared_ptr<Data>>();
    }
    // The values sit on the exported ports and their inner parents under this request, where
    // the inner nodes' ports look before following any link.
    Port::loadData(_inputs, inputs, process, request, depth);
    std::vector<boost::shared_ptr<Data>> results;
    results.reserve(_outputs.size());
    for (const boost::shared_ptr<Port>& output : _outputs) {
        Node* node = output->getNode();
        results.push_back(node ? node->requestData(process, request, depth + 1, output)
                               : boost::shared_ptr<Data>());
    }
    Port::unloadData(_inputs, process, request, depth);
    return results;
}

void FilterComposite::abortFilter(const StringHash& process, const StringHash& request,
                                  long long depth) {
    // The inner sources retire their values as a normal run would.
    for (const boost::shared_ptr<Port>& output : _outputs)
        if (Node* node = output->getNode()) node->requestEmpty(process, request, depth + 1, output);
    Port::unloadData(_inputs, process, request, depth);
}

std::string FilterComposite::dumpToDot(long& id, int depth) const {
    const std::string suffix = "_" + std::to_string(id);
    const std::string box = _name + suffix;
    std::ostringstream dot;
    dot << "subgraph cluster_" << box << "\n{\n"
        << "label=\"" << _name << " (Composite Filter)\";\n"
        << "style=\"filled,dashed\";\n"
        << "fillcolor=white;\n"
        << "color=black;\n\n";
    if (depth == 0) {
        dot << dotBoxWithPorts(_name, _name, _inputs, _outputs, id) << "}\n\n";
        return dot.str();
    }
    std::map<const Node*, long> ids;
    for (const auto& node : _nodes) {
        ids[node.second.get()] = ++id;
        dot << node.second->dumpToDot(id, depth - 1);
    }
    for (const auto& node : _nodes)
        for (const boost::shared_ptr<Port>& input : node.second->getInputs())
            for (const boost::shared_ptr<Port>& link : input->getLinks()) {
                const Node* upstream = link ? link->getNode() : nullptr;
                if (!upstream) continue;
                dot << upstream->getName() << "_" << link->getName() << "_" << ids[upstream]
                    << " -> " << node.first << "_" << input->getName() << "_"
                    << ids[node.second.get()] << ";\n";
            }
    dot << "node[shape=ellipse, style=filled, fillcolor=white];\n";
    for (const boost::shared_ptr<Port>& port : _inputs) {
        const std::string portId = _name + "_" + port->getName() + suffix;
        const Port& inner = *port->getParent();
        dot << portId << " [label=" << port->getName() << "];\n"
            << portId << " -> " << inner.getNode()->getName() << "_" << inner.getName() << "_"
            << ids[inner.getNode()] << ";\n";
    }
    for (const boost::shared_ptr<Port>& port : _outputs) {
        const std::string portId = _name + "_" + port->getName() + suffix;
        const Port& inner = *port->getParent();
        dot << portId << " [label=" << port->getName() << "];\n"
            << inner.getNode()->getName() << "_" << inner.getName() << "_" << ids[inner.getNode()]
            << " -> " << portId << ";\n";
    }
    dot << "}\n\n";
    return dot.str();
}

}  // namespace Tessarity
