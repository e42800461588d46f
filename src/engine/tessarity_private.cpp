// The engine's construction and destruction, and the operations that programs call.
#include "engine/tessarity_private.h"

#include <boost/make_shared.hpp>

#include "runtime/scheduler.h"

namespace Tessarity {

TessarityPrivate::TessarityPrivate(unsigned int threadCount)
    : _parser(this),
      _programLoader(_parser),
      _filters(_memoryManager),
      _processes(_memoryManager),
      _sources(_processes),
      _processBuilder(_filters, _sources, _processes),
      _events(_processes, _sources) {
    _scheduler = boost::make_shared<Scheduler>(&_processes, threadCount);
    _processes.attach(_scheduler, &_sources);
    _scheduler->start();
    // The workers already run, and find nothing to do until the first process.
    _filters.registerCatalogue();
}

TessarityPrivate::~TessarityPrivate() {
    // No worker may touch a registry that is being destroyed.
    _scheduler->stop();
}

bool TessarityPrivate::loadProgram(const std::string& program, void* handle,
                                   const std::string& directory) {
    return _parser.loadProgram(program, handle, directory);
}

bool TessarityPrivate::loadProgramFromFile(const std::string& path, void* handle) {
    return _programLoader.loadProgramFromFile(path, handle);
}

void TessarityPrivate::startScheduler() { _scheduler->start(); }

void TessarityPrivate::stopScheduler() { _scheduler->stop(); }

bool TessarityPrivate::createFilter(const std::string& name, const Pairs& filters,
                                    const Links& links, const Exports& inputs,
                                    const Exports& outputs) {
    return _filters.createFilter(name, filters, links, inputs, outputs);
}

bool TessarityPrivate::isFilter(const std::string& name) const { return _filters.isFilter(name); }

boost::shared_ptr<Type::Lambda> TessarityPrivate::createLambda(const std::string& filter) const {
    return _filters.createLambda(filter);
}

bool TessarityPrivate::deleteFilter(const std::string& name) { return _filters.deleteFilter(name); }

bool TessarityPrivate::createSource(const std::string& name) { return _sources.createSource(name); }

void TessarityPrivate::setData(const std::string& source, boost::shared_ptr<Data> data) {
    _sources.setData(source, data);
}

bool TessarityPrivate::deleteSource(const std::string& name) { return _sources.deleteSource(name); }

bool TessarityPrivate::createProcess(const std::string& name, const std::string& filter,
                                     const Pairs& inputs, const Pairs& outputs,
                                     const Pairs& triggers, const Pairs& sources,
                                     unsigned int priority, float frequency,
                                     const Type::Duration& tolerance) {
    return _processBuilder.createProcess(name, filter, inputs, outputs, triggers, sources, priority,
                                         frequency, tolerance);
}

bool TessarityPrivate::deleteProcess(const std::string& name) {
    return _processes.deleteProcess(name);
}

bool TessarityPrivate::createEvent(const std::string& sink, const std::string& process) {
    return _events.createEvent(sink, process);
}

bool TessarityPrivate::createSourceEvent(const std::string& source, const std::string& process) {
    return _events.createSourceEvent(source, process);
}

}  // namespace Tessarity
