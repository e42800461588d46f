#ifndef TESSARITY_TESSARITY_P_H
#define TESSARITY_TESSARITY_P_H

#include <map>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>
#include <boost/thread/mutex.hpp>

#include <tessarity/data.h>
#include <tessarity/duration.h>
#include <tessarity/time.h>

#include "memorymanager.h"

namespace Tessarity {

class Filter;
class NodeSource;
class Scheduler;

// The engine behind the Tessarity handle: it owns every registry. Members are declared in
// the order of construction; destruction runs in reverse, after the workers are stopped.
class TessarityPrivate {
public:
    explicit TessarityPrivate(unsigned int threadCount);
    ~TessarityPrivate();

    std::vector<std::string> getSources() const;
    bool createSource(const std::string& name);
    void setData(const std::string& source, boost::shared_ptr<Data> data);
    boost::shared_ptr<Data> getSourceData(const std::string& source,
                                          const Type::Duration& tolerance) const;
    boost::shared_ptr<Data> getSourceData(const std::string& source, const Type::Time& time,
                                          const Type::Duration& tolerance) const;
    bool deleteSource(const std::string& name);

    void startScheduler();
    void stopScheduler();

private:
    // The global source of that name, or null; the caller holds _sourcesMutex.
    boost::shared_ptr<NodeSource> _findSource(const std::string& name) const;

    boost::shared_ptr<Scheduler> _scheduler;
    MemoryManager _memoryManager;
    std::map<std::string, boost::shared_ptr<Filter>> _filters;
    mutable boost::mutex _filtersMutex;
    std::map<std::string, boost::shared_ptr<NodeSource>> _sources;
    mutable boost::mutex _sourcesMutex;
};

}  // namespace Tessarity

#endif
