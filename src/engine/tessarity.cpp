#include <tessarity/tessarity.h>

#include "engine/tessarity_private.h"

namespace Tessarity {

Tessarity::Tessarity(unsigned int threadCount)
    : _d(boost::make_shared<TessarityPrivate>(threadCount)) {}

bool Tessarity::loadProgram(const std::string& program) {
    return _d->loadProgram(program, this, std::string());
}

bool Tessarity::loadProgramFromFile(const std::string& path) {
    return _d->loadProgramFromFile(path, this);
}

bool Tessarity::createFilter(boost::shared_ptr<UserFilter> filter) {
    return _d->getFilterLibrary().createFilter(filter);
}

bool Tessarity::createFilter(const std::string& name, const Pairs& filters, const Links& links,
                             const Exports& inputs, const Exports& outputs) {
    return _d->getFilterLibrary().createFilter(name, filters, links, inputs, outputs);
}

bool Tessarity::createClassificationFilter(const std::string& name, ClassificationType type,
                                          const std::string& file) {
    return _d->getFilterLibrary().createClassificationFilter(name, type, file);
}

std::string Tessarity::dumpFilter(const std::string& name, int depth) const {
    return _d->getFilterLibrary().dumpFilter(name, depth);
}

boost::shared_ptr<Data> Tessarity::getData(const std::string& sink) {
    return _d->getProcessRegistry().getData(sink);
}

boost::shared_ptr<Data> Tessarity::getData(const std::string& sink, const Type::Time& time) {
    return _d->getProcessRegistry().getData(sink, time);
}

boost::shared_ptr<Data> Tessarity::getLastData(const std::string& sink) const {
    return _d->getProcessRegistry().getLastData(sink);
}

std::vector<std::string> Tessarity::getFilters() const {
    return _d->getFilterLibrary().getFilters();
}

bool Tessarity::isFilter(const std::string& name) const {
    return _d->getFilterLibrary().isFilter(name);
}

std::string Tessarity::getFilterDescription(const std::string& name) const {
    return _d->getFilterLibrary().getFilterDescription(name);
}

std::vector<std::string> Tessarity::getFilterInputs(const std::string& name) const {
    return _d->getFilterLibrary().getFilterInputs(name);
}

std::vector<std::string> Tessarity::getFilterOutputs(const std::string& name) const {
    return _d->getFilterLibrary().getFilterOutputs(name);
}

boost::shared_ptr<Type::Lambda> Tessarity::createLambda(const std::string& filter) const {
    return _d->getFilterLibrary().createLambda(filter);
}

bool Tessarity::deleteFilter(const std::string& name) {
    return _d->getFilterLibrary().deleteFilter(name);
}

std::vector<std::string> Tessarity::getSources() const {
    return _d->getSourceRegistry().getSources();
}

bool Tessarity::createSource(const std::string& name) {
    return _d->getSourceRegistry().createSource(name);
}

bool Tessarity::createSource(boost::shared_ptr<UserSource> source) {
    return _d->getSourceRegistry().createSource(source);
}

bool Tessarity::createSourceFromProcessSink(const std::string& name, const std::string& sink) {
    return _d->getSourceRegistry().createSourceFromProcessSink(name, sink);
}

bool Tessarity::createSourceAlias(const std::string& alias, const std::string& source) {
    return _d->getSourceRegistry().createSourceAlias(alias, source);
}

bool Tessarity::renameSourceAlias(const std::string& alias, const std::string& newAlias) {
    return _d->getSourceRegistry().renameSourceAlias(alias, newAlias);
}

bool Tessarity::retargetSourceAlias(const std::string& alias, const std::string& source) {
    return _d->getSourceRegistry().retargetSourceAlias(alias, source);
}

bool Tessarity::isSourceBound(const std::string& name) const {
    return _d->getSourceRegistry().isSourceBound(name);
}

float Tessarity::getSourceFrequency(const std::string& name) const {
    return _d->getSourceRegistry().getSourceFrequency(name);
}

void Tessarity::setData(const std::string& source, boost::shared_ptr<Data> data) {
    _d->getSourceRegistry().setData(source, data);
}

boost::shared_ptr<Data> Tessarity::getSourceData(const std::string& source,
                                                 const Type::Duration& tolerance) const {
    return _d->getSourceRegistry().getSourceData(source, tolerance);
}

boost::shared_ptr<Data> Tessarity::getSourceData(const std::string& source, const Type::Time& time,
                                                 const Type::Duration& tolerance) const {
    return _d->getSourceRegistry().getSourceData(source, time, tolerance);
}

bool Tessarity::deleteSource(const std::string& name) {
    return _d->getSourceRegistry().deleteSource(name);
}

std::vector<std::string> Tessarity::getProcesses() const {
    return _d->getProcessRegistry().getProcesses();
}

bool Tessarity::isProcess(const std::string& name) const {
    return _d->getProcessRegistry().isProcess(name);
}

std::string Tessarity::getProcessDescription(const std::string& name) const {
    return _d->getProcessRegistry().getProcessDescription(name);
}

bool Tessarity::setProcessDescription(const std::string& name, const std::string& description) {
    return _d->getProcessRegistry().setProcessDescription(name, description);
}

std::vector<std::string> Tessarity::getProcessSources(const std::string& name) const {
    return _d->getProcessRegistry().getProcessSources(name);
}

std::vector<std::string> Tessarity::getProcessSinks(const std::string& name) const {
    return _d->getProcessRegistry().getProcessSinks(name);
}

std::vector<std::string> Tessarity::getProcessAggregatedSinks(const std::string& name) const {
    return _d->getProcessRegistry().getProcessAggregatedSinks(name);
}

unsigned int Tessarity::getProcessPriority(const std::string& name) const {
    return _d->getProcessRegistry().getProcessPriority(name);
}

float Tessarity::getProcessFrequency(const std::string& name) const {
    return _d->getProcessRegistry().getProcessFrequency(name);
}

Type::Duration Tessarity::getProcessTolerance(const std::string& name) const {
    return _d->getProcessRegistry().getProcessTolerance(name);
}

void Tessarity::setProcessPriority(const std::string& name, unsigned int priority) {
    _d->getProcessRegistry().setProcessPriority(name, priority);
}

void Tessarity::setProcessFrequency(const std::string& name, float frequency) {
    _d->getProcessRegistry().setProcessFrequency(name, frequency);
}

void Tessarity::setProcessTolerance(const std::string& name, const Type::Duration& tolerance) {
    _d->getProcessRegistry().setProcessTolerance(name, tolerance);
}

bool Tessarity::createProcess(const std::string& name, const std::string& filter,
                              const Pairs& inputs, const Pairs& outputs, const Pairs& triggers,
                              const Pairs& sources, unsigned int priority, float frequency,
                              const Type::Duration& tolerance) {
    return _d->getProcessBuilder().createProcess(name, filter, inputs, outputs, triggers, sources,
                                                 priority, frequency, tolerance);
}

bool Tessarity::renameProcess(const std::string& name, const std::string& newName) {
    return _d->getProcessRegistry().renameProcess(name, newName);
}

bool Tessarity::resetProcess(const std::string& name) {
    return _d->getProcessRegistry().resetProcess(name);
}

bool Tessarity::isProcessEnable(const std::string& name) const {
    return _d->getProcessRegistry().isProcessEnable(name);
}

bool Tessarity::isProcessZombie(const std::string& name) const {
    return _d->getProcessRegistry().isProcessZombie(name);
}

bool Tessarity::enableProcess(const std::string& name) {
    return _d->getProcessRegistry().enableProcess(name);
}

bool Tessarity::disableProcess(const std::string& name) {
    return _d->getProcessRegistry().disableProcess(name);
}

bool Tessarity::deleteProcess(const std::string& name) {
    return _d->getProcessRegistry().deleteProcess(name);
}

std::vector<std::string> Tessarity::getScheduledJobs() const {
    return _d->getProcessRegistry().getScheduledJobs();
}

std::string Tessarity::getInstrumentationResult() const {
    return _d->getProcessRegistry().getInstrumentationResult();
}

bool Tessarity::createEvent(const std::string& sink, Callback callback) {
    return _d->getEventRegistry().createEvent(sink, callback);
}

bool Tessarity::createEvent(const std::string& sink, const std::string& process) {
    return _d->getEventRegistry().createEvent(sink, process);
}

bool Tessarity::createSourceEvent(const std::string& source, Callback callback) {
    return _d->getEventRegistry().createSourceEvent(source, callback);
}

bool Tessarity::createSourceEvent(const std::string& source, const std::string& process) {
    return _d->getEventRegistry().createSourceEvent(source, process);
}

bool Tessarity::createEvent(const std::string& sink, const char* process) {
    return _d->getEventRegistry().createEvent(sink, std::string(process));
}

bool Tessarity::createSourceEvent(const std::string& source, const char* process) {
    return _d->getEventRegistry().createSourceEvent(source, std::string(process));
}

void Tessarity::startScheduler() { _d->startScheduler(); }

void Tessarity::stopScheduler() { _d->stopScheduler(); }

}  // namespace Tessarity
