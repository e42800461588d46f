#ifndef TESSARITY_ENGINE_PROCESS_REGISTRY_H
#define TESSARITY_ENGINE_PROCESS_REGISTRY_H

#include <map>
#include <string>
#include <utility>
#include <vector>

#include <boost/shared_ptr.hpp>
#include <boost/thread/mutex.hpp>

#include <tessarity/data.h>
#include <tessarity/duration.h>
#include <tessarity/time.h>

#include "runtime/scheduler_host.h"

namespace Tessarity {

class MemoryManager;
class Process;
class Scheduler;
class SourceRegistry;

// The processes by name, and the walks over all of them that scheduling relies on. Its mutex
// comes first of the registries' mutexes; a process's own mutex is only tried under it.
class ProcessRegistry : public SchedulerHost {
public:
    typedef std::map<std::string, boost::shared_ptr<Process>> Processes;

    // Holds the registry's mutex while it lives, for the steps that look at processes and
    // other registries at once; those take their own mutexes inside this one.
    class Lock {
    public:
        explicit Lock(ProcessRegistry& registry);
        // The process of that name, or null.
        boost::shared_ptr<Process> find(const std::string& name) const;
        const Processes& getProcesses() const { return _registry._processes; }
        // Adds `process` unless the name is taken; the caller then calls refresh(false).
        bool emplace(const std::string& name, const boost::shared_ptr<Process>& process);

    private:
        ProcessRegistry& _registry;
        boost::mutex::scoped_lock _lock;
    };

    explicit ProcessRegistry(MemoryManager& memoryManager);

    // Called once by the engine, before the first process arrives: the scheduler to tell of
    // every change, and the sources, which remember which of them the live processes read.
    void attach(const boost::shared_ptr<Scheduler>& scheduler, SourceRegistry* sources);
    const boost::shared_ptr<Scheduler>& getScheduler() const { return _scheduler; }

    // Registers a fully built process; false, and nothing changes, if the name is taken.
    bool add(const boost::shared_ptr<Process>& process);
    // What follows a change of the set of processes or of their flags: the zombies are
    // recomputed (from scratch if `reset`), the schedule is rebuilt, and the sources forget
    // which of them are bound.
    void refresh(bool reset);

    // The process of that name, or null.
    boost::shared_ptr<Process> find(const std::string& name) const;

    std::vector<std::string> getProcesses() const;
    bool isProcess(const std::string& name) const override;
    std::string getProcessDescription(const std::string& name) const;
    bool setProcessDescription(const std::string& name, const std::string& description);
    std::vector<std::string> getProcessSources(const std::string& name) const;
    std::vector<std::string> getProcessSinks(const std::string& name) const;
    std::vector<std::string> getProcessAggregatedSinks(const std::string& name) const;
    unsigned int getProcessPriority(const std::string& name) const;
    float getProcessFrequency(const std::string& name) const;
    Type::Duration getProcessTolerance(const std::string& name) const;
    void setProcessPriority(const std::string& name, unsigned int priority);
    void setProcessFrequency(const std::string& name, float frequency);
    void setProcessTolerance(const std::string& name, const Type::Duration& tolerance);
    bool renameProcess(const std::string& name, const std::string& newName);
    bool resetProcess(const std::string& name);
    bool isProcessEnable(const std::string& name) const;
    bool isProcessZombie(const std::string& name) const;
    bool enableProcess(const std::string& name);
    bool disableProcess(const std::string& name);
    bool deleteProcess(const std::string& name);
    std::vector<std::string> getScheduledJobs() const;
    std::string getInstrumentationResult() const;

    // `sink` is "process:sink"; getData runs the process on the caller's thread if it is due.
    boost::shared_ptr<Data> getData(const std::string& sink);
    boost::shared_ptr<Data> getData(const std::string& sink, const Type::Time& time);
    boost::shared_ptr<Data> getLastData(const std::string& sink) const;

    // Marks as zombies the disabled processes that a live one needs, first clearing every
    // zombie if `reset`.
    void computeDependency(bool reset);
    std::vector<boost::shared_ptr<Process>> getScheduledProcesses() const override;
    Type::Duration getNextComputationTime() const override;
    float getComputationMaxFrequency() const;

private:
    // The caller holds _processesMutex.
    boost::shared_ptr<Process> _find(const std::string& name) const;
    bool _setProcessEnabled(const std::string& name, bool enabled);
    // The sink name and the process of "process:sink", or the error of getData or getLastData.
    std::pair<std::string, boost::shared_ptr<Process>> _sinkOwner(const std::string& sink,
                                                                  const char* operation) const;

    MemoryManager& _memoryManager;
    SourceRegistry* _sources;
    boost::shared_ptr<Scheduler> _scheduler;
    Processes _processes;
    mutable boost::mutex _processesMutex;
};

}  // namespace Tessarity

#endif
