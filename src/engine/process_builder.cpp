// Construction of processes from names and literal values.
#include "engine/process_builder.h"

#include <map>
#include <sstream>

#include <boost/make_shared.hpp>

#include <tessarity/types/lambda.h>

#include "common/logging.h"
#include "engine/filter_library.h"
#include "engine/source_registry.h"
#include "graph/aggregated_sink.h"
#include "graph/event.h"
#include "graph/filter.h"
#include "graph/node_filter.h"
#include "graph/node_pulse.h"
#include "graph/node_sink.h"
#include "graph/node_source.h"
#include "graph/port.h"
#include "runtime/node_process_source.h"
#include "runtime/process.h"
#include "runtime/scheduler.h"
#include "text/text_utils.h"

namespace Tessarity {

namespace {
const char* const kLogCategory = "tessarity.private";
const char* const kLogFile = "src/tessarity_p";

std::string anonymous(int counter) { return "___Anonymous" + std::to_string(counter); }

}  // namespace

ProcessBuilder::ProcessBuilder(FilterLibrary& filters, SourceRegistry& sources,
                               ProcessRegistry& processes)
    : _filters(filters), _sources(sources), _processes(processes) {}

// A failed step of createProcess, logged once every lock is released.
struct ProcessBuilder::Failure {
    int level = 0;
    std::ostringstream text;
    bool fail(int failureLevel) {
        level = failureLevel;
        return false;
    }
};

// The graph of one process, while it is being wired: nothing of it is visible to anyone
// until it is registered, so a failure leaves no trace in the registries.
struct ProcessBuilder::ProcessDraft {
    std::map<std::string, boost::shared_ptr<NodeSource>> locals;
    boost::shared_ptr<NodeFilter> node;
    std::map<std::string, boost::shared_ptr<NodeSource>> sources;
    std::map<std::string, boost::shared_ptr<NodeSink>> sinks;
    std::map<std::string, boost::shared_ptr<AggregatedSink>> aggregations;
    boost::shared_ptr<Process> process;
    int counter = 0;
};

bool ProcessBuilder::createProcess(const std::string& name, const std::string& filter,
                                   const Pairs& inputs, const Pairs& outputs, const Pairs& triggers,
                                   const Pairs& sources, unsigned int priority, float frequency,
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
    if (boost::shared_ptr<Filter> found = _filters.find(filter))
        draft.node = boost::make_shared<NodeFilter>(name + "_" + filter, found);
    if (!draft.node) {
        TES_LOG(kelvo::log::Error,
                p2 << "the filter \"" << filter << "\" is not present in the filter library.");
        return false;
    }

    bool wired;
    {
        ProcessRegistry::Lock processes(_processes);
        wired = _wireInputs(processes, draft, inputs, p1, p2, failure) &&
                _wireOutputs(draft, outputs, p2, failure);
        if (wired) {
            draft.process =
                boost::make_shared<Process>(name, draft.node, priority, frequency, tolerance);
            wired = _wireTriggers(processes, draft, triggers, p2, failure);
        }
        if (wired) {
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
            processes.emplace(name, process);
        }
    }
    if (!wired) {
        TES_LOG(failure.level, failure.text.str());
        return false;
    }
    TES_LOG(kelvo::log::Verbose,
            "new tessarity process: \""
                << name << "\" priority: " << draft.process->getPriority()
                << " frequency: " << draft.process->getFrequency()
                << " tolerance: " << draft.process->getTolerance().getTotalMilliseconds() << "ms");
    _processes.refresh(false);
    return true;
}

bool ProcessBuilder::_wireInputs(const ProcessRegistry::Lock& processes, ProcessDraft& draft,
                                 const Pairs& inputs, const std::string& p1, const std::string& p2,
                                 Failure& failure) {
    for (const auto& input : inputs) {
        const std::string& value = input.second;
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
            boost::shared_ptr<Process> other = processes.find(names.first);
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
        } else if ((source = _sources.findSourceOrAlias(value))) {
        } else if ((constant = literalData(value))) {
        } else if (value == "null") {
            isNull = true;
        } else if (boost::shared_ptr<Filter> filter = _filters.find(value)) {
            // A filter's name gives that filter as a value.
            constant = boost::make_shared<Data>(Type::Lambda::createLambda(filter));
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

bool ProcessBuilder::_wireOutputs(ProcessDraft& draft, const Pairs& outputs, const std::string& p2,
                                  Failure& failure) {
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

bool ProcessBuilder::_wireTriggers(const ProcessRegistry::Lock& processes, ProcessDraft& draft,
                                   const Pairs& triggers, const std::string& p2, Failure& failure) {
    auto wake = [&](const boost::shared_ptr<Process>& process) {
        return boost::make_shared<Event>(process, _processes.getScheduler());
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
            boost::shared_ptr<Process> owner = processes.find(names.first);
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
            woken = processes.find(target);
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

}  // namespace Tessarity
