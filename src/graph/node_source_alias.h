#ifndef TESSARITY_GRAPH_NODE_SOURCE_ALIAS_H
#define TESSARITY_GRAPH_NODE_SOURCE_ALIAS_H

#include <string>

#include <boost/shared_ptr.hpp>
#include <boost/thread/mutex.hpp>

#include "graph/node_source.h"

namespace Tessarity {

// Another name for a source. Every operation goes to the target, the synchronize pass
// included, so the target keeps all the bookkeeping and the alias's own snapshots, events
// and dependencies stay unused. The target may be moved, but not while a run is between its
// synchronize and its release: the releases would reach a target that never counted them.
class NodeSourceAlias : public NodeSource {
public:
    NodeSourceAlias(const std::string& name, boost::shared_ptr<NodeSource> source);

    boost::shared_ptr<Data> requestData(const StringHash& process, const StringHash& request,
                                        long long depth, boost::shared_ptr<Port> port) override;
    void requestEmpty(const StringHash& process, const StringHash& request, long long depth,
                      boost::shared_ptr<Port> port) override;

    void setData(const boost::shared_ptr<Data>& data) override;
    boost::shared_ptr<Data> getData(const Type::Time& time,
                                    const Type::Duration& tolerance) const override;
    unsigned long long getUid() const override;

    virtual void setSource(boost::shared_ptr<NodeSource> source);
    virtual boost::shared_ptr<NodeSource> getSource() const;

protected:
    // These two run under this node's synchronizeMutex and leave _aliasMutex alone.
    void _synchronize(const Type::Time& time, const Type::Duration& tolerance,
                      const StringHash& process, const StringHash& request,
                      long long depth) override;
    void _synchronizeRelease(const StringHash& process, const StringHash& request,
                             long long depth) override;

private:
    // Held across each forwarded call, so it nests outside the target's own locks.
    mutable boost::mutex _aliasMutex;
    boost::shared_ptr<NodeSource> _source;
};

}  // namespace Tessarity

#endif
