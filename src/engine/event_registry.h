#ifndef TESSARITY_ENGINE_EVENT_REGISTRY_H
#define TESSARITY_ENGINE_EVENT_REGISTRY_H

#include <string>

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>

#include <tessarity/data.h>

namespace Tessarity {

class Event;
class ProcessRegistry;
class SourceRegistry;

// Attaches the application's events to sinks and sources: a callback, or a process to wake.
// The events live on the nodes; this only finds the node by name.
class EventRegistry {
public:
    typedef boost::function1<void, boost::shared_ptr<Data>> Callback;

    EventRegistry(ProcessRegistry& processes, SourceRegistry& sources);

    bool createEvent(const std::string& sink, Callback callback);
    bool createEvent(const std::string& sink, const std::string& process);
    bool createSourceEvent(const std::string& source, Callback callback);
    bool createSourceEvent(const std::string& source, const std::string& process);

private:
    // False, with the line of createEvent, for a sink name without ":".
    static bool _isSinkName(const std::string& sink);
    bool _addSinkEvent(const std::string& sink, const boost::shared_ptr<Event>& event);
    bool _addSourceEvent(const std::string& source, const boost::shared_ptr<Event>& event,
                         bool forCallback);
    // An event that wakes the process of that name, or null if there is none.
    boost::shared_ptr<Event> _wake(const std::string& process) const;

    ProcessRegistry& _processes;
    SourceRegistry& _sources;
};

}  // namespace Tessarity

#endif
