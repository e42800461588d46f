#include "graph/node_filter.h"

#include <boost/make_shared.hpp>

#include "common/logging.h"
#include "graph/filter.h"
#include "graph/graph_dump.h"
#include "graph/port.h"

namespace Tessarity {

namespace {
const char* const kLogCategory = "tessarity.nodeFilter";
const char* const kLogFile = "src/nodefilter";
}  // namespace

NodeFilter::NodeFilter(const std::string& name, boost::shared_ptr<Filter> filter)
    : Node(name), _filter(filter) {
    std::ostringstream suffix;
    suffix << "__" << static_cast<const void*>(this);
    _contextSuffix = suffix.str();
    if (!_filter) return;
    // The filter's ports stay the roots of the chains: their types and defaults show through.
    for (const boost::shared_ptr<Port>& port : _filter->getInputs())
        addInput(boost::make_shared<Port>(port->getName(), port, this));
    for (const boost::shared_ptr<Port>& port : _filter->getOutputs())
        addOutput(boost::make_shared<Port>(port->getName(), port, this));
}

NodeFilter::~NodeFilter() {
    Counts counts;
    _requests.forEach([&](unsigned long key, RequestState& state) {
        if (state.resultCount) counts.emplace_back(key, state.resultCount);
    });
    if (!counts.empty())
        TES_LOG(kelvo::log::Fatal, getName()
                                       << "->~NodeFilter(): There is still count to entry cache:"
                                       << "\n"
                                       << _describeCounts(counts));
}

const StringHash& NodeFilter::_filterRequest(RequestState& state, const StringHash& request) {
    if (!state.hasFilterRequest) {
        state.filterRequest = StringHash(request.getText() + _contextSuffix);
        state.hasFilterRequest = true;
    }
    return state.filterRequest;
}

void NodeFilter::_synchronize(const Type::Time& time, const Type::Duration& tolerance,
                              const StringHash& process, const StringHash& request,
                              long long depth) {
    if (!_filter) {
        TES_LOG(kelvo::log::Fatal, getName() << "->_synchronize(" << process
                                             << "): Filter node doesn't own a filter !");
        return;
    }
    RequestState& state = _requests.get(request.getHash());
    if (state.resultCount == 0)
        _filter->synchronize(time, tolerance, process, _filterRequest(state, request), depth);
    ++state.resultCount;
}

void NodeFilter::_synchronizeRelease(const StringHash& process, const StringHash& request,
                                     long long depth) {
    RequestState* state = _requests.find(request.getHash());
    if (!state || state->resultCount == 0) {
        TES_LOG(kelvo::log::Fatal, getName() << "->_synchronizeRelease(" << process
                                             << "): Invalid release on process " << process);
        return;
    }
    const bool last = --state->resultCount == 0;
    // The last consumer drops the outputs; the vector keeps its room for the next run.
    if (last) {
        state->computed = false;
        state->results.clear();
    }
    if (!_filter) {
        TES_LOG(kelvo::log::Fatal, getName() << "->_synchronizeRelease(" << process
                                             << "): Filter node doesn't own a filter !");
        return;
    }
    if (last) _filter->synchronizeRelease(process, _filterRequest(*state, request), depth);
}

void NodeFilter::_compute(RequestState& state, const StringHash& process, const StringHash& request,
                          long long depth) {
    // A missing required input stops the computation, but every input is still walked so
    // that each count taken in the synchronize pass is released.
    std::vector<boost::shared_ptr<Data>>& inputs = state.inputs;
    inputs.clear();
    bool complete = true;
    for (const boost::shared_ptr<Port>& input : getInputs()) {
        boost::shared_ptr<Data> value;
        if (complete) {
            value = input->requestData(process, request, depth + 1);
            if (!value) value = input->getDefaultData();
            if (!value) complete = input->isOptional();
        } else {
            input->requestEmpty(process, request, depth + 1);
        }
        inputs.push_back(std::move(value));
        input->synchronizeRelease(process, request, depth + 1);
    }
    const StringHash& filterRequest = _filterRequest(state, request);
    if (!_filter) {
        // Reported at synchronize; without a filter the node answers nothing.
        state.results.clear();
    } else if (complete) {
        state.results = _filter->applyFilter(inputs, process, filterRequest, depth);
    } else {
        state.results.clear();
        _filter->abortFilter(process, filterRequest, depth);
    }
    // The inputs are not kept past the computation: the results alone stay for the consumers.
    inputs.clear();
    state.computed = true;
}

boost::shared_ptr<Data> NodeFilter::requestData(const StringHash& process,
                                                const StringHash& request, long long depth,
                                                boost::shared_ptr<Port> port) {
    if (!port) {
        TES_LOG(kelvo::log::Fatal,
                getName() << "->requestData(" << process << "): No output port specified");
        return boost::shared_ptr<Data>();
    }
    RequestState& state = _requests.get(request.getHash());
    if (state.computing) {
        // A link back into this node: a graph with a cycle has no value to give here.
        TES_LOG(kelvo::log::Error, getName() << "->requestData(" << process
                                             << "): the node depends on its own output.");
        return boost::shared_ptr<Data>();
    }
    if (!state.computed) {
        // Cleared on the way out, an exception of the filter included.
        struct Computing {
            explicit Computing(bool& flag) : flag(flag) { flag = true; }
            ~Computing() { flag = false; }
            bool& flag;
        } computing(state.computing);
        _compute(state, process, request, depth);
    }
    // A composite asks through its exported port, whose parent is this node's port.
    const std::vector<boost::shared_ptr<Port>>& outputs = getOutputs();
    for (Port* p = port.get(); p; p = p->getParent().get())
        for (std::size_t i = 0; i < outputs.size(); ++i)
            if (outputs[i].get() == p && i < state.results.size()) return state.results[i];
    return boost::shared_ptr<Data>();
}

void NodeFilter::requestEmpty(const StringHash& process, const StringHash& request, long long depth,
                              boost::shared_ptr<Port> port) {
    if (!port) {
        TES_LOG(kelvo::log::Fatal,
                getName() << "->requestEmpty(" << process << "): No output port specified");
        return;
    }
    RequestState& state = _requests.get(request.getHash());
    if (state.computed) return;
    for (const boost::shared_ptr<Port>& input : getInputs()) {
        input->requestEmpty(process, request, depth + 1);
        input->synchronizeRelease(process, request, depth + 1);
    }
    if (_filter) _filter->abortFilter(process, _filterRequest(state, request), depth);
    state.results.clear();
    state.computed = true;
}

std::string NodeFilter::dumpToDot(long& id, int depth) const {
    const std::string suffix = "_" + std::to_string(id);
    const std::string filterName = _filter ? _filter->getName() : std::string();
    std::ostringstream dot;
    dot << "subgraph cluster_" << getName() << suffix << "\n{\n"
        << "label=\"" << getName() << " (Filter Node)\";\n"
        << "style=filled;\n"
        << "fillcolor=lightblue;\n\n";
    if (depth == 0 || !_filter) {
        dot << dotBoxWithPorts(getName(), filterName, getInputs(), getOutputs(), id);
    } else {
        // The filter's text follows with its own suffix; the node's ports point at the
        // filter's ports, named by the node's port names.
        const long inner = ++id;
        dot << _filter->dumpToDot(id, depth - 1)
            << "node[shape=ellipse, style=filled, fillcolor=white];\n";
        const std::string innerSuffix = "_" + std::to_string(inner);
        for (const boost::shared_ptr<Port>& port : getInputs()) {
            const std::string portId = getName() + "_" + port->getName() + suffix;
            dot << portId << " [label=" << port->getName() << "];\n"
                << portId << " -> " << filterName << "_" << port->getName() << innerSuffix << ";\n";
        }
        for (const boost::shared_ptr<Port>& port : getOutputs()) {
            const std::string portId = getName() + "_" + port->getName() + suffix;
            dot << portId << " [label=" << port->getName() << "];\n"
                << filterName << "_" << port->getName() << innerSuffix << " -> " << portId << ";\n";
        }
    }
    dot << "}\n\n";
    return dot.str();
}

}  // namespace Tessarity
