#ifndef TESSARITY_GRAPH_NODE_SOURCE_H
#define TESSARITY_GRAPH_NODE_SOURCE_H

#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>
#include <boost/thread/mutex.hpp>

#include "graph/event_list.h"
#include "graph/node.h"

namespace Tessarity {

class Event;

// Holds the newest value set by the application. Each process that synchronizes on it takes
// one snapshot, kept until its last release, so a value set during a run reaches the next run.
class NodeSource : public Node {
public:
    explicit NodeSource(const std::string& name);
    ~NodeSource() override;

    boost::shared_ptr<Data> requestData(const StringHash& process, const StringHash& request,
                                        long long depth, boost::shared_ptr<Port> port) override;
    void requestEmpty(const StringHash& process, const StringHash& request, long long depth,
                      boost::shared_ptr<Port> port) override;

    void addEvent(boost::shared_ptr<Event> event);
    void addDependency(const std::string& process);
    const std::vector<std::string>& getDependencies() const { return _dependencies; }

    virtual void setData(const boost::shared_ptr<Data>& data);
    virtual boost::shared_ptr<Data> getData(const Type::Time& time,
                                            const Type::Duration& tolerance) const;
    virtual unsigned long long getUid() const;

protected:
    void _synchronize(const Type::Time& time, const Type::Duration& tolerance,
                      const StringHash& process, const StringHash& request,
                      long long depth) override;
    void _synchronizeRelease(const StringHash& process, const StringHash& request,
                             long long depth) override;
    // One process's view of the source from its first synchronize of a run to its last
    // release: the value it reads, and how many releases are still to come.
    struct Snapshot {
        bool taken = false;
        int count = 0;
        boost::shared_ptr<Data> data;
    };

    // Counts a synchronize of `process`, taking its snapshot of _lastData at the first one,
    // and returns the snapshot if that was the first, null otherwise. The caller holds
    // _sourceMutex.
    Snapshot* _countSnapshot(const StringHash& process);
    // Raises the events in order of adding; the caller holds no lock of this source.
    void _raise(const boost::shared_ptr<Data>& data);

    // The variants of a source change where a run's snapshot comes from, under these fields.
    boost::shared_ptr<Data> _lastData;
    mutable boost::mutex _sourceMutex;
    EventList _events;
    // By process: one process runs on one thread at a time.
    RequestSlots<Snapshot> _snapshots;
    std::vector<std::string> _dependencies;
    unsigned long long _uid;
};

}  // namespace Tessarity

#endif
