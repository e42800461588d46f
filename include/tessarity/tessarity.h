#ifndef TESSARITY_TESSARITY_H
#define TESSARITY_TESSARITY_H

#include <tessarity/export.h>

// The whole public surface of the engine: an application includes only this header.

#include <list>
#include <string>
#include <utility>
#include <vector>

#include <boost/function.hpp>
#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <tessarity/cv_bridge.h>
#include <tessarity/data.h>
#include <tessarity/datatype.h>
#include <tessarity/duration.h>
#include <tessarity/stringhash.h>
#include <tessarity/time.h>
#include <tessarity/types/audio_buffer.h>
#include <tessarity/types/color.h>
#include <tessarity/types/histogram.h>
#include <tessarity/types/human.h>
#include <tessarity/types/image.h>
#include <tessarity/types/lambda.h>
#include <tessarity/types/object.h>
#include <tessarity/types/region.h>
#include <tessarity/types/vector.h>
#include <tessarity/userfilter.h>
#include <tessarity/usersource.h>

namespace Tessarity {

class TessarityPrivate;

// The kinds of filter that createClassificationFilter makes.
enum ClassificationType {
    KNN = 0  // nearest neighbours among the labelled descriptors of a data base
};

// The engine. A thin handle: copies share one engine, and dropping the last one stops the
// workers and destroys it. Any thread may call any operation at any time.
//
// Failures are reported by one log line (category "tessarity.private") and a false or empty
// result; getData, getLastData, setData, getSourceData, createSourceEvent, setProcessPriority,
// setProcessFrequency, setProcessTolerance and getProcessTolerance also throw
// std::invalid_argument with the logged text.
class TESSARITY_EXPORT Tessarity {
public:
    typedef std::list<std::pair<std::string, std::string>> Pairs;
    typedef boost::function1<void, boost::shared_ptr<Data>> Callback;
    typedef std::pair<std::string, std::string> PortName;  // (instance, port)
    typedef std::list<std::pair<PortName, PortName>> Links;
    typedef std::list<std::pair<PortName, std::string>> Exports;

    // Starts `threadCount` workers; with 0 none starts, and processes run only when pulled.
    explicit Tessarity(unsigned int threadCount);

    // Programs: the language of filter, source, process, event, delete, import and script
    // statements, as text or from a file (".tsp", ".txt"); a ".so" plug-in module gets this
    // engine in its entry `extern "C" void tessarityInit(void* handle)`. Each path is taken
    // once in the life of an engine.
    bool loadProgram(const std::string& program);
    bool loadProgramFromFile(const std::string& path);

    // Results. `sink` is "process:sink". getData first runs the process for `time` (or now)
    // on the caller's thread if it is due.
    boost::shared_ptr<Data> getData(const std::string& sink);
    boost::shared_ptr<Data> getData(const std::string& sink, const Type::Time& time);
    boost::shared_ptr<Data> getLastData(const std::string& sink) const;

    // The filter library.
    // A filter of the application's own; one of the same name is replaced.
    bool createFilter(boost::shared_ptr<UserFilter> filter);
    // A composite: (type, instance) nodes of library filters, links ((from, port), (to, port))
    // between them, and inner ports exported under outside names; an exported input may carry
    // a default as "port[value]". An empty port name selects a node's only port.
    bool createFilter(const std::string& name, const Pairs& filters, const Links& links,
                      const Exports& inputs, const Exports& outputs);
    // A classification filter named `name` over a data base, an XML file found in the data
    // paths under "orvik/vision/tsp". The reader's exceptions (boost::property_tree's) pass
    // for a malformed data base.
    bool createClassificationFilter(const std::string& name, ClassificationType type,
                                    const std::string& file);
    // Graphviz text of a filter, expanded `depth` levels into composites and nodes.
    std::string dumpFilter(const std::string& name, int depth) const;
    std::vector<std::string> getFilters() const;
    bool isFilter(const std::string& name) const;
    std::string getFilterDescription(const std::string& name) const;
    // One line per port: "optional [Integer, Float] size".
    std::vector<std::string> getFilterInputs(const std::string& name) const;
    std::vector<std::string> getFilterOutputs(const std::string& name) const;
    bool deleteFilter(const std::string& name);
    // A filter of the library as a value, to apply and curry; null for an unknown name.
    boost::shared_ptr<Type::Lambda> createLambda(const std::string& filter) const;

    // Sources. A name is unique among sources and aliases; "process:source" addresses a
    // local source of a process. Data cannot be set through an alias.
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
    // inputs: (port, value) where a value is "this:local", "process:sink", a source or alias,
    // a literal (true, 12, 1.5, "text"), or null. outputs: (port, sink); a sink name used twice
    // makes an aggregation. triggers: (origin, target). sources: ("source" or "pulse", name),
    // a pulse with a default as "name[value]".
    bool createProcess(const std::string& name, const std::string& filter, const Pairs& inputs,
                       const Pairs& outputs, const Pairs& triggers, const Pairs& sources,
                       unsigned int priority, float frequency, const Type::Duration& tolerance);
    bool renameProcess(const std::string& name, const std::string& newName);
    bool resetProcess(const std::string& name);
    bool isProcessEnable(const std::string& name) const;
    bool isProcessZombie(const std::string& name) const;
    bool enableProcess(const std::string& name);
    bool disableProcess(const std::string& name);
    bool deleteProcess(const std::string& name);
    std::vector<std::string> getScheduledJobs() const;
    std::string getInstrumentationResult() const;

    // Events: a callback, or a process to wake, when a sink or a source gets a value.
    // Callbacks run on the thread that produced the value.
    bool createEvent(const std::string& sink, Callback callback);
    bool createEvent(const std::string& sink, const std::string& process);
    bool createSourceEvent(const std::string& source, Callback callback);
    bool createSourceEvent(const std::string& source, const std::string& process);
    // A process named by a literal is a name, not a callback.
    bool createEvent(const std::string& sink, const char* process);
    bool createSourceEvent(const std::string& source, const char* process);

    // Scheduler. Stopping keeps every registry; nothing runs by itself until started again.
    void startScheduler();
    void stopScheduler();

private:
    boost::shared_ptr<TessarityPrivate> _d;
};

}  // namespace Tessarity

#endif
