#include "graph/port.h"

#include <algorithm>

#include "common/logging.h"
#include "graph/node.h"

namespace Tessarity {

namespace {
const char* const kLogCategory = "tessarity.port      ";
const char* const kLogFile = "src/port";
}  // namespace

Port::Port(const std::string& name) : Port(name, boost::shared_ptr<Port>(), nullptr) {}

Port::Port(const std::string& name, boost::shared_ptr<Port> parent) : Port(name, parent, nullptr) {}

Port::Port(const std::string& name, boost::shared_ptr<Port> parent, Node* node)
    : _name(name), _parent(parent), _node(node), _optional(false) {}

void Port::attach(const boost::shared_ptr<Port>& port) { _links.push_back(port); }

Port& Port::addType(DataType type) {
    _types.push_back(type);
    return *this;
}

const std::vector<DataType>& Port::getTypes() const {
    const Port* root = this;
    while (root->_parent) root = root->_parent.get();
    return root->_types;
}

bool Port::isCompatible(DataType type) const {
    const std::vector<DataType>& types = getTypes();
    return types.empty() || std::find(types.begin(), types.end(), type) != types.end();
}

bool Port::isCompatible(boost::shared_ptr<Port> port) const {
    const std::vector<DataType>& mine = getTypes();
    const std::vector<DataType>& theirs = port->getTypes();
    if (mine.empty() || theirs.empty()) return true;
    for (DataType type : mine)
        if (std::find(theirs.begin(), theirs.end(), type) != theirs.end()) return true;
    return false;
}

boost::shared_ptr<Port> Port::getRecursiveParent() const {
    if (!_parent) return boost::shared_ptr<Port>();
    boost::shared_ptr<Port> root = _parent;
    while (root->_parent) root = root->_parent;
    return root;
}

Node* Port::getNode() const {
    for (const Port* port = this; port; port = port->_parent.get())
        if (port->_node) return port->_node;
    return nullptr;
}

Port& Port::setOptional(bool optional) {
    _optional = optional;
    return *this;
}

bool Port::isOptional() const {
    for (const Port* port = this; port; port = port->_parent.get())
        if (port->_optional || port->_defaultData) return true;
    return false;
}

Port& Port::setDefaultData(boost::shared_ptr<Data> data) {
    _defaultData = data;
    return *this;
}

const boost::shared_ptr<Data>& Port::getDefaultData() const {
    const Port* port = this;
    for (; port->_parent; port = port->_parent.get())
        if (port->_defaultData) return port->_defaultData;
    return port->_defaultData;  // the root's, null or not
}

Node* Port::_upstreamNode(const boost::shared_ptr<Port>& link) {
    return link ? link->getNode() : nullptr;
}

boost::shared_ptr<Data> Port::requestData(const StringHash& process, const StringHash& request,
                                          long long depth) {
    const Loaded* loaded = _loaded.find(request.getHash());
    if (loaded && loaded->loaded) return loaded->data;
    // An unbound port answers with its own default only; the chain is not walked here.
    if (_links.empty()) return _defaultData;
    if (_links.size() > 1) {
        TES_LOG(kelvo::log::Error, _name << "::requestData(): "
                                         << "An input port can not have multiple outputs.");
        return boost::shared_ptr<Data>();
    }
    const boost::shared_ptr<Port>& link = _links[0];
    Node* upstream = _upstreamNode(link);
    if (!upstream) {
        TES_LOG(kelvo::log::Error, _name << "::requestData(): "
                                         << "trying to get data from an unbound port.");
        return boost::shared_ptr<Data>();
    }
    boost::shared_ptr<Data> data = upstream->requestData(process, request, depth + 1, link);
    if (data) return data;
    return getDefaultData();
}

void Port::requestEmpty(const StringHash& process, const StringHash& request, long long depth) {
    const Loaded* loaded = _loaded.find(request.getHash());
    if (loaded && loaded->loaded) return;
    if (_links.empty()) return;
    if (_links.size() > 1) {
        TES_LOG(kelvo::log::Error, _name << "::requestEmpty(): "
                                         << "An input port can not have multiple outputs.");
        return;
    }
    const boost::shared_ptr<Port>& link = _links[0];
    Node* upstream = _upstreamNode(link);
    if (!upstream) {
        TES_LOG(kelvo::log::Error, _name << "::requestEmpty(): "
                                         << "trying to get data from an unbound port.");
        return;
    }
    upstream->requestEmpty(process, request, depth + 1, link);
}

void Port::synchronizeRelease(const StringHash& process, const StringHash& request,
                              long long depth) {
    if (_links.size() > 1) {
        TES_LOG(kelvo::log::Error, "synchronizeRelease(): "
                                       << "an input port (" << _name
                                       << ") can not have multiple outputs and "
                                       << "only an input port can use synchronizeRelease().");
        return;
    }
    if (_links.empty()) return;
    if (Node* upstream = _upstreamNode(_links[0]))
        upstream->synchronizeRelease(process, request, depth + 1);
}

boost::shared_ptr<Port> Port::find(const std::vector<boost::shared_ptr<Port>>& ports,
                                   const std::string& name) {
    for (const boost::shared_ptr<Port>& port : ports)
        if (port && port->getName() == name) return port;
    if (name.empty() && ports.size() == 1) return ports.front();
    return boost::shared_ptr<Port>();
}

void Port::loadData(std::vector<boost::shared_ptr<Port>>& ports,
                    const std::vector<boost::shared_ptr<Data>>& data, const StringHash& process,
                    const StringHash& request, long long depth) {
    for (std::size_t i = 0; i < ports.size(); ++i)
        ports[i]->_loadData(data[i], process, request, depth + 1);
}

void Port::unloadData(std::vector<boost::shared_ptr<Port>>& ports, const StringHash& process,
                      const StringHash& request, long long depth) {
    for (const boost::shared_ptr<Port>& port : ports)
        port->_unloadData(process, request, depth + 1);
}

void Port::_loadData(const boost::shared_ptr<Data>& data, const StringHash& process,
                     const StringHash& request, long long depth) {
    Loaded& loaded = _loaded.get(request.getHash());
    loaded.loaded = true;
    loaded.data = data;
    if (_parent) _parent->_loadData(data, process, request, depth - 1);
}

void Port::_unloadData(const StringHash& process, const StringHash& request, long long depth) {
    if (Loaded* loaded = _loaded.find(request.getHash())) {
        loaded->loaded = false;
        loaded->data.reset();
    }
    if (_parent) _parent->_unloadData(process, request, depth - 1);
}

}  // namespace Tessarity
