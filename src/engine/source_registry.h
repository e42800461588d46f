#ifndef TESSARITY_ENGINE_SOURCE_REGISTRY_H
#define TESSARITY_ENGINE_SOURCE_REGISTRY_H

#include <map>
#include <set>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>
#include <boost/thread/mutex.hpp>

#include <tessarity/data.h>
#include <tessarity/duration.h>
#include <tessarity/time.h>

namespace Tessarity {

class NodeSource;
class NodeSourceAlias;
class ProcessRegistry;
class UserSource;

// The global sources and their aliases, by name; a name is unique across both. A name with
// ":" in setData and getSourceData is "process:source", a local source of a process.
//
// Its mutexes come after the process registry's, sources before aliases. A source is never
// called with one of them held where it may raise events: its pointer is copied under the
// lock and called after, so that an application callback may come back into the engine.
class SourceRegistry {
public:
    explicit SourceRegistry(ProcessRegistry& processes);

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

    // A global source or an alias of that name, or null.
    boost::shared_ptr<NodeSource> findSourceOrAlias(const std::string& name) const;
    // Forgets which sources are bound; called whenever the live processes may have changed.
    void clearBoundCache();

private:
    // Lookups; the caller holds the lock of the map searched.
    boost::shared_ptr<NodeSource> _findSource(const std::string& name) const;
    boost::shared_ptr<NodeSource> _findSourceOrAlias(const std::string& name) const;
    // A source's name and the names of its aliases; the caller holds _sourceAliasesMutex.
    std::set<std::string> _namesOf(const std::string& source) const;
    // The node of "process:source", or the error of setData (`forSet`) or getSourceData.
    boost::shared_ptr<NodeSource> _findProcessSource(const std::string& source, bool forSet) const;

    ProcessRegistry& _processes;
    std::map<std::string, boost::shared_ptr<NodeSource>> _sources;
    mutable std::map<std::string, bool> _sourceBoundCache;
    mutable boost::mutex _sourcesMutex;
    std::map<std::string, boost::shared_ptr<NodeSourceAlias>> _sourceAliases;
    std::map<std::string, std::set<std::string>> _sourceAliasTargets;
    mutable boost::mutex _sourceAliasesMutex;
};

}  // namespace Tessarity

#endif
