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
class Process;
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

    std::vector<std::string> getProcesses() const;
    bool isProcess(const std::string& name) const;
    bool enableProcess(const std::string& name);
    bool disableProcess(const std::string& name);
    bool deleteProcess(const std::string& name);
    std::vector<std::string> getScheduledJobs() const;
    // Throw std::invalid_argument, after logging it, for a malformed name or an unknown
    // process; `sink` is "process:sink".
    boost::shared_ptr<Data> getData(const std::string& sink);
    boost::shared_ptr<Data> getData(const std::string& sink, const Type::Time& time);
    boost::shared_ptr<Data> getLastData(const std::string& sink) const;

    void startScheduler();
    void stopScheduler();

    // Registers a fully built process, recomputes the dependencies and tells the scheduler.
    // False if the name is taken.
    bool _addProcess(const boost::shared_ptr<Process>& process);
    const boost::shared_ptr<Scheduler>& _getScheduler() const { return _scheduler; }
    MemoryManager& _getMemoryManager() { return _memoryManager; }

    // Looks at all processes at once, under _processesMutex. Marks as zombies the disabled
    // processes that a live one needs (first clearing every zombie if `reset`).
    void _computeDependency(bool reset);
    // How long a worker may sleep: until the earliest scheduled process is due, at most
    // 100 milliseconds.
    Type::Duration _getNextComputationTime() const;
    float _getComputationMaxFrequency() const;
    // The processes the scheduler serves (priority above 0 and live), in name order.
    std::vector<boost::shared_ptr<Process>> _getScheduledProcesses() const;

private:
    // Splits "process:sink" for getData and getLastData, throwing for a name without ":".
    static std::pair<std::string, std::string> _splitSinkName(const std::string& sink);
    // The global source of that name, or null; the caller holds _sourcesMutex.
    boost::shared_ptr<NodeSource> _findSource(const std::string& name) const;

    boost::shared_ptr<Scheduler> _scheduler;
    MemoryManager _memoryManager;
    std::map<std::string, boost::shared_ptr<Filter>> _filters;
    mutable boost::mutex _filtersMutex;
    std::map<std::string, boost::shared_ptr<NodeSource>> _sources;
    mutable boost::mutex _sourcesMutex;
    std::map<std::string, boost::shared_ptr<Process>> _processes;
    mutable boost::mutex _processesMutex;
};

}  // namespace Tessarity

#endif
