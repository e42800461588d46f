#include "runtime/process.h"

#include <cmath>
#include <limits>
#include <ostream>
#include <stdexcept>

#include "common/logging.h"
#include "graph/aggregated_sink.h"
#include "graph/node_filter.h"
#include "graph/node_sink.h"
#include "graph/node_source.h"

namespace Tessarity {

namespace {
const char* const kLogCategory = "tessarity.process   ";
const char* const kLogFile = "src/process";
const unsigned long long kUnknownUid = std::numeric_limits<unsigned long long>::max();
}  // namespace

const unsigned int Process::defaultPriority = 3;
const unsigned int Process::maximumPriority = 8;
const float Process::defaultFrequency = 1.0f;
const Type::Duration Process::defaultTolerance = Type::Duration(1000000);

Process::Process(const std::string& name, boost::shared_ptr<NodeFilter> filterNode,
                 unsigned int priority, float frequency, const Type::Duration& tolerance)
    : _priority(priority > maximumPriority ? maximumPriority : priority),
      _frequency(frequency),
      _tolerance(tolerance.getTotalMicroseconds()),
      _name(name),
      _filterNode(filterNode),
      _enabled(true),
      _zombie(false) {}

std::string Process::getName() const {
    boost::mutex::scoped_lock lock(_nameMutex);
    return _name.getText();
}

StringHash Process::getNameHash() const {
    boost::mutex::scoped_lock lock(_nameMutex);
    return _name;
}

bool Process::setName(const std::string& name) {
    StringHash renamed(name);
    boost::mutex::scoped_lock lock(_nameMutex);
    _name = renamed;
    return true;
}

std::string Process::getDescription() const {
    boost::mutex::scoped_lock lock(_nameMutex);
    return _description;
}

void Process::setDescription(const std::string& description) {
    boost::mutex::scoped_lock lock(_nameMutex);
    _description = description;
}

bool Process::addSource(boost::shared_ptr<NodeSource> source) {
    return _sources.emplace(source->getName(), source).second;
}

bool Process::watchSource(boost::shared_ptr<NodeSource> source) {
    return !_watchedSources.emplace(source, kUnknownUid).second;
}

bool Process::addSink(boost::shared_ptr<NodeSink> sink) {
    if (_sinks.emplace(sink->getName(), sink).second) return true;
    TES_LOG(kelvo::log::Error, "Can't add sink to process. Sink already present.");
    return false;
}

bool Process::addAggregatedSink(boost::shared_ptr<AggregatedSink> sink) {
    if (_aggregatedSinks.emplace(sink->getName(), sink).second) return true;
    TES_LOG(kelvo::log::Error,
            "Can't add aggregated sink to process. Aggregated sink already present.");
    return false;
}

bool Process::setPriority(unsigned int priority) {
    _priority = priority > maximumPriority ? maximumPriority : priority;
    return true;
}

bool Process::setFrequency(float frequency) {
    _frequency = frequency < 0 ? 0.0f : frequency;
    return true;
}

bool Process::setTolerance(const Type::Duration& tolerance) {
    if (tolerance.getTotalMicroseconds() < 0) {
        TES_THROW("Can't set tolerance for process \"" << getName() << "\": "
                                                       << " tolerance must be positive.");
    }
    _tolerance = tolerance.getTotalMicroseconds();
    return true;
}

Type::Duration Process::_period() const {
    // Computed in single precision and truncated, as the frequency is a float. A frequency
    // of 0 gives an infinite quotient, which becomes the lowest 64-bit value, as the
    // processor's own conversion gives it.
    const float quotient = 1000000.0f / _frequency.load();
    const float limit = 9.2233720368547758e18f;  // 2^63
    if (!(quotient > -limit && quotient < limit))
        return Type::Duration(std::numeric_limits<long long>::min());
    return Type::Duration(static_cast<long long>(quotient));
}

bool Process::isValid(const Type::Time& time) const {
    if (_frequency <= 0) return true;
    // The last run stands for a whole period on either side of its time.
    const Type::Duration period = _period();
    return _lastComputation + period > time && _lastComputation - period < time;
}

Type::Duration Process::getTimeToLive(const Type::Time& time) const {
    const Type::Duration period = _period();
    boost::mutex::scoped_lock lock(_mutex, boost::try_to_lock);
    if (!lock.owns_lock()) return period;  // running now
    return (_lastComputation + period) - time;
}

bool Process::update(const Type::Time& time) {
    boost::mutex::scoped_lock lock(_mutex);
    if (!isLive()) return false;
    if (isValid(time)) return true;

    bool changed = _lastComputation != time;
    // Every watched source is read, so that its record stays current; a uid of 0 means the
    // source cannot tell, and counts as changed.
    for (auto& watched : _watchedSources) {
        const unsigned long long uid = watched.first->getUid();
        if (uid == 0 || uid != watched.second) {
            watched.second = uid;
            changed = true;
        }
    }
    if (!changed) return true;

    _lastComputation = time;
    // The request of the top of the graph is the process's name itself.
    const StringHash name = getNameHash();
    const StringHash& request = name;
    const Type::Duration tolerance = getTolerance();
    // Every sink is synchronized before any is pulled: one snapshot of the sources and one
    // computation of the shared nodes serve them all.
    for (const auto& sink : _sinks) sink.second->synchronize(time, tolerance, name, request, 0);
    for (const auto& sink : _sinks)
        sink.second->requestData(name, request, 0, boost::shared_ptr<Port>());
    for (const auto& aggregated : _aggregatedSinks) aggregated.second->update();
    return true;
}

boost::shared_ptr<Data> Process::getData(const std::string& sink, const Type::Time& time) {
    if (_sinks.find(sink) == _sinks.end() &&
        _aggregatedSinks.find(sink) == _aggregatedSinks.end()) {
        TES_THROW("Can't get data(\"" << sink << "\"): "
                                      << "the process " << getName()
                                      << " doesn't own this sink node.");
    }
    update(time);
    return getLastData(sink);
}

boost::shared_ptr<Data> Process::getLastData(const std::string& sink) const {
    auto aggregated = _aggregatedSinks.find(sink);
    auto single = _sinks.find(sink);
    if (aggregated == _aggregatedSinks.end() && single == _sinks.end()) {
        TES_THROW("Can't get last data(\"" << sink << "\"): "
                                           << "the process " << getName()
                                           << " doesn't own this sink node.");
    }
    if (!isLive()) return boost::shared_ptr<Data>();
    // A group wins over a sink of the same name.
    if (aggregated != _aggregatedSinks.end()) return aggregated->second->getLastData();
    return single->second->getLastData();
}

bool Process::reset() {
    boost::mutex::scoped_lock lock(_mutex);
    _lastComputation = Type::Time();
    for (const auto& sink : _sinks) sink.second->reset();
    for (const auto& aggregated : _aggregatedSinks) aggregated.second->update();
    for (auto& watched : _watchedSources) watched.second = kUnknownUid;
    return true;
}

}  // namespace Tessarity
