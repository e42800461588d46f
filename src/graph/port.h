#ifndef TESSARITY_GRAPH_PORT_H
#define TESSARITY_GRAPH_PORT_H

#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include <tessarity/data.h>
#include <tessarity/datatype.h>
#include <tessarity/stringhash.h>

#include "graph/request_slots.h"

namespace Tessarity {

class Node;

// A named connection point of a node or a filter. A port may stand for another port (its
// parent): a node's port for its filter's, a composite's exported port for an inner node's.
// Types are read at the root of that chain; default data and the optional mark anywhere on it.
class Port {
public:
    explicit Port(const std::string& name);
    Port(const std::string& name, boost::shared_ptr<Port> parent);
    Port(const std::string& name, boost::shared_ptr<Port> parent, Node* node);

    // Links are not checked: neither types nor an existing link.
    void attach(const boost::shared_ptr<Port>& port);

    // Returns this port, so that declarations chain: addType(A).addType(B).setOptional(true).
    Port& addType(DataType type);
    const std::vector<DataType>& getTypes() const;
    bool isCompatible(DataType type) const;
    bool isCompatible(boost::shared_ptr<Port> port) const;

    const std::string& getName() const { return _name; }
    const boost::shared_ptr<Port>& getParent() const { return _parent; }
    boost::shared_ptr<Port> getRecursiveParent() const;
    Node* getNode() const;
    const std::vector<boost::shared_ptr<Port>>& getLinks() const { return _links; }
    bool bound() const { return !_links.empty(); }

    Port& setOptional(bool optional);
    bool isOptional() const;
    Port& setDefaultData(boost::shared_ptr<Data> data);
    const boost::shared_ptr<Data>& getDefaultData() const;

    boost::shared_ptr<Data> requestData(const StringHash& process, const StringHash& request,
                                        long long depth);
    void requestEmpty(const StringHash& process, const StringHash& request, long long depth);
    void synchronizeRelease(const StringHash& process, const StringHash& request, long long depth);

    // Places data[i] on ports[i] and on the whole parent chain of each, for one request.
    static void loadData(std::vector<boost::shared_ptr<Port>>& ports,
                         const std::vector<boost::shared_ptr<Data>>& data,
                         const StringHash& process, const StringHash& request, long long depth);
    // The first port of `ports` named `name`; failing that, for the empty name, the only port
    // of a one-port list, which is how a link that names no port reaches it.
    static boost::shared_ptr<Port> find(const std::vector<boost::shared_ptr<Port>>& ports,
                                        const std::string& name);
    static void unloadData(std::vector<boost::shared_ptr<Port>>& ports, const StringHash& process,
                           const StringHash& request, long long depth);

private:
    void _loadData(const boost::shared_ptr<Data>& data, const StringHash& process,
                   const StringHash& request, long long depth);
    void _unloadData(const StringHash& process, const StringHash& request, long long depth);
    // The node that owns `link`'s chain, or null for a null link or a chain without one.
    static Node* _upstreamNode(const boost::shared_ptr<Port>& link);

    std::string _name;
    std::vector<boost::shared_ptr<Port>> _links;
    std::vector<DataType> _types;
    boost::shared_ptr<Port> _parent;
    Node* _node;
    // The values a composite has placed on this port, per request, for one application.
    struct Loaded {
        bool loaded = false;
        boost::shared_ptr<Data> data;
    };
    RequestSlots<Loaded> _loaded;
    boost::shared_ptr<Data> _defaultData;
    bool _optional;
};

}  // namespace Tessarity

#endif
