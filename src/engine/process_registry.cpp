// The registry of processes: lookups and settings by name, results by sink name, and the
// walks over all processes that decide zombies and the workers' sleep.
#include "engine/process_registry.h"

#include <set>

#include "common/logging.h"
#include "engine/source_registry.h"
#include "graph/memory_manager.h"
#include "graph/node_source.h"
#include "runtime/process.h"
#include "runtime/scheduler.h"
#include "text/text_utils.h"

namespace Tessarity {

namespace {
const char* const kLogCategory = "tessarity.private";
const char* const kLogFile = "src/tessarity_p";
}  // namespace

ProcessRegistry::Lock::Lock(ProcessRegistry& registry)
    : _registry(registry), _lock(registry._processesMutex) {}

boost::shared_ptr<Process> ProcessRegistry::Lock::find(const std::string& name) const {
    return _registry._find(name);
}

bool ProcessRegistry::Lock::emplace(const std::string& name,
                                    const boost::shared_ptr<Process>& process) {
    return _registry._processes.emplace(name, process).second;
}

ProcessRegistry::ProcessRegistry(MemoryManager& memoryManager)
    : _memoryManager(memoryManager), _sources(nullptr) {}

void ProcessRegistry::attach(const boost::shared_ptr<Scheduler>& scheduler,
                             SourceRegistry* sources) {
    _scheduler = scheduler;
    _sources = sources;
}

std::vector<std::string> ProcessRegistry::getProcesses() const {
    boost::mutex::scoped_lock lock(_processesMutex);
    std::vector<std::string> names;
    for (const auto& process : _processes) names.push_back(process.first);
    return names;
}

bool ProcessRegistry::isProcess(const std::string& name) const {
    boost::mutex::scoped_lock lock(_processesMutex);
    return _processes.count(name) != 0;
}

boost::shared_ptr<Process> ProcessRegistry::find(const std::string& name) const {
    boost::mutex::scoped_lock lock(_processesMutex);
    return _find(name);
}

boost::shared_ptr<Process> ProcessRegistry::_find(const std::string& name) const {
    auto process = _processes.find(name);
    return process == _processes.end() ? boost::shared_ptr<Process>() : process->second;
}

std::string ProcessRegistry::getProcessDescription(const std::string& name) const {
    if (boost::shared_ptr<Process> process = find(name)) return process->getDescription();
    TES_LOG(kelvo::log::Error,
            "Can't get description of the process \"" << name << "\": process unknown");
    return std::string();
}

bool ProcessRegistry::setProcessDescription(const std::string& name,
                                            const std::string& description) {
    if (boost::shared_ptr<Process> process = find(name)) {
        process->setDescription(description);
        return true;
    }
    TES_LOG(kelvo::log::Error,
            "Can't set description for the process \"" << name << "\": process unknown.");
    return false;
}

namespace {
template <typename Map>
std::vector<std::string> keys(const Map& map) {
    std::vector<std::string> names;
    for (const auto& entry : map) names.push_back(entry.first);
    return names;
}
}  // namespace

std::vector<std::string> ProcessRegistry::getProcessSources(const std::string& name) const {
    if (boost::shared_ptr<Process> process = find(name)) return keys(process->getSources());
    TES_LOG(kelvo::log::Error,
            "Can't get sources of the process \"" << name << "\": process unknown.");
    return std::vector<std::string>();
}

std::vector<std::string> ProcessRegistry::getProcessSinks(const std::string& name) const {
    if (boost::shared_ptr<Process> process = find(name)) return keys(process->getSinks());
    TES_LOG(kelvo::log::Error,
            "Can't get sinks of the process \"" << name << "\": process unknown.");
    return std::vector<std::string>();
}

std::vector<std::string> ProcessRegistry::getProcessAggregatedSinks(const std::string& name) const {
    if (boost::shared_ptr<Process> process = find(name)) return keys(process->getAggregatedSinks());
    TES_LOG(kelvo::log::Error,
            "Can't get aggregated sinks of the process \"" << name << "\": process unknown.");
    return std::vector<std::string>();
}

unsigned int ProcessRegistry::getProcessPriority(const std::string& name) const {
    if (boost::shared_ptr<Process> process = find(name)) return process->getPriority();
    TES_LOG(kelvo::log::Error,
            "Can't get priority of the process \"" << name << "\": process unknown.");
    return 0;
}

float ProcessRegistry::getProcessFrequency(const std::string& name) const {
    if (boost::shared_ptr<Process> process = find(name)) return process->getFrequency();
    TES_LOG(kelvo::log::Error,
            "Can't get frequency of the process \"" << name << "\": process unknown.");
    return 0.0f;
}

Type::Duration ProcessRegistry::getProcessTolerance(const std::string& name) const {
    boost::shared_ptr<Process> process = find(name);
    // The getter says "set", as the engine always has.
    if (!process)
        TES_THROW("Can't set tolerance for the process \"" << name << "\": process unknown.");
    return process->getTolerance();
}

void ProcessRegistry::setProcessPriority(const std::string& name, unsigned int priority) {
    boost::shared_ptr<Process> process = find(name);
    if (!process)
        TES_THROW("Can't set priority for the process \"" << name << "\": process unknown.");
    process->setPriority(priority > Process::maximumPriority ? Process::maximumPriority : priority);
    _scheduler->update();
}

void ProcessRegistry::setProcessFrequency(const std::string& name, float frequency) {
    boost::shared_ptr<Process> process = find(name);
    if (!process)
        TES_THROW("Can't set frequency for the process \"" << name << "\": process unknown.");
    process->setFrequency(frequency);
    _scheduler->update();
}

void ProcessRegistry::setProcessTolerance(const std::string& name,
                                          const Type::Duration& tolerance) {
    boost::shared_ptr<Process> process = find(name);
    if (!process)
        TES_THROW("Can't set tolerance for the process \"" << name << "\": process unknown.");
    process->setTolerance(tolerance);
}

bool ProcessRegistry::renameProcess(const std::string& name, const std::string& newName) {
    {
        boost::mutex::scoped_lock lock(_processesMutex);
        boost::shared_ptr<Process> process = _find(name);
        if (process) {
            // The filters' state follows the process; a process under newName is dropped.
            _memoryManager.renameProcess(StringHash(name), StringHash(newName));
            process->setName(newName);
            _processes.erase(name);
            _processes[newName] = process;
            return true;
        }
    }
    TES_LOG(kelvo::log::Error, "Can't rename the process \"" << name << "\": process unknown.");
    return false;
}

bool ProcessRegistry::resetProcess(const std::string& name) {
    boost::shared_ptr<Process> process = find(name);
    if (!process) {
        TES_LOG(kelvo::log::Error, "Process \"" << name << "\" does not exist.");
        return false;
    }
    _memoryManager.removeProcess(StringHash(name));
    // Waits for a run under way, without any registry lock held.
    return process->reset();
}

bool ProcessRegistry::isProcessEnable(const std::string& name) const {
    if (boost::shared_ptr<Process> process = find(name)) return process->isEnable();
    TES_LOG(kelvo::log::Error,
            "Can't test if process \"" << name << "\" is enable: process unknown.");
    return false;
}

bool ProcessRegistry::isProcessZombie(const std::string& name) const {
    if (boost::shared_ptr<Process> process = find(name)) return process->isZombie();
    TES_LOG(kelvo::log::Error,
            "Can't test if process \"" << name << "\" is zombie: process unknown.");
    return false;
}

bool ProcessRegistry::enableProcess(const std::string& name) {
    return _setProcessEnabled(name, true);
}

bool ProcessRegistry::disableProcess(const std::string& name) {
    return _setProcessEnabled(name, false);
}

bool ProcessRegistry::_setProcessEnabled(const std::string& name, bool enabled) {
    boost::shared_ptr<Process> process = find(name);
    if (!process) {
        TES_LOG(kelvo::log::Error, "Can't " << (enabled ? "enable" : "disable") << " process \""
                                            << name << "\": process unknown.");
        return false;
    }
    if (enabled)
        process->enable();
    else
        process->disable();
    // Which processes are live, and so which sources are bound and which are zombies, may
    // have changed.
    refresh(true);
    return true;
}

bool ProcessRegistry::deleteProcess(const std::string& name) {
    {
        boost::mutex::scoped_lock lock(_processesMutex);
        if (_processes.erase(name)) {
            _memoryManager.removeProcess(StringHash(name));
        } else {
            lock.unlock();
            TES_LOG(kelvo::log::Error, "Can't delete process \"" << name << "\": process unknown.");
            return false;
        }
    }
    TES_LOG(kelvo::log::Verbose, "Delete process \"" << name << "\".");
    // A worker that holds the process finishes its job: the shared pointer keeps it alive.
    refresh(true);
    return true;
}

std::vector<std::string> ProcessRegistry::getScheduledJobs() const {
    std::vector<std::string> names;
    for (const boost::shared_ptr<Process>& process : _scheduler->getScheduledProcessList())
        names.push_back(process->getName());
    return names;
}

std::string ProcessRegistry::getInstrumentationResult() const { return std::string(); }

std::pair<std::string, boost::shared_ptr<Process>> ProcessRegistry::_sinkOwner(
    const std::string& sink, const char* operation) const {
    if (sink.find(':') == std::string::npos)
        TES_THROW("Can't get last data(\"" << sink << "\"): the sink is not correctly formated "
                                           << "(\"process:sink\" expected).");
    const std::pair<std::string, std::string> names = splitString(":", sink);
    boost::shared_ptr<Process> process = find(names.first);
    if (!process)
        TES_THROW("Can't get " << operation << "(\"" << sink << "\"): the process \"" << names.first
                               << "\" does not exist.");
    return std::make_pair(names.second, process);
}

boost::shared_ptr<Data> ProcessRegistry::getData(const std::string& sink) {
    return getData(sink, Type::Time::now());
}

boost::shared_ptr<Data> ProcessRegistry::getData(const std::string& sink, const Type::Time& time) {
    const std::pair<std::string, boost::shared_ptr<Process>> owner = _sinkOwner(sink, "data");
    // Runs without the registry lock: the process raises events whose callbacks may come
    // back into the engine.
    return owner.second->getData(owner.first, time);
}

boost::shared_ptr<Data> ProcessRegistry::getLastData(const std::string& sink) const {
    const std::pair<std::string, boost::shared_ptr<Process>> owner = _sinkOwner(sink, "last data");
    return owner.second->getLastData(owner.first);
}

bool ProcessRegistry::add(const boost::shared_ptr<Process>& process) {
    {
        boost::mutex::scoped_lock lock(_processesMutex);
        if (!_processes.emplace(process->getName(), process).second) return false;
    }
    refresh(false);
    return true;
}

void ProcessRegistry::refresh(bool reset) {
    computeDependency(reset);
    _scheduler->update();
    // After the zombies are known, so that no answer computed before them stays behind.
    _sources->clearBoundCache();
}

// Walks over all processes.

void ProcessRegistry::computeDependency(bool reset) {
    boost::mutex::scoped_lock lock(_processesMutex);
    if (reset)
        for (const auto& process : _processes) process.second->unZombify();
    // Walks to the fixed point: a process that became a zombie is walked in the next pass.
    std::set<boost::shared_ptr<Process>> visited;
    bool changed = true;
    while (changed) {
        changed = false;
        for (const auto& entry : _processes) {
            const boost::shared_ptr<Process>& process = entry.second;
            if (visited.count(process) || !process->isLive()) continue;
            visited.insert(process);
            for (const auto& source : process->getSources())
                for (const std::string& dependency : source.second->getDependencies()) {
                    boost::shared_ptr<Process> needed = _find(dependency);
                    if (!needed || needed->isLive()) continue;
                    needed->zombify();
                    changed = true;
                }
        }
    }
}

Type::Duration ProcessRegistry::getNextComputationTime() const {
    Type::Duration result(100000);
    const Type::Time now = Type::Time::now();
    for (const boost::shared_ptr<Process>& process : getScheduledProcesses()) {
        // Never waits: a process that is running counts its whole period.
        Type::Duration ttl = process->getTimeToLive(now);
        if (ttl < Type::Duration()) ttl = Type::Duration();
        if (!(result < ttl)) result = ttl;
    }
    return result;
}

float ProcessRegistry::getComputationMaxFrequency() const {
    float maximum = 0.0f;
    for (const boost::shared_ptr<Process>& process : getScheduledProcesses())
        if (process->getFrequency() > maximum) maximum = process->getFrequency();
    return maximum;
}

std::vector<boost::shared_ptr<Process>> ProcessRegistry::getScheduledProcesses() const {
    boost::mutex::scoped_lock lock(_processesMutex);
    std::vector<boost::shared_ptr<Process>> scheduled;
    for (const auto& entry : _processes)
        if (entry.second->getPriority() != 0 && entry.second->isLive())
            scheduled.push_back(entry.second);
    return scheduled;
}

}  // namespace Tessarity
