#include "tessarity_p.h"

#include <set>
#include <stdexcept>

#include <boost/make_shared.hpp>

#include "filter.h"
#include "logging.h"
#include "nodesource.h"
#include "process.h"
#include "scheduler.h"

namespace Tessarity {

namespace {
const char* const kLogCategory = "tessarity.private";
const char* const kLogFile = "src/tessarity_p";
}  // namespace

TessarityPrivate::TessarityPrivate(unsigned int threadCount) {
    _scheduler = boost::make_shared<Scheduler>(this, threadCount);
    _scheduler->start();
}

TessarityPrivate::~TessarityPrivate() {
    // No worker may touch a registry that is being destroyed.
    _scheduler->stop();
}

boost::shared_ptr<NodeSource> TessarityPrivate::_findSource(const std::string& name) const {
    auto source = _sources.find(name);
    return source == _sources.end() ? boost::shared_ptr<NodeSource>() : source->second;
}

std::vector<std::string> TessarityPrivate::getSources() const {
    boost::mutex::scoped_lock lock(_sourcesMutex);
    std::vector<std::string> names;
    names.reserve(_sources.size());
    for (const auto& source : _sources) names.push_back(source.first);
    return names;
}

bool TessarityPrivate::createSource(const std::string& name) {
    {
        boost::mutex::scoped_lock lock(_sourcesMutex);
        if (_sources.find(name) == _sources.end()) {
            _sources.emplace(name, boost::make_shared<NodeSource>(name));
            return true;
        }
    }
    TES_LOG(kelvo::log::Error, "createSource(\"" << name << "\"): source already exists.");
    return false;
}

void TessarityPrivate::setData(const std::string& source, boost::shared_ptr<Data> data) {
    boost::shared_ptr<NodeSource> node;
    {
        boost::mutex::scoped_lock lock(_sourcesMutex);
        node = _findSource(source);
    }
    if (!node) TES_THROW("Can't set data for source \"" << source << "\": source unknown.");
    // Called without the registry lock: the source raises its events here, and a callback
    // may come back into the engine.
    node->setData(data);
}

boost::shared_ptr<Data> TessarityPrivate::getSourceData(const std::string& source,
                                                        const Type::Duration& tolerance) const {
    return getSourceData(source, Type::Time::now(), tolerance);
}

boost::shared_ptr<Data> TessarityPrivate::getSourceData(const std::string& source,
                                                        const Type::Time& time,
                                                        const Type::Duration& tolerance) const {
    boost::shared_ptr<NodeSource> node;
    {
        boost::mutex::scoped_lock lock(_sourcesMutex);
        node = _findSource(source);
    }
    if (!node) TES_THROW("Can't get data from source \"" << source << "\": source unknown.");
    return node->getData(time, tolerance);
}

bool TessarityPrivate::deleteSource(const std::string& name) {
    {
        // Processes hold their nodes themselves: removing the name disturbs none of them.
        boost::mutex::scoped_lock lock(_sourcesMutex);
        if (_sources.erase(name)) return true;
    }
    TES_LOG(kelvo::log::Error, "Can't delete source \"" << name << "\": source unknown.");
    return false;
}

std::vector<std::string> TessarityPrivate::getProcesses() const {
    boost::mutex::scoped_lock lock(_processesMutex);
    std::vector<std::string> names;
    names.reserve(_processes.size());
    for (const auto& process : _processes) names.push_back(process.first);
    return names;
}

bool TessarityPrivate::isProcess(const std::string& name) const {
    boost::mutex::scoped_lock lock(_processesMutex);
    return _processes.find(name) != _processes.end();
}

bool TessarityPrivate::enableProcess(const std::string& name) {
    {
        boost::mutex::scoped_lock lock(_processesMutex);
        auto process = _processes.find(name);
        if (process == _processes.end()) {
            lock.unlock();
            TES_LOG(kelvo::log::Error, "Can't enable process \"" << name << "\": process unknown.");
            return false;
        }
        process->second->enable();
    }
    _computeDependency(true);
    _scheduler->update();
    return true;
}

bool TessarityPrivate::disableProcess(const std::string& name) {
    {
        boost::mutex::scoped_lock lock(_processesMutex);
        auto process = _processes.find(name);
        if (process == _processes.end()) {
            lock.unlock();
            TES_LOG(kelvo::log::Error, "Can't disable process \"" << name << "\": process unknown.");
            return false;
        }
        process->second->disable();
    }
    _computeDependency(true);
    _scheduler->update();
    return true;
}

bool TessarityPrivate::deleteProcess(const std::string& name) {
    {
        boost::mutex::scoped_lock lock(_processesMutex);
        if (!_processes.erase(name)) {
            lock.unlock();
            TES_LOG(kelvo::log::Error, "Can't delete process \"" << name << "\": process unknown.");
            return false;
        }
        _memoryManager.removeProcess(StringHash(name));
    }
    TES_LOG(kelvo::log::Verbose, "Delete process \"" << name << "\".");
    // A worker that holds the process finishes its job: the shared pointer keeps it alive.
    _computeDependency(true);
    _scheduler->update();
    return true;
}

std::vector<std::string> TessarityPrivate::getScheduledJobs() const {
    std::vector<std::string> names;
    for (const boost::shared_ptr<Process>& process : _scheduler->getScheduledProcessList())
        names.push_back(process->getName());
    return names;
}

std::pair<std::string, std::string> TessarityPrivate::_splitSinkName(const std::string& sink) {
    const std::size_t colon = sink.find(':');
    if (colon == std::string::npos)
        TES_THROW("Can't get last data(\""
                  << sink << "\"): the sink is not correctly formated (\"process:sink\" expected).");
    return std::make_pair(sink.substr(0, colon), sink.substr(colon + 1));
}

boost::shared_ptr<Data> TessarityPrivate::getData(const std::string& sink) {
    return getData(sink, Type::Time::now());
}

boost::shared_ptr<Data> TessarityPrivate::getData(const std::string& sink, const Type::Time& time) {
    const std::pair<std::string, std::string> names = _splitSinkName(sink);
    boost::shared_ptr<Process> process;
    {
        boost::mutex::scoped_lock lock(_processesMutex);
        auto found = _processes.find(names.first);
        if (found != _processes.end()) process = found->second;
    }
    if (!process)
        TES_THROW("Can't get data(\"" << sink << "\"): the process \"" << names.first
                                      << "\" does not exist.");
    // Run without the registry lock: the process may raise events whose callbacks come
    // back into the engine.
    return process->getData(names.second, time);
}

boost::shared_ptr<Data> TessarityPrivate::getLastData(const std::string& sink) const {
    const std::pair<std::string, std::string> names = _splitSinkName(sink);
    boost::shared_ptr<Process> process;
    {
        boost::mutex::scoped_lock lock(_processesMutex);
        auto found = _processes.find(names.first);
        if (found != _processes.end()) process = found->second;
    }
    if (!process)
        TES_THROW("Can't get last data(\"" << sink << "\"): the process \"" << names.first
                                           << "\" does not exist.");
    return process->getLastData(names.second);
}

void TessarityPrivate::startScheduler() { _scheduler->start(); }

void TessarityPrivate::stopScheduler() { _scheduler->stop(); }

bool TessarityPrivate::_addProcess(const boost::shared_ptr<Process>& process) {
    {
        boost::mutex::scoped_lock lock(_processesMutex);
        if (!_processes.emplace(process->getName(), process).second) return false;
    }
    _computeDependency(false);
    _scheduler->update();
    return true;
}

void TessarityPrivate::_computeDependency(bool reset) {
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
                    auto needed = _processes.find(dependency);
                    if (needed == _processes.end() || needed->second->isLive()) continue;
                    needed->second->zombify();
                    changed = true;
                }
        }
    }
}

Type::Duration TessarityPrivate::_getNextComputationTime() const {
    Type::Duration result(100000);
    const Type::Time now = Type::Time::now();
    boost::mutex::scoped_lock lock(_processesMutex);
    for (const auto& entry : _processes) {
        const boost::shared_ptr<Process>& process = entry.second;
        if (process->getPriority() == 0 || !process->isLive()) continue;
        // Never waits: a running process counts its whole period.
        Type::Duration ttl = process->getTimeToLive(now);
        if (ttl < Type::Duration()) ttl = Type::Duration();
        if (!(result < ttl)) result = ttl;
    }
    return result;
}

float TessarityPrivate::_getComputationMaxFrequency() const {
    float maximum = 0.0f;
    for (const boost::shared_ptr<Process>& process : _getScheduledProcesses())
        if (process->getFrequency() > maximum) maximum = process->getFrequency();
    return maximum;
}

std::vector<boost::shared_ptr<Process>> TessarityPrivate::_getScheduledProcesses() const {
    boost::mutex::scoped_lock lock(_processesMutex);
    std::vector<boost::shared_ptr<Process>> scheduled;
    for (const auto& entry : _processes)
        if (entry.second->getPriority() != 0 && entry.second->isLive())
            scheduled.push_back(entry.second);
    return scheduled;
}

}  // namespace Tessarity
