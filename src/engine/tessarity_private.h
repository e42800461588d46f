#ifndef TESSARITY_ENGINE_TESSARITY_PRIVATE_H
#define TESSARITY_ENGINE_TESSARITY_PRIVATE_H

#include <list>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/thread/mutex.hpp>

#include <tessarity/data.h>
#include <tessarity/duration.h>
#include <tessarity/time.h>

#include "graph/memory_manager.h"
#include "language/parser.h"

namespace Tessarity {

class Event;
class Filter;
class NodeSource;
class NodeSourceAlias;
class Process;
class Scheduler;
class UserFilter;
class UserSource;

// The engine behind the Tessarity handle: it owns every registry. Members are declared in
// the order of construction; destruction runs in reverse, after the workers are stopped.
//
// Registry locks, outermost first: _processesMutex, _sourcesMutex, _sourceAliasesMutex;
// _filtersMutex alone or innermost. A node is never called with a registry lock held where
// it may raise events: its pointer is copied under the lock and called after, so that an
// application callback may come back into the engine.
class TessarityPrivate {
public:
    typedef std::list<std::pair<std::string, std::string>> Pairs;
    typedef boost::function1<void, boost::shared_ptr<Data>> Callback;
    typedef std::pair<std::string, std::string> PortName;  // (instance, port)
    typedef std::list<std::pair<PortName, PortName>> Links;
    typedef std::list<std::pair<PortName, std::string>> Exports;

    explicit TessarityPrivate(unsigned int threadCount);
    ~TessarityPrivate();

    // Programs. `handle` is the application's Tessarity*, handed on to plug-in modules.
    bool loadProgram(const std::string& program, void* handle, const std::string& directory);
    bool loadProgramFromFile(const std::string& path, void* handle);

    // Filters.
    // A composite of library filters: (type, instance) nodes, links between their ports, and
    // the inner ports exported under outside names; an input may carry "port[default]".
    bool createFilter(const std::string& name, const Pairs& filters, const Links& links,
                      const Exports& inputs, const Exports& outputs);
    bool createFilter(boost::shared_ptr<UserFilter> filter);
    // Graphviz text of a filter of the library, expanded `depth` levels deep.
    std::string dumpFilter(const std::string& name, int depth) const;
    std::vector<std::string> getFilters() const;
    bool isFilter(const std::string& name) const;
    std::string getFilterDescription(const std::string& name) const;
    std::vector<std::string> getFilterInputs(const std::string& name) const;
    std::vector<std::string> getFilterOutputs(const std::string& name) const;
    bool deleteFilter(const std::string& name);

    // Sources. A name with ":" in setData and getSourceData is "process:source".
    std::vector<std::string> getSources() const;
    bool createSource(const std::string& name);
    bool createSource(boost::shared_ptr<UserSource> source);
    bool createSourceFromProcessSink(const std::string& name, const std::string& sink);
    bool createSourceAlias(const std::string& alias, const std::string& source);
    bool renameSourceAlias(const std::string& alias, const std::string& newAlias);
    bool retargetSourceAlias(const std::string& alias, const std::string& source);
    bool isSourceBound(const std::string& name) const;
    float getSourceFrequency(const std::string& name) const;
    void setData(const std::string& source, boost::shared_ptr<Data> data);
    boost::shared_ptr<Data> getSourceData(const std::string& source,
                                          const Type::Duration& tolerance) const;
    boost::shared_ptr<Data> getSourceData(const std::string& source, const Type::Time& time,
                                          const Type::Duration& tolerance) const;
    bool deleteSource(const std::string& name);

    // Processes.
    bool createProcess(const std::string& name, const std::string& filter, const Pairs& inputs,
                       const Pairs& outputs, const Pairs& triggers, const Pairs& sources,
                       unsigned int priority, float frequency, const Type::Duration& tolerance);
    std::vector<std::string> getProcesses() const;
    bool isProcess(const std::string& name) const;
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

    // Events.
    bool createEvent(const std::string& sink, Callback callback);
    bool createEvent(const std::string& sink, const std::string& process);
    bool createSourceEvent(const std::string& source, Callback callback);
    bool createSourceEvent(const std::string& source, const std::string& process);

    void startScheduler();
    void stopScheduler();

    // Registers a fully built process, recomputes the dependencies and tells the scheduler.
    // False if the name is taken.
    bool _addProcess(const boost::shared_ptr<Process>& process);
    const boost::shared_ptr<Scheduler>& _getScheduler() const { return _scheduler; }

    // These look at all processes at once, under _processesMutex. _computeDependency marks
    // as zombies the disabled processes that a live one needs, first clearing every zombie
    // if `reset`.
    void _computeDependency(bool reset);
    // How long a worker may sleep: until the earliest scheduled process is due, at most
    // 100 milliseconds.
    Type::Duration _getNextComputationTime() const;
    float _getComputationMaxFrequency() const;
    // The processes the scheduler serves (priority above 0 and live), in name order.
    std::vector<boost::shared_ptr<Process>> _getScheduledProcesses() const;

private:
    struct Failure;
    struct ProcessDraft;

    void _registerFilter(const boost::shared_ptr<Filter>& filter);
    std::vector<std::string> _portLines(const std::string& name, bool inputs,
                                        const char* operation) const;
    // Lookups; the caller holds the lock of the registry searched.
    boost::shared_ptr<Process> _findProcess(const std::string& name) const;
    boost::shared_ptr<NodeSource> _findSource(const std::string& name) const;
    boost::shared_ptr<NodeSource> _findSourceOrAlias(const std::string& name) const;
    // The process of that name, or null, read under _processesMutex.
    boost::shared_ptr<Process> _lookupProcess(const std::string& name) const;
    // A source's name and the names of its aliases; the caller holds _sourceAliasesMutex.
    std::set<std::string> _namesOf(const std::string& source) const;
    void _clearSourceBoundCache();
    bool _setProcessEnabled(const std::string& name, bool enabled);
    // False, with the line of createEvent, for a sink name without ":".
    static bool _isSinkName(const std::string& sink);
    // The node of "process:source", or the error of setData (`forSet`) or getSourceData.
    boost::shared_ptr<NodeSource> _findProcessSource(const std::string& source, bool forSet) const;
    bool _addSourceEvent(const std::string& source, const boost::shared_ptr<Event>& event,
                         bool forCallback);
    bool _addSinkEvent(const std::string& sink, const boost::shared_ptr<Event>& event);
    // The sink name and the process of "process:sink", or the error of getData or getLastData.
    std::pair<std::string, boost::shared_ptr<Process>> _sinkOwner(const std::string& sink,
                                                                  const char* operation) const;
    // The steps of createFilter, under _filtersMutex; a failure's text goes to `failure`.
    bool _composeFilter(const std::string& name, const Pairs& filters, const Links& links,
                        const Exports& inputs, const Exports& outputs, std::ostringstream& failure);
    // The steps of createProcess that run under _processesMutex.
    bool _wireInputs(ProcessDraft& draft, const Pairs& inputs, const std::string& p1,
                     const std::string& p2, Failure& failure);
    bool _wireOutputs(ProcessDraft& draft, const Pairs& outputs, const std::string& p2,
                      Failure& failure);
    bool _wireTriggers(ProcessDraft& draft, const Pairs& triggers, const std::string& p2,
                       Failure& failure);

    Parser _parser;
    boost::shared_ptr<Scheduler> _scheduler;
    MemoryManager _memoryManager;
    std::map<std::string, boost::shared_ptr<Filter>> _filters;
    mutable boost::mutex _filtersMutex;
    std::map<std::string, boost::shared_ptr<NodeSource>> _sources;
    mutable std::map<std::string, bool> _sourceBoundCache;
    mutable boost::mutex _sourcesMutex;
    std::map<std::string, boost::shared_ptr<NodeSourceAlias>> _sourceAliases;
    std::map<std::string, std::set<std::string>> _sourceAliasTargets;
    mutable boost::mutex _sourceAliasesMutex;
    std::map<std::string, boost::shared_ptr<Process>> _processes;
    mutable boost::mutex _processesMutex;
    std::map<std::string, bool> _loadedFiles;
    boost::mutex _loadedFilesMutex;  // alone: held only to test and record a path
};

}  // namespace Tessarity

#endif
