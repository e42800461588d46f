#include "graph/node.h"

#include "common/logging.h"
#include "graph/port.h"

namespace Tessarity {

namespace {
const char* const kLogCategory = "tessarity.node";
const char* const kLogFile = "src/node";
}  // namespace

Node::Node(const std::string& name) : _name(name) {}

Node::~Node() {
    Counts counts;
    _requests.forEach([&](unsigned long key, RequestState& state) {
        if (state.synchronized) counts.emplace_back(key, state.synchronizeCount);
    });
    if (!counts.empty())
        TES_LOG(kelvo::log::Fatal, _name << "->~Node(): There is still active synchronize count:"
                                         << "\n"
                                         << _describeCounts(counts));
}

std::string Node::_describeCounts(const Counts& counts) {
    std::ostringstream lines;
    for (const auto& entry : counts)
        lines << "  process: " << entry.first << ", count: " << entry.second << "\n";
    return lines.str();
}

void Node::addInput(boost::shared_ptr<Port> port) { _inputs.push_back(port); }

void Node::addOutput(boost::shared_ptr<Port> port) { _outputs.push_back(port); }

boost::shared_ptr<Port> Node::getInput(const std::string& name) const {
    return Port::find(_inputs, name);
}

boost::shared_ptr<Port> Node::getOutput(const std::string& name) const {
    return Port::find(_outputs, name);
}

void Node::synchronize(const Type::Time& time, const Type::Duration& tolerance,
                       const StringHash& process, const StringHash& request, long long depth) {
    RequestState& state = _requests.get(request.getHash());
    if (!state.synchronized) {
        state.synchronized = true;
        state.synchronizeCount = 0;
        // Upstream nodes are counted once per request, at the first visit only.
        // Only the first link is followed; a link into a chain without a node leads nowhere
        // and is reported when the consumer pulls through it.
        for (const boost::shared_ptr<Port>& input : _inputs) {
            if (input->getLinks().empty() || !input->getLinks()[0]) continue;
            if (Node* upstream = input->getLinks()[0]->getNode())
                upstream->synchronize(time, tolerance, process, request, depth + 1);
        }
    }
    ++state.synchronizeCount;
    _synchronize(time, tolerance, process, request, depth);
}

void Node::synchronizeRelease(const StringHash& process, const StringHash& request,
                              long long depth) {
    RequestState* state = _requests.find(request.getHash());
    if (state && state->synchronized) {
        if (--state->synchronizeCount == 0) state->synchronized = false;
        // Every release reaches the node's own step, not only the last one.
        _synchronizeRelease(process, request, depth);
        return;
    }
    TES_LOG(kelvo::log::Fatal, _name << "->synchronizeRelease(" << process
                                     << "): Invalid release on process " << process);
}

void Node::_synchronize(const Type::Time&, const Type::Duration&, const StringHash&,
                        const StringHash&, long long) {}

void Node::_synchronizeRelease(const StringHash&, const StringHash&, long long) {}

}  // namespace Tessarity
