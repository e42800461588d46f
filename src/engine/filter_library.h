#ifndef TESSARITY_ENGINE_FILTER_LIBRARY_H
#define TESSARITY_ENGINE_FILTER_LIBRARY_H

#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>
#include <boost/thread/mutex.hpp>

#include <tessarity/tessarity.h>

#include "language/program_host.h"

namespace Tessarity {

class Filter;
class MemoryManager;
class UserFilter;
namespace Type {
class Lambda;
}

// The filters that processes and composites may instantiate, by name: the built-in catalogue,
// composites, classification filters, user filters. Its mutex is taken alone, or innermost.
class FilterLibrary {
public:
    typedef ProgramHost::Pairs Pairs;
    typedef ProgramHost::PortName PortName;
    typedef ProgramHost::Links Links;
    typedef ProgramHost::Exports Exports;

    // Every filter that joins the library is bound to `memoryManager`.
    explicit FilterLibrary(MemoryManager& memoryManager);

    // Registers the built-in filters, in the catalogue's order.
    void registerCatalogue();

    // A composite of library filters: (type, instance) nodes, links between their ports, and
    // the inner ports exported under outside names; an input may carry "port[default]".
    bool createFilter(const std::string& name, const Pairs& filters, const Links& links,
                      const Exports& inputs, const Exports& outputs);
    // A user filter of a name already in the library replaces the entry.
    bool createFilter(boost::shared_ptr<UserFilter> filter);
    // A classification filter of `type` over the data base `file`, found in the data paths
    // under "orvik/vision/tsp". The data base's own errors pass as the exceptions of its reader.
    bool createClassificationFilter(const std::string& name, ClassificationType type,
                                    const std::string& file);
    // Graphviz text of a filter of the library, expanded `depth` levels deep.
    std::string dumpFilter(const std::string& name, int depth) const;
    std::vector<std::string> getFilters() const;
    bool isFilter(const std::string& name) const;
    std::string getFilterDescription(const std::string& name) const;
    // One line per port: "optional [Integer, Float] size".
    std::vector<std::string> getFilterInputs(const std::string& name) const;
    std::vector<std::string> getFilterOutputs(const std::string& name) const;
    bool deleteFilter(const std::string& name);
    // A lambda of the filter of that name, or null, with a line in the log.
    boost::shared_ptr<Type::Lambda> createLambda(const std::string& name) const;

    // The filter of that name, or null.
    boost::shared_ptr<Filter> find(const std::string& name) const;

private:
    // The caller holds _filtersMutex.
    void _register(const boost::shared_ptr<Filter>& filter);
    // The steps of the composite createFilter, under _filtersMutex; a failure's text goes to
    // `failure`.
    bool _composeFilter(const std::string& name, const Pairs& filters, const Links& links,
                        const Exports& inputs, const Exports& outputs, std::ostringstream& failure);
    std::vector<std::string> _portLines(const std::string& name, bool inputs,
                                        const char* operation) const;

    MemoryManager& _memoryManager;
    std::map<std::string, boost::shared_ptr<Filter>> _filters;
    mutable boost::mutex _filtersMutex;
};

}  // namespace Tessarity

#endif
