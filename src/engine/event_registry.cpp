// Events of the application on sinks and sources, found by name.
#include "engine/event_registry.h"

#include <sstream>
#include <stdexcept>

#include <boost/make_shared.hpp>

#include "common/logging.h"
#include "engine/process_registry.h"
#include "engine/source_registry.h"
#include "graph/aggregated_sink.h"
#include "graph/event.h"
#include "graph/node_sink.h"
#include "graph/node_source.h"
#include "runtime/process.h"
#include "runtime/scheduler.h"
#include "text/text_utils.h"

namespace Tessarity {

namespace {
const char* const kLogCategory = "tessarity.private";
const char* const kLogFile = "src/tessarity_p";
}  // namespace

EventRegistry::EventRegistry(ProcessRegistry& processes, SourceRegistry& sources)
    : _processes(processes), _sources(sources) {}

bool EventRegistry::_addSinkEvent(const std::string& sink, const boost::shared_ptr<Event>& event) {
    const std::pair<std::string, std::string> names = splitString(":", sink);
    std::ostringstream failure;
    {
        // Under the registry's lock, so the process stays registered while its sink is found.
        ProcessRegistry::Lock processes(_processes);
        boost::shared_ptr<Process> owner = processes.find(names.first);
        if (!owner) {
            failure << "createEvent(\"" << sink << "\", callback): unknown process \""
                    << names.first << "\".";
        } else if (owner->getSinks().count(names.second)) {
            owner->getSinks().at(names.second)->addEvent(event);
            return true;
        } else if (owner->getAggregatedSinks().count(names.second)) {
            owner->getAggregatedSinks().at(names.second)->addEvent(event);
            return true;
        } else {
            failure << "createEvent(\"" << sink << "\", callback): unknown sink \"" << names.second
                    << "\".";
        }
    }
    TES_LOG(kelvo::log::Error, failure.str());
    return false;
}

bool EventRegistry::_isSinkName(const std::string& sink) {
    if (sink.find(':') != std::string::npos) return true;
    TES_LOG(kelvo::log::Error, "createEvent(\"" << sink << "\", callback): invalid sink format "
                                                << "expected \"process:sink\".");
    return false;
}

bool EventRegistry::createEvent(const std::string& sink, Callback callback) {
    if (!_isSinkName(sink)) return false;
    return _addSinkEvent(sink, boost::make_shared<Event>(callback));
}

bool EventRegistry::createEvent(const std::string& sink, const std::string& process) {
    if (!_isSinkName(sink)) return false;
    boost::shared_ptr<Event> wake = _wake(process);
    if (!wake) {
        TES_LOG(kelvo::log::Error,
                "createEvent(" << sink << ", " << process << "): unknown target process.");
        return false;
    }
    return _addSinkEvent(sink, wake);
}

bool EventRegistry::_addSourceEvent(const std::string& source,
                                    const boost::shared_ptr<Event>& event, bool forCallback) {
    const char* const verb = forCallback ? "Can't retrieve source \"" : "Can't access source \"";
    boost::shared_ptr<NodeSource> node;
    if (source.find(':') != std::string::npos) {
        const std::pair<std::string, std::string> names = splitString(":", source);
        boost::shared_ptr<Process> owner = _processes.find(names.first);
        if (owner && owner->getSources().count(names.second))
            node = owner->getSources().at(names.second);
        if (!owner)
            TES_THROW(verb << names.second << "\": process \"" << names.first << "\" unknown.");
        if (!node)
            TES_THROW(verb << names.second << "\": process \"" << names.first
                           << "\" don't own this source.");
    } else {
        node = _sources.findSourceOrAlias(source);
        if (!node && forCallback)
            TES_THROW("Can't retrieve source \"" << source << "\": source unknown.");
        if (!node) TES_THROW("Can't get data from source \"" << source << "\": source unknown.");
    }
    node->addEvent(event);
    return true;
}

bool EventRegistry::createSourceEvent(const std::string& source, Callback callback) {
    return _addSourceEvent(source, boost::make_shared<Event>(callback), true);
}

bool EventRegistry::createSourceEvent(const std::string& source, const std::string& process) {
    boost::shared_ptr<Event> wake = _wake(process);
    if (!wake) TES_THROW("Can't get process \"" << process << "\": process unknown.");
    return _addSourceEvent(source, wake, false);
}

boost::shared_ptr<Event> EventRegistry::_wake(const std::string& process) const {
    boost::shared_ptr<Process> target = _processes.find(process);
    if (!target) return boost::shared_ptr<Event>();
    return boost::make_shared<Event>(target, _processes.getScheduler());
}

}  // namespace Tessarity
