// The global sources: creation by name, from a user source or from a process's sink, aliases,
// values in and out, and which processes read a source.
#include "engine/source_registry.h"

#include <stdexcept>

#include <boost/make_shared.hpp>

#include <tessarity/usersource.h>

#include "common/logging.h"
#include "engine/process_registry.h"
#include "graph/node_source.h"
#include "graph/node_source_alias.h"
#include "graph/source_adapter.h"
#include "runtime/node_process_source.h"
#include "runtime/process.h"
#include "text/text_utils.h"

namespace Tessarity {

namespace {
const char* const kLogCategory = "tessarity.private";
const char* const kLogFile = "src/tessarity_p";
}  // namespace

SourceRegistry::SourceRegistry(ProcessRegistry& processes) : _processes(processes) {}

boost::shared_ptr<NodeSource> SourceRegistry::_findSource(const std::string& name) const {
    auto source = _sources.find(name);
    return source == _sources.end() ? boost::shared_ptr<NodeSource>() : source->second;
}

boost::shared_ptr<NodeSource> SourceRegistry::_findSourceOrAlias(const std::string& name) const {
    if (boost::shared_ptr<NodeSource> source = _findSource(name)) return source;
    auto alias = _sourceAliases.find(name);
    return alias == _sourceAliases.end() ? boost::shared_ptr<NodeSource>() : alias->second;
}

boost::shared_ptr<NodeSource> SourceRegistry::findSourceOrAlias(const std::string& name) const {
    boost::mutex::scoped_lock sources(_sourcesMutex);
    boost::mutex::scoped_lock aliases(_sourceAliasesMutex);
    return _findSourceOrAlias(name);
}

void SourceRegistry::clearBoundCache() {
    boost::mutex::scoped_lock lock(_sourcesMutex);
    _sourceBoundCache.clear();
}

std::vector<std::string> SourceRegistry::getSources() const {
    boost::mutex::scoped_lock lock(_sourcesMutex);
    std::vector<std::string> names;
    for (const auto& source : _sources) names.push_back(source.first);
    return names;
}

bool SourceRegistry::createSource(const std::string& name) {
    {
        boost::mutex::scoped_lock sources(_sourcesMutex);
        boost::mutex::scoped_lock aliases(_sourceAliasesMutex);
        if (!_findSourceOrAlias(name)) {
            _sources[name] = boost::make_shared<NodeSource>(name);
            return true;
        }
    }
    TES_LOG(kelvo::log::Error, "createSource(\"" << name << "\"): source already exists.");
    return false;
}

bool SourceRegistry::createSource(boost::shared_ptr<UserSource> source) {
    const std::string name = source->getName();
    {
        boost::mutex::scoped_lock sources(_sourcesMutex);
        boost::mutex::scoped_lock aliases(_sourceAliasesMutex);
        if (!_findSourceOrAlias(name)) {
            _sources[name] = boost::make_shared<SourceAdapter>(source);
            return true;
        }
    }
    TES_LOG(kelvo::log::Error, "createSource(\"" << name << "\"): source already exists.");
    return false;
}

bool SourceRegistry::createSourceFromProcessSink(const std::string& name, const std::string& sink) {
    std::ostringstream failure;
    {
        ProcessRegistry::Lock processes(_processes);
        boost::mutex::scoped_lock sources(_sourcesMutex);
        boost::mutex::scoped_lock aliases(_sourceAliasesMutex);
        const std::string prefix =
            "createSourceFromProcessSink(\"" + name + "\", \"" + sink + "\"): ";
        const std::pair<std::string, std::string> names = splitString(":", sink);
        boost::shared_ptr<Process> process;
        if (_findSourceOrAlias(name)) {
            failure << "createSourceFromProcessSink(\"" << name << "\"): source already exists.";
        } else if (sink.find(':') == std::string::npos) {
            failure << prefix << "impossible to find the specified process sink. Please make sure "
                    << "to write the sink name as \"process_name:sink_name\".";
        } else if (!(process = processes.find(names.first))) {
            failure << prefix << "impossible to find the specified process \"" << names.first
                    << "\".";
        } else if (!process->getSinks().count(names.second) &&
                   !process->getAggregatedSinks().count(names.second)) {
            failure << prefix << "impossible to find the specified sink \"" << names.second
                    << "\" in the process \"" << names.first << "\".";
        } else {
            _sources[name] = boost::make_shared<NodeProcessSource>(name, process, names.second);
            return true;
        }
    }
    TES_LOG(kelvo::log::Error, failure.str());
    return false;
}

bool SourceRegistry::createSourceAlias(const std::string& alias, const std::string& source) {
    std::ostringstream failure;
    {
        boost::mutex::scoped_lock sources(_sourcesMutex);
        boost::mutex::scoped_lock aliases(_sourceAliasesMutex);
        // Only a global source can be a target: an alias of an alias is refused.
        boost::shared_ptr<NodeSource> target = _findSource(source);
        if (!target) {
            failure << "Can't create alias \"" << alias << "\": source \"" << source
                    << "\" not found.";
        } else if (_findSourceOrAlias(alias)) {
            failure << "Can't create alias \"" << alias
                    << "\": source or alias is already present.";
        } else {
            _sourceAliases[alias] = boost::make_shared<NodeSourceAlias>(alias, target);
            _sourceAliasTargets[source].insert(alias);
            return true;
        }
    }
    TES_LOG(kelvo::log::Error, failure.str());
    return false;
}

bool SourceRegistry::renameSourceAlias(const std::string& alias, const std::string& newAlias) {
    std::ostringstream failure;
    {
        boost::mutex::scoped_lock sources(_sourcesMutex);
        boost::mutex::scoped_lock aliases(_sourceAliasesMutex);
        auto found = _sourceAliases.find(alias);
        if (_findSourceOrAlias(newAlias)) {
            failure << "Can't rename alias \"" << alias << "\": \"" << newAlias
                    << "\" is already in use.";
        } else if (found == _sourceAliases.end()) {
            failure << "Can't rename alias \"" << alias << "\": alias unknown.";
        } else {
            // The registry key changes; the node keeps the name it was made with.
            boost::shared_ptr<NodeSourceAlias> node = found->second;
            _sourceAliases.erase(found);
            _sourceAliases[newAlias] = node;
            std::set<std::string>& names = _sourceAliasTargets[node->getSource()->getName()];
            names.erase(alias);
            names.insert(newAlias);
            return true;
        }
    }
    TES_LOG(kelvo::log::Error, failure.str());
    return false;
}

bool SourceRegistry::retargetSourceAlias(const std::string& alias, const std::string& source) {
    {
        boost::mutex::scoped_lock sources(_sourcesMutex);
        boost::mutex::scoped_lock aliases(_sourceAliasesMutex);
        auto found = _sourceAliases.find(alias);
        boost::shared_ptr<NodeSource> target = _findSource(source);
        if (found != _sourceAliases.end() && target) {
            _sourceAliasTargets[found->second->getSource()->getName()].erase(alias);
            // Processes on the alias read the new source from their next run on.
            found->second->setSource(target);
            _sourceAliasTargets[source].insert(alias);
            _sourceBoundCache.clear();
            return true;
        }
    }
    TES_LOG(kelvo::log::Error, "Can't retarget alias \"" << alias << "\" to  \"" << source
                                                         << "\": alias or target unknown");
    return false;
}

std::set<std::string> SourceRegistry::_namesOf(const std::string& source) const {
    std::set<std::string> names{source};
    auto aliases = _sourceAliasTargets.find(source);
    if (aliases != _sourceAliasTargets.end())
        names.insert(aliases->second.begin(), aliases->second.end());
    return names;
}

bool SourceRegistry::isSourceBound(const std::string& name) const {
    {
        boost::mutex::scoped_lock lock(_sourcesMutex);
        auto cached = _sourceBoundCache.find(name);
        if (cached != _sourceBoundCache.end()) return cached->second;
    }
    // A process reads the source if it holds its name or the name of one of its aliases.
    ProcessRegistry::Lock processes(_processes);
    boost::mutex::scoped_lock sources(_sourcesMutex);
    std::set<std::string> names;
    {
        boost::mutex::scoped_lock aliases(_sourceAliasesMutex);
        names = _namesOf(name);
    }
    bool bound = false;
    for (const auto& process : processes.getProcesses()) {
        if (!process.second->isLive()) continue;
        for (const std::string& read : names)
            bound = bound || process.second->getSources().count(read);
    }
    _sourceBoundCache[name] = bound;
    return bound;
}

float SourceRegistry::getSourceFrequency(const std::string& name) const {
    ProcessRegistry::Lock processes(_processes);
    std::set<std::string> names;
    {
        boost::mutex::scoped_lock aliases(_sourceAliasesMutex);
        names = _namesOf(name);
    }
    float frequency = 0.0f;
    for (const auto& process : processes.getProcesses()) {
        if (!process.second->isLive()) continue;
        for (const std::string& read : names)
            if (process.second->getSources().count(read) &&
                process.second->getFrequency() > frequency)
                frequency = process.second->getFrequency();
    }
    return frequency;
}

boost::shared_ptr<NodeSource> SourceRegistry::_findProcessSource(const std::string& source,
                                                                 bool forSet) const {
    const std::pair<std::string, std::string> names = splitString(":", source);
    // A process's sources are fixed before it is registered: they are read without a lock.
    boost::shared_ptr<Process> process = _processes.find(names.first);
    boost::shared_ptr<NodeSource> node;
    if (process) {
        auto found = process->getSources().find(names.second);
        if (found != process->getSources().end()) node = found->second;
    }
    if (forSet && !process)
        TES_THROW("Can't set data for source \"" << source << "\": process \"" << names.first
                                                 << "\" not found.");
    if (forSet && !node)
        TES_THROW("Can't set data for source \"" << source << "\": source \"" << names.second
                                                 << "\" not found.");
    if (!process)
        TES_THROW("Can't get data from source \"" << names.second << "\": process \"" << names.first
                                                  << "\" unknown.");
    if (!node)
        TES_THROW("Can't get data from source \"" << names.second << "\": process \"" << names.first
                                                  << "\" don't own this source.");
    return node;
}

void SourceRegistry::setData(const std::string& source, boost::shared_ptr<Data> data) {
    boost::shared_ptr<NodeSource> node;
    if (source.find(':') != std::string::npos) {
        node = _findProcessSource(source, true);
    } else {
        boost::mutex::scoped_lock lock(_sourcesMutex);
        node = _findSource(source);  // not an alias: data is set on the source itself
    }
    if (!node) TES_THROW("Can't set data for source \"" << source << "\": source unknown.");
    // Called without a registry lock: the source raises its events here, and a callback
    // may come back into the engine.
    node->setData(data);
}

boost::shared_ptr<Data> SourceRegistry::getSourceData(const std::string& source,
                                                      const Type::Duration& tolerance) const {
    return getSourceData(source, Type::Time::now(), tolerance);
}

boost::shared_ptr<Data> SourceRegistry::getSourceData(const std::string& source,
                                                      const Type::Time& time,
                                                      const Type::Duration& tolerance) const {
    boost::shared_ptr<NodeSource> node;
    if (source.find(':') != std::string::npos) {
        node = _findProcessSource(source, false);
    } else {
        boost::mutex::scoped_lock sources(_sourcesMutex);
        boost::mutex::scoped_lock aliases(_sourceAliasesMutex);
        node = _findSourceOrAlias(source);
    }
    if (!node) TES_THROW("Can't get data from source \"" << source << "\": source unknown.");
    return node->getData(time, tolerance);
}

bool SourceRegistry::deleteSource(const std::string& name) {
    {
        // Processes hold their nodes themselves: removing a name disturbs none of them, and
        // aliases of a deleted source go on reading it.
        boost::mutex::scoped_lock sources(_sourcesMutex);
        boost::mutex::scoped_lock aliases(_sourceAliasesMutex);
        if (_sources.erase(name)) {
            _sourceAliasTargets.erase(name);
            return true;
        }
        if (_sourceAliases.erase(name)) return true;
    }
    TES_LOG(kelvo::log::Error, "Can't delete source \"" << name << "\": source unknown.");
    return false;
}

}  // namespace Tessarity
