#ifndef TESSARITY_ENGINE_TESSARITY_PRIVATE_H
#define TESSARITY_ENGINE_TESSARITY_PRIVATE_H

#include <string>

#include <boost/shared_ptr.hpp>

#include "engine/event_registry.h"
#include "engine/filter_library.h"
#include "engine/process_builder.h"
#include "engine/process_registry.h"
#include "engine/source_registry.h"
#include "graph/memory_manager.h"
#include "language/parser.h"
#include "language/program_host.h"
#include "language/program_loader.h"

namespace Tessarity {

class Scheduler;

// The engine behind the Tessarity handle: it owns the parser, the scheduler, the memory of
// the filters and the registries, and carries out the statements of programs. Members are
// declared in the order of construction; destruction runs in reverse, after the workers are
// stopped.
//
// Registry locks, outermost first: the processes', then the sources', then the aliases';
// the filter library's alone or innermost.
class TessarityPrivate : private ProgramHost {
public:
    explicit TessarityPrivate(unsigned int threadCount);
    ~TessarityPrivate();

    // `handle` is the application's Tessarity*, handed on to plug-in modules; `directory` is
    // where the relative paths of imports start, empty for a text.
    bool loadProgram(const std::string& program, void* handle, const std::string& directory);
    bool loadProgramFromFile(const std::string& path, void* handle) override;

    FilterLibrary& getFilterLibrary() { return _filters; }
    SourceRegistry& getSourceRegistry() { return _sources; }
    ProcessRegistry& getProcessRegistry() { return _processes; }
    ProcessBuilder& getProcessBuilder() { return _processBuilder; }
    EventRegistry& getEventRegistry() { return _events; }
    const boost::shared_ptr<Scheduler>& getScheduler() const { return _scheduler; }

    // Stopping keeps every registry; nothing runs by itself until started again.
    void startScheduler();
    void stopScheduler();

private:
    // What the statements of a program call.
    bool createFilter(const std::string& name, const Pairs& filters, const Links& links,
                      const Exports& inputs, const Exports& outputs) override;
    bool isFilter(const std::string& name) const override;
    boost::shared_ptr<Type::Lambda> createLambda(const std::string& filter) const override;
    bool deleteFilter(const std::string& name) override;
    bool createSource(const std::string& name) override;
    void setData(const std::string& source, boost::shared_ptr<Data> data) override;
    bool deleteSource(const std::string& name) override;
    bool createProcess(const std::string& name, const std::string& filter, const Pairs& inputs,
                       const Pairs& outputs, const Pairs& triggers, const Pairs& sources,
                       unsigned int priority, float frequency,
                       const Type::Duration& tolerance) override;
    bool deleteProcess(const std::string& name) override;
    bool createEvent(const std::string& sink, const std::string& process) override;
    bool createSourceEvent(const std::string& source, const std::string& process) override;

    Parser _parser;
    ProgramLoader _programLoader;
    boost::shared_ptr<Scheduler> _scheduler;
    MemoryManager _memoryManager;
    FilterLibrary _filters;
    ProcessRegistry _processes;
    SourceRegistry _sources;
    ProcessBuilder _processBuilder;
    EventRegistry _events;
};

}  // namespace Tessarity

#endif
