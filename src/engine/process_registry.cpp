// The engine's processes: construction from names and literal values, the registry of
// running processes, and the walks over all of them that the scheduler relies on.
#include <boost/make_shared.hpp>

#include "graph/aggregated_sink.h"
#include "graph/event.h"
#include "graph/filter.h"
#include "common/logging.h"
#include "graph/node_filter.h"
#include "runtime/node_process_source.h"
#include "graph/node_pulse.h"
#include "graph/node_sink.h"
#include "graph/node_source.h"
#include "graph/node_source_alias.h"
#include "graph/port.h"
#include "runtime/process.h"
#include "runtime/scheduler.h"
#include "engine/tessarity_private.h"
#include "language/text_utils.h"

namespace Tessarity {

namespace {
const char* const kLogCategory = "tessarity.private";
const char* const kLogFile = "src/tessarity_p";

std::string anonymous(int counter) { return "___Anonymous" + std::to_string(counter); }

}  // namespace

// A failed step of createProcess, logged once every lock is released.
struct TessarityPrivate::Failure {
    int level = 0;
    std::ostringstream text;
    bool fail(int failureLevel) {
        level = failureLevel;
        return false;
    }
};

// The graph of one process, while it is being wired: nothing of it is visible to anyone
// until it is registered, so a failure leaves no trace in the registries.
struct TessarityPrivate::ProcessDraft {
    std::map<std::string, boost::shared_ptr<NodeSource>> locals;
    boost::shared_ptr<NodeFilter> node;
    std::map<std::string, boost::shared_ptr<NodeSource>> sources;
    std::map<std::string, boost::shared_ptr<NodeSink>> sinks;
    std::map<std::string, boost::shared_ptr<AggregatedSink>> aggregations;
    boost::shared_ptr<Process> process;
    int counter = 0;
};

bool TessarityPrivate::createProcess(const std::string& name, const std::string& filter,
                                     const Pairs& inputs, const Pairs& outputs,
                                     const Pairs& triggers, const Pairs& sources,
                                     unsigned int priority, float frequency,
                                     const Type::Duration& tolerance) {
    Failure failure;
    const std::string p1 = "createProcess(\"" + name + "\", \"" + filter + "\", ...): ";
    const std::string p2 = "createProcess(\"" + name + "\", \"" + filter + "\", inputs, outputs): ";
    ProcessDraft draft;

    // Local sources.
    for (const auto& source : sources) {
        const std::string& keyword = source.first;
        const std::string& declaration = source.second;
        if (keyword == "source") {
            draft.locals[declaration] = boost::make_shared<NodeSource>(declaration);
        } else if (keyword == "pulse" && declaration.find('[') == std::string::npos) {
            draft.locals[declaration] = boost::make_shared<NodePulse>(declaration);
        } else if (keyword == "pulse") {
            const std::list<std::string> items = blockString('[', ']', declaration);
            if (items.size() != 2) {
                TES_LOG(kelvo::log::Error, p1 << "Invalid default value declaration: \"" << keyword
                                              << " " << declaration << "\".");
                return false;
            }
            boost::shared_ptr<Data> value = literalData(items.back());
            if (!value) {
                TES_LOG(kelvo::log::Error, p1 << "Invalid default value: " << items.back());
                return false;
            }
            auto pulse = boost::make_shared<NodePulse>(items.front());
            pulse->setDefaultData(value);
            draft.locals[items.front()] = pulse;
        } else {
            TES_LOG(kelvo::log::Error,
                    "Can't create process: invalid keyword \"" << keyword << "\".");
            return false;
        }
    }

    // Filter: the object is shared with every process that uses it.
    {
        boost::mutex::scoped_lock lock(_filtersMutex);
        auto found = _filters.find(filter);
        if (found != _filters.end())
            draft.node = boost::make_shared<NodeFilter>(name + "_" + filter, found->second);
    }
    if (!draft.node) {
        TES_LOG(kelvo::log::Error,
                p2 << "the filter \"" << filter << "\" is not present in the filter library.");
        return false;
    }

    {
        boost::mutex::scoped_lock lock(_processesMutex);
        if (!_wireInputs(draft, inputs, p1, p2, failure) ||
            !_wireOutputs(draft, outputs, p2, failure)) {
            lock.unlock();
            TES_LOG(failure.level, failure.text.str());
            return false;
        }
        draft.process =
            boost::make_shared<Process>(name, draft.node, priority, frequency, tolerance);
        if (!_wireTriggers(draft, triggers, p2, failure)) {
            lock.unlock();
            TES_LOG(failure.level, failure.text.str());
            return false;
        }
        const boost::shared_ptr<Process>& process = draft.process;
        for (const auto& source : draft.sources) {
            process->addSource(source.second);
            process->watchSource(source.second);
        }
        for (const auto& sink : draft.sinks) process->addSink(sink.second);
        for (const auto& aggregation : draft.aggregations)
            process->addAggregatedSink(aggregation.second);
        for (const auto& local : draft.locals) {
            process->addSource(local.second);
            process->watchSource(local.second);
        }
        // An existing process of that name stays; the new one is dropped, and the call
        // still counts as done.
        _processes.emplace(name, process);
    }
    TES_LOG(kelvo::log::Verbose,
            "new tessarity process: \""
                << name << "\" priority: " << draft.process->getPriority()
                << " frequency: " << draft.process->getFrequency()
                << " tolerance: " << draft.process->getTolerance().getTotalMilliseconds() << "ms");
    _computeDependency(false);
    _scheduler->update();
    _clearSourceBoundCache();
    return true;
}

bool TessarityPrivate::_wireInputs(ProcessDraft& draft, const Pairs& inputs, const std::string& p1,
                                   const std::string& p2, Failure& failure) {
    for (const auto& input : inputs) {
        const std::string& value = input.second;
        boost::mutex::scoped_lock sources(_sourcesMutex);
        boost::mutex::scoped_lock aliases(_sourceAliasesMutex);
        boost::shared_ptr<Port> port = draft.node->getInput(input.first);
        if (!port) {
            failure.text << p2 << "impossible to find the specified input \"" << input.first
                         << "\".";
            return failure.fail(kelvo::log::Error);
        }
        const std::pair<std::string, std::string> names = splitString(":", value);
        boost::shared_ptr<NodeSource> source;
        boost::shared_ptr<Data> constant;
        bool isNull = false;
        if (value.find(':') != std::string::npos && names.first == "this") {
            auto local = draft.locals.find(names.second);
            if (local == draft.locals.end()) {
                failure.text << p2 << "impossible to find the local source \"" << names.second
                             << "\" in the current process.";
                return failure.fail(kelvo::log::Error);
            }
            // Local sources join the process at registration, all of them.
            port->attach(local->second->getOutput("out"));
            continue;
        } else if (value.find(':') != std::string::npos) {
            boost::shared_ptr<Process> other = _findProcess(names.first);
            if (!other) {
                failure.text << p1 << "impossible to find the specified process \"" << names.first
                             << "\".";
                return failure.fail(kelvo::log::Error);
            }
            if (!other->getSinks().count(names.second) &&
                !other->getAggregatedSinks().count(names.second)) {
                failure.text << p2 << "impossible to find the specified sink \"" << names.second
                             << "\" in the process \"" << names.first << "\".";
                return failure.fail(kelvo::log::Error);
            }
            source = boost::make_shared<NodeProcessSource>(names.first + ":" + names.second, other,
                                                           names.second);
        } else if ((source = _findSourceOrAlias(value))) {
        } else if ((constant = literalData(value))) {
        } else if (value == "null") {
            isNull = true;
        } else {
            failure.text << p1 << "impossible to find the specified source \"" << value << "\".";
            return failure.fail(kelvo::log::Error);
        }
        if (constant || isNull) {
            source = boost::make_shared<NodeSource>(anonymous(draft.counter++));
            source->setData(constant);
        }
        port->attach(source->getOutput("out"));
        // Never replaces: a second input on one process sink keeps its own node, unlisted.
        draft.sources.emplace(source->getName(), source);
    }
    return true;
}

bool TessarityPrivate::_wireOutputs(ProcessDraft& draft, const Pairs& outputs,
                                    const std::string& p2, Failure& failure) {
    for (const auto& output : outputs) {
        const std::string& sinkName = output.second;
        boost::shared_ptr<Port> port = draft.node->getOutput(output.first);
        if (!port) {
            failure.text << p2 << "impossible to find the specified output \"" << output.first
                         << "\".\n  Please verify the output list.";
            return failure.fail(kelvo::log::Warning);
        }
        auto attached = [&](const std::string& sinkNodeName) {
            auto sink = boost::make_shared<NodeSink>(sinkNodeName);
            sink->getInput("in")->attach(port);
            draft.sinks[sinkNodeName] = sink;
            return sink;
        };
        auto aggregation = draft.aggregations.find(sinkName);
        if (aggregation != draft.aggregations.end()) {
            if (!aggregation->second->addSink(attached(anonymous(draft.counter++)))) {
                failure.text << p2
                             << "impossible to create an aggregation with twice the same source.";
                return failure.fail(kelvo::log::Warning);
            }
        } else if (!draft.sinks.count(sinkName)) {
            attached(sinkName);
        } else {
            // A second use of a sink name makes it an aggregation of anonymous sinks.
            auto group = boost::make_shared<AggregatedSink>(sinkName);
            draft.aggregations[sinkName] = group;
            boost::shared_ptr<NodeSink> first = draft.sinks[sinkName];
            draft.sinks.erase(sinkName);
            first->setName(anonymous(draft.counter));
            draft.sinks[first->getName()] = first;
            if (!group->addSink(first)) {
                draft.aggregations.erase(sinkName);
                failure.text << p2
                             << "impossible to create an aggregation with twice the same sink.";
                return failure.fail(kelvo::log::Warning);
            }
            if (!group->addSink(attached(anonymous(draft.counter + 1)))) {
                draft.aggregations.erase(sinkName);
                failure.text << p2
                             << "impossible to create an aggregation with twice the same source.";
                return failure.fail(kelvo::log::Warning);
            }
            draft.counter += 2;
        }
    }
    return true;
}

bool TessarityPrivate::_wireTriggers(ProcessDraft& draft, const Pairs& triggers,
                                     const std::string& p2, Failure& failure) {
    auto wake = [&](const boost::shared_ptr<Process>& process) {
        return boost::make_shared<Event>(process, _scheduler);
    };
    for (const auto& trigger : triggers) {
        const std::string& origin = trigger.first;
        const std::string& target = trigger.second;
        if (origin.find(':') != std::string::npos) {
            if (target != "self") {
                failure.text << p2 << "\"self\" expected instead of \"" << target << "\".";
                return failure.fail(kelvo::log::Error);
            }
            const std::pair<std::string, std::string> names = splitString(":", origin);
            if (names.first == "this") {
                auto local = draft.locals.find(names.second);
                if (local == draft.locals.end()) {
                    failure.text << p2 << "The source \"" << names.second
                                 << "\" is not declared in the process.";
                    return failure.fail(kelvo::log::Error);
                }
                local->second->addEvent(wake(draft.process));
                continue;
            }
            boost::shared_ptr<Process> owner = _findProcess(names.first);
            if (!owner) {
                failure.text << p2 << "The process \"" << names.first << "\" is not declared.";
                return failure.fail(kelvo::log::Error);
            }
            auto sink = owner->getSinks().find(names.second);
            if (sink == owner->getSinks().end()) {
                failure.text << p2 << "The sink \"" << names.second << "\" is not declared in \""
                             << names.first << "\".";
                return failure.fail(kelvo::log::Error);
            }
            // Stays on the other process's sink even if a later step fails: it then wakes
            // nothing, as its process is gone.
            sink->second->addEvent(wake(draft.process));
            continue;
        }
        auto sink = draft.sinks.find(origin);
        auto source = draft.sources.find(origin);
        if (sink == draft.sinks.end() && source == draft.sources.end()) {
            failure.text << p2 << "impossible to find the specified sink \"" << origin << "\".";
            return failure.fail(kelvo::log::Warning);
        }
        boost::shared_ptr<Process> woken;
        if (sink == draft.sinks.end() && target == "self")
            woken = draft.process;
        else
            woken = _findProcess(target);
        if (!woken) {
            failure.text << p2 << "impossible to find the specified process \"" << target << "\".";
            return failure.fail(kelvo::log::Warning);
        }
        if (sink != draft.sinks.end())
            sink->second->addEvent(wake(woken));
        else
            source->second->addEvent(wake(woken));
    }
    return true;
}

// The registry.

std::vector<std::string> TessarityPrivate::getProcesses() const {
    boost::mutex::scoped_lock lock(_processesMutex);
    std::vector<std::string> names;
    for (const auto& process : _processes) names.push_back(process.first);
    return names;
}

bool TessarityPrivate::isProcess(const std::string& name) const {
    boost::mutex::scoped_lock lock(_processesMutex);
    return _processes.count(name) != 0;
}

boost::shared_ptr<Process> TessarityPrivate::_lookupProcess(const std::string& name) const {
    boost::mutex::scoped_lock lock(_processesMutex);
    return _findProcess(name);
}

std::string TessarityPrivate::getProcessDescription(const std::string& name) const {
    if (boost::shared_ptr<Process> process = _lookupProcess(name)) return process->getDescription();
    TES_LOG(kelvo::log::Error,
            "Can't get description of the process \"" << name << "\": process unknown");
    return std::string();
}

bool TessarityPrivate::setProcessDescription(const std::string& name,
                                             const std::string& description) {
    if (boost::shared_ptr<Process> process = _lookupProcess(name)) {
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

std::vector<std::string> TessarityPrivate::getProcessSources(const std::string& name) const {
    if (boost::shared_ptr<Process> process = _lookupProcess(name))
        return keys(process->getSources());
    TES_LOG(kelvo::log::Error,
            "Can't get sources of the process \"" << name << "\": process unknown.");
    return std::vector<std::string>();
}

std::vector<std::string> TessarityPrivate::getProcessSinks(const std::string& name) const {
    if (boost::shared_ptr<Process> process = _lookupProcess(name)) return keys(process->getSinks());
    TES_LOG(kelvo::log::Error,
            "Can't get sinks of the process \"" << name << "\": process unknown.");
    return std::vector<std::string>();
}

std::vector<std::string> TessarityPrivate::getProcessAggregatedSinks(
    const std::string& name) const {
    if (boost::shared_ptr<Process> process = _lookupProcess(name))
        return keys(process->getAggregatedSinks());
    TES_LOG(kelvo::log::Error,
            "Can't get aggregated sinks of the process \"" << name << "\": process unknown.");
    return std::vector<std::string>();
}

unsigned int TessarityPrivate::getProcessPriority(const std::string& name) const {
    if (boost::shared_ptr<Process> process = _lookupProcess(name)) return process->getPriority();
    TES_LOG(kelvo::log::Error,
            "Can't get priority of the process \"" << name << "\": process unknown.");
    return 0;
}

float TessarityPrivate::getProcessFrequency(const std::string& name) const {
    if (boost::shared_ptr<Process> process = _lookupProcess(name)) return process->getFrequency();
    TES_LOG(kelvo::log::Error,
            "Can't get frequency of the process \"" << name << "\": process unknown.");
    return 0.0f;
}

Type::Duration TessarityPrivate::getProcessTolerance(const std::string& name) const {
    boost::shared_ptr<Process> process = _lookupProcess(name);
    // The getter says "set", as the engine always has.
    if (!process)
        TES_THROW("Can't set tolerance for the process \"" << name << "\": process unknown.");
    return process->getTolerance();
}

void TessarityPrivate::setProcessPriority(const std::string& name, unsigned int priority) {
    boost::shared_ptr<Process> process = _lookupProcess(name);
    if (!process)
        TES_THROW("Can't set priority for the process \"" << name << "\": process unknown.");
    process->setPriority(priority > Process::maximumPriority ? Process::maximumPriority : priority);
    _scheduler->update();
}

void TessarityPrivate::setProcessFrequency(const std::string& name, float frequency) {
    boost::shared_ptr<Process> process = _lookupProcess(name);
    if (!process)
        TES_THROW("Can't set frequency for the process \"" << name << "\": process unknown.");
    process->setFrequency(frequency);
    _scheduler->update();
}

void TessarityPrivate::setProcessTolerance(const std::string& name,
                                           const Type::Duration& tolerance) {
    boost::shared_ptr<Process> process = _lookupProcess(name);
    if (!process)
        TES_THROW("Can't set tolerance for the process \"" << name << "\": process unknown.");
    process->setTolerance(tolerance);
}

bool TessarityPrivate::renameProcess(const std::string& name, const std::string& newName) {
    {
        boost::mutex::scoped_lock lock(_processesMutex);
        boost::shared_ptr<Process> process = _findProcess(name);
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

bool TessarityPrivate::resetProcess(const std::string& name) {
    boost::shared_ptr<Process> process = _lookupProcess(name);
    if (!process) {
        TES_LOG(kelvo::log::Error, "Process \"" << name << "\" does not exist.");
        return false;
    }
    _memoryManager.removeProcess(StringHash(name));
    // Waits for a run under way, without any registry lock held.
    return process->reset();
}

bool TessarityPrivate::isProcessEnable(const std::string& name) const {
    if (boost::shared_ptr<Process> process = _lookupProcess(name)) return process->isEnable();
    TES_LOG(kelvo::log::Error,
            "Can't test if process \"" << name << "\" is enable: process unknown.");
    return false;
}

bool TessarityPrivate::isProcessZombie(const std::string& name) const {
    if (boost::shared_ptr<Process> process = _lookupProcess(name)) return process->isZombie();
    TES_LOG(kelvo::log::Error,
            "Can't test if process \"" << name << "\" is zombie: process unknown.");
    return false;
}

bool TessarityPrivate::enableProcess(const std::string& name) {
    return _setProcessEnabled(name, true);
}

bool TessarityPrivate::disableProcess(const std::string& name) {
    return _setProcessEnabled(name, false);
}

bool TessarityPrivate::_setProcessEnabled(const std::string& name, bool enabled) {
    boost::shared_ptr<Process> process = _lookupProcess(name);
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
    _clearSourceBoundCache();
    _computeDependency(true);
    _scheduler->update();
    return true;
}

bool TessarityPrivate::deleteProcess(const std::string& name) {
    {
        boost::mutex::scoped_lock lock(_processesMutex);
        if (_processes.erase(name)) {
            _memoryManager.removeProcess(StringHash(name));
            boost::mutex::scoped_lock sources(_sourcesMutex);
            _sourceBoundCache.clear();
        } else {
            lock.unlock();
            TES_LOG(kelvo::log::Error, "Can't delete process \"" << name << "\": process unknown.");
            return false;
        }
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

std::string TessarityPrivate::getInstrumentationResult() const { return std::string(); }

std::pair<std::string, boost::shared_ptr<Process>> TessarityPrivate::_sinkOwner(
    const std::string& sink, const char* operation) const {
    if (sink.find(':') == std::string::npos)
        TES_THROW("Can't get last data(\"" << sink << "\"): the sink is not correctly formated "
                                           << "(\"process:sink\" expected).");
    const std::pair<std::string, std::string> names = splitString(":", sink);
    boost::shared_ptr<Process> process = _lookupProcess(names.first);
    if (!process)
        TES_THROW("Can't get " << operation << "(\"" << sink << "\"): the process \"" << names.first
                               << "\" does not exist.");
    return std::make_pair(names.second, process);
}

boost::shared_ptr<Data> TessarityPrivate::getData(const std::string& sink) {
    return getData(sink, Type::Time::now());
}

boost::shared_ptr<Data> TessarityPrivate::getData(const std::string& sink, const Type::Time& time) {
    const std::pair<std::string, boost::shared_ptr<Process>> owner = _sinkOwner(sink, "data");
    // Runs without the registry lock: the process raises events whose callbacks may come
    // back into the engine.
    return owner.second->getData(owner.first, time);
}

boost::shared_ptr<Data> TessarityPrivate::getLastData(const std::string& sink) const {
    const std::pair<std::string, boost::shared_ptr<Process>> owner = _sinkOwner(sink, "last data");
    return owner.second->getLastData(owner.first);
}

bool TessarityPrivate::_addProcess(const boost::shared_ptr<Process>& process) {
    {
        boost::mutex::scoped_lock lock(_processesMutex);
        if (!_processes.emplace(process->getName(), process).second) return false;
    }
    _computeDependency(false);
    _scheduler->update();
    _clearSourceBoundCache();
    return true;
}

// Walks over all processes.

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
                    boost::shared_ptr<Process> needed = _findProcess(dependency);
                    if (!needed || needed->isLive()) continue;
                    needed->zombify();
                    changed = true;
                }
        }
    }
}

Type::Duration TessarityPrivate::_getNextComputationTime() const {
    Type::Duration result(100000);
    const Type::Time now = Type::Time::now();
    for (const boost::shared_ptr<Process>& process : _getScheduledProcesses()) {
        // Never waits: a process that is running counts its whole period.
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
