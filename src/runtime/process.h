#ifndef TESSARITY_RUNTIME_PROCESS_H
#define TESSARITY_RUNTIME_PROCESS_H

#include <atomic>
#include <map>
#include <string>

#include <boost/shared_ptr.hpp>
#include <boost/thread/mutex.hpp>

#include <tessarity/data.h>
#include <tessarity/duration.h>
#include <tessarity/stringhash.h>
#include <tessarity/time.h>

namespace Tessarity {

class AggregatedSink;
class NodeFilter;
class NodeSink;
class NodeSource;

// A graph that can be run: one filter node, its sources and sinks, and when to run it.
// update() decides whether a run is due and drives the two passes of the pull from the sinks.
class Process {
public:
    static const unsigned int defaultPriority;
    static const unsigned int maximumPriority;
    static const float defaultFrequency;
    static const Type::Duration defaultTolerance;

    Process(const std::string& name, boost::shared_ptr<NodeFilter> filterNode,
            unsigned int priority, float frequency, const Type::Duration& tolerance);

    // Copies: the application may rename a process while a worker runs it.
    std::string getName() const;
    StringHash getNameHash() const;
    bool setName(const std::string& name);
    std::string getDescription() const;
    void setDescription(const std::string& description);

    const std::map<std::string, boost::shared_ptr<NodeSource>>& getSources() const {
        return _sources;
    }
    const std::map<std::string, boost::shared_ptr<NodeSink>>& getSinks() const { return _sinks; }
    const std::map<std::string, boost::shared_ptr<AggregatedSink>>& getAggregatedSinks() const {
        return _aggregatedSinks;
    }
    const boost::shared_ptr<NodeFilter>& getFilterNode() const { return _filterNode; }

    // False, silently, if a source of that name is present.
    bool addSource(boost::shared_ptr<NodeSource> source);
    // True if the source was watched already; false when it is added now.
    bool watchSource(boost::shared_ptr<NodeSource> source);
    bool addSink(boost::shared_ptr<NodeSink> sink);
    bool addAggregatedSink(boost::shared_ptr<AggregatedSink> sink);

    unsigned int getPriority() const { return _priority; }
    bool setPriority(unsigned int priority);
    float getFrequency() const { return _frequency; }
    bool setFrequency(float frequency);
    Type::Duration getTolerance() const { return Type::Duration(_tolerance.load()); }
    // Throws std::invalid_argument, after logging it, for a negative tolerance.
    bool setTolerance(const Type::Duration& tolerance);

    // Time left before the process is due; the whole period while it is running.
    Type::Duration getTimeToLive(const Type::Time& time) const;
    bool isValid(const Type::Time& time) const;
    // Runs the process for `time` if it is due; false if the process is not live.
    bool update(const Type::Time& time);
    // Throw std::invalid_argument, after logging it, for a sink the process does not own.
    boost::shared_ptr<Data> getData(const std::string& sink, const Type::Time& time);
    boost::shared_ptr<Data> getLastData(const std::string& sink) const;
    bool reset();

    void enable() { _enabled = true; }
    void disable() { _enabled = false; }
    bool isEnable() const { return _enabled; }
    void zombify() { _zombie = true; }
    void unZombify() { _zombie = false; }
    bool isZombie() const { return _zombie; }
    bool isLive() const { return _enabled || _zombie; }

private:
    Type::Duration _period() const;

    mutable boost::mutex _mutex;
    // The flags and parameters are plain values read by workers while the application
    // writes them; atomics keep those reads defined.
    std::atomic<unsigned int> _priority;
    std::atomic<float> _frequency;
    std::atomic<long long> _tolerance;
    Type::Time _lastComputation;
    // A leaf lock for the name and the description.
    mutable boost::mutex _nameMutex;
    StringHash _name;
    std::string _description;
    std::map<std::string, boost::shared_ptr<NodeSource>> _sources;
    std::map<boost::shared_ptr<NodeSource>, unsigned long long> _watchedSources;
    boost::shared_ptr<NodeFilter> _filterNode;
    std::map<std::string, boost::shared_ptr<NodeSink>> _sinks;
    std::map<std::string, boost::shared_ptr<AggregatedSink>> _aggregatedSinks;
    std::atomic<bool> _enabled;
    std::atomic<bool> _zombie;
};

}  // namespace Tessarity

#endif
