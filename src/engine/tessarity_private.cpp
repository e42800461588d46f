// The engine's construction, its filter library, its sources and aliases, and the events
// that the application attaches to sinks and sources. Processes are in tessarity_p_process.cpp.
#include "engine/tessarity_private.h"

#include <dlfcn.h>

#include <cstdio>
#include <stdexcept>

#include <boost/filesystem.hpp>

#include <boost/make_shared.hpp>

#include <tessarity/userfilter.h>
#include <tessarity/usersource.h>

#include <kelvo/os.h>
#include <kelvo/unicode.h>

#include "graph/aggregated_sink.h"
#include "graph/event.h"
#include "graph/filter.h"
#include "graph/filter_adapter.h"
#include "graph/filter_composite.h"
#include "filters/flow/dispatch.h"
#include "filters/flow/duplicate.h"
#include "filters/flow/head.h"
#include "filters/flow/identity.h"
#include "filters/flow/if_changed.h"
#include "filters/flow/mandatory.h"
#include "filters/flow/multiplex.h"
#include "filters/flow/print.h"
#include "common/logging.h"
#include "graph/node_filter.h"
#include "runtime/node_process_source.h"
#include "graph/node_sink.h"
#include "graph/node_source.h"
#include "graph/node_source_alias.h"
#include "graph/port.h"
#include "runtime/process.h"
#include "runtime/scheduler.h"
#include "graph/source_adapter.h"
#include "language/text_utils.h"

namespace Tessarity {

namespace {
const char* const kLogCategory = "tessarity.private";
const char* const kLogFile = "src/tessarity_p";
}  // namespace

TessarityPrivate::TessarityPrivate(unsigned int threadCount) : _parser(this) {
    _scheduler = boost::make_shared<Scheduler>(this, threadCount);
    _scheduler->start();

    // The catalogue, in its order of registration; the workers already run and find nothing.
    boost::mutex::scoped_lock lock(_filtersMutex);
    _registerFilter(boost::make_shared<Filters::Dispatch>());
    _registerFilter(boost::make_shared<Filters::Duplicate>());
    _registerFilter(boost::make_shared<Filters::Head>());
    _registerFilter(boost::make_shared<Filters::Identity>());
    _registerFilter(boost::make_shared<Filters::IfChanged>());
    _registerFilter(boost::make_shared<Filters::Multiplex>());
    _registerFilter(boost::make_shared<Filters::Print>());
    for (int i = 1; i <= 8; ++i)
        _registerFilter(boost::make_shared<Filters::Mandatory>("Mandatory" + std::to_string(i), i));
}

TessarityPrivate::~TessarityPrivate() {
    // No worker may touch a registry that is being destroyed.
    _scheduler->stop();
}

void TessarityPrivate::_registerFilter(const boost::shared_ptr<Filter>& filter) {
    _filters[filter->getName()] = filter;
    filter->bindMemoryManager(&_memoryManager);
}

// Programs.

bool TessarityPrivate::loadProgram(const std::string& program, void* handle,
                                   const std::string& directory) {
    return _parser.loadProgram(program, handle, directory);
}

bool TessarityPrivate::loadProgramFromFile(const std::string& path, void* handle) {
    try {
        const boost::filesystem::path file(path, kelvo::unicodeFacet());
        boost::system::error_code error;
        const boost::filesystem::file_status status = boost::filesystem::status(file, error);
        // The path's own output operator quotes it, inside the quotes of the line.
        if (error || !boost::filesystem::exists(status)) {
            TES_LOG(kelvo::log::Error,
                    "loadProgramFromFile(\"" << file << "\"): \"" << file << "\" not found.");
            return false;
        }
        if (boost::filesystem::is_directory(status)) {
            TES_LOG(kelvo::log::Error,
                    "loadProgramFromFile(\"" << file << "\"): \"" << file << "\" is a directory.");
            return false;
        }
        if (!boost::filesystem::is_regular_file(status)) {
            TES_LOG(kelvo::log::Error, "loadProgramFromFile(\"" << file << "\"): \"" << file
                                                                << "\" is not a regular file.");
            return false;
        }
        const std::string extension = file.extension().string();
        const bool program = extension == ".tsp" || extension == ".TSP" || extension == ".txt" ||
                             extension == ".TXT";
        const bool module = extension == ".so" || extension == ".dylib";
        {
            // Each path is taken once, before it is opened: a program that imports itself
            // ends there.
            boost::mutex::scoped_lock lock(_loadedFilesMutex);
            if (_loadedFiles.count(path)) return true;
            if (program || module) _loadedFiles[path] = true;
        }
        if (program) {
            std::FILE* stream = kelvo::os::fopen(path, "r");
            if (!stream) {
                TES_LOG(kelvo::log::Error,
                        "loadProgramFromFile(\"" << file << "\"): \"unable to open " << file);
                return false;
            }
            std::string text;
            char block[512];
            while (std::fgets(block, sizeof(block), stream)) text += block;
            std::fclose(stream);
            return _parser.loadProgram(text, handle, file.parent_path().string());
        }
        if (module) {
            void* library = dlopen(path.c_str(), RTLD_LAZY);
            if (!library) {
                TES_LOG(kelvo::log::Error, "loadProgramFromFile(\""
                                               << file
                                               << "\"): error when performing dynamic loading.");
                return false;
            }
            typedef void (*Entry)(void*);
            Entry entry = reinterpret_cast<Entry>(dlsym(library, "tessarityInit"));
            if (entry)
                entry(handle);
            else
                TES_LOG(kelvo::log::Error, "loadProgramFromFile(\"" << file
                                                                    << "\"): tessarityInit(void* "
                                                                       "Tessarity) not found in \""
                                                                    << file << "\".");
            // A module that registered filters keeps its code loaded itself.
            dlclose(library);
            return false;
        }
        TES_LOG(kelvo::log::Error, "loadProgramFromFile(\"" << file << "\"): invalid file format.");
        return false;
    } catch (const boost::filesystem::filesystem_error&) {
        TES_LOG(kelvo::log::Error,
                "loadProgramFromFile(\"" << path << "\"): impossible to perform loading.");
        return false;
    }
}

// Filters.

bool TessarityPrivate::createFilter(const std::string& name, const Pairs& filters,
                                    const Links& links, const Exports& inputs,
                                    const Exports& outputs) {
    std::ostringstream failure;
    failure << "createFilter(\"" << name << "\", filters, links): ";
    {
        // Under the library's lock from first to last, so the nodes are built against a
        // stable library; the composite is not in it while it is built, so it can't hold
        // itself.
        boost::mutex::scoped_lock lock(_filtersMutex);
        if (_composeFilter(name, filters, links, inputs, outputs, failure)) return true;
    }
    TES_LOG(kelvo::log::Error, failure.str());
    return false;
}

bool TessarityPrivate::_composeFilter(const std::string& name, const Pairs& filters,
                                      const Links& links, const Exports& inputs,
                                      const Exports& outputs, std::ostringstream& failure) {
    if (_filters.count(name)) {
        failure << "A filter with the name \"" << name << "\" already exists.";
        return false;
    }
    auto composite = boost::make_shared<FilterComposite>(name);
    for (const auto& filter : filters) {
        auto type = _filters.find(filter.first);
        if (type == _filters.end()) {
            failure << "The filter \"" << filter.second << "\" is declared as \"" << filter.first
                    << "\" but \"" << filter.first << "\" has never been declared.";
            return false;
        }
        composite->addNode(boost::make_shared<NodeFilter>(filter.second, type->second));
    }
    for (const auto& link : links) {
        const PortName& from = link.first;
        const PortName& to = link.second;
        boost::shared_ptr<NodeFilter> fromNode = composite->getNode(from.first);
        if (!fromNode) {
            failure << "The filter \"" << from.first << "\" is not declared.";
            return false;
        }
        boost::shared_ptr<NodeFilter> toNode = composite->getNode(to.first);
        if (!toNode) {
            failure << "The filter \"" << to.first << "\" is not declared.";
            return false;
        }
        boost::shared_ptr<Port> output = fromNode->getOutput(from.second);
        if (!output) {
            failure << "The port \"" << from.second << "\" is not declared in \"" << from.first
                    << "\".";
            return false;
        }
        boost::shared_ptr<Port> input = toNode->getInput(to.second);
        if (!input) {
            failure << "The port \"" << to.second << "\" is not declared in \"" << to.first << "\"";
            return false;
        }
        if (!input->isCompatible(output)) {
            failure << "The port \"" << to.first << ":" << to.second
                    << "\" has no common type with \"" << from.first << ":" << from.second << "\".";
            return false;
        }
        input->attach(output);
    }
    for (const auto& input : inputs) {
        const std::string& instance = input.first.first;
        const std::string& port = input.first.second;
        if (port.find('[') == std::string::npos) {
            if (!composite->exportInput(instance, port, input.second)) {
                failure << "Invalid exported input: \"" << instance << ":" << port
                        << "<=" << input.second << "\".";
                return false;
            }
            continue;
        }
        // "port[default]": the default goes on the inner node's port.
        const std::list<std::string> items = blockString('[', ']', port);
        if (items.size() != 2) {
            failure << "Invalid default value declaration \"" << instance << ":" << port << "\".";
            return false;
        }
        if (!composite->exportInput(instance, items.front(), input.second)) {
            failure << "Invalid exported input: \"" << instance << ":" << port
                    << "<=" << input.second << "\".";
            return false;
        }
        boost::shared_ptr<NodeFilter> node = composite->getNode(instance);
        boost::shared_ptr<Port> inner =
            node ? node->getInput(items.front()) : boost::shared_ptr<Port>();
        if (!inner) {
            failure << "Tessarity internal corruption !";
            return false;
        }
        boost::shared_ptr<Data> value = literalData(items.back());
        if (!value) {
            failure << "Invalid default value: \"" << items.back() << "\".";
            return false;
        }
        inner->setDefaultData(value);
    }
    for (const auto& output : outputs)
        if (!composite->exportOutput(output.first.first, output.first.second, output.second)) {
            failure << "Invalid exported output: \"" << output.first.first << ":"
                    << output.first.first << "=>" << output.second << "\".";
            return false;
        }
    // Not bound to the memory: the filters of its nodes are, already.
    _filters[name] = composite;
    return true;
}

bool TessarityPrivate::createFilter(boost::shared_ptr<UserFilter> filter) {
    // A user filter of a name already in the library replaces the entry; nodes already built
    // keep the old object.
    auto adapter = boost::make_shared<FilterAdapter>(filter);
    boost::mutex::scoped_lock lock(_filtersMutex);
    _registerFilter(adapter);
    return true;
}

std::string TessarityPrivate::dumpFilter(const std::string& name, int depth) const {
    boost::shared_ptr<Filter> filter;
    {
        boost::mutex::scoped_lock lock(_filtersMutex);
        auto found = _filters.find(name);
        if (found == _filters.end()) return std::string();
        filter = found->second;
    }
    long id = 0;
    return "digraph " + name + "{\nrankdir=LR;\n\n" + filter->dumpToDot(id, depth) + "}\n";
}

std::vector<std::string> TessarityPrivate::getFilters() const {
    boost::mutex::scoped_lock lock(_filtersMutex);
    std::vector<std::string> names;
    for (const auto& filter : _filters) names.push_back(filter.first);
    return names;
}

bool TessarityPrivate::isFilter(const std::string& name) const {
    boost::mutex::scoped_lock lock(_filtersMutex);
    return _filters.count(name) != 0;
}

std::string TessarityPrivate::getFilterDescription(const std::string& name) const {
    boost::shared_ptr<Filter> filter;
    {
        boost::mutex::scoped_lock lock(_filtersMutex);
        auto found = _filters.find(name);
        if (found != _filters.end()) filter = found->second;
    }
    if (filter) return filter->getDescription();
    TES_LOG(kelvo::log::Error, "getFilterDescription(\"" << name << "\"): filter not found.");
    return std::string();
}

std::vector<std::string> TessarityPrivate::_portLines(const std::string& name, bool inputs,
                                                      const char* operation) const {
    boost::shared_ptr<Filter> filter;
    {
        boost::mutex::scoped_lock lock(_filtersMutex);
        auto found = _filters.find(name);
        if (found != _filters.end()) filter = found->second;
    }
    std::vector<std::string> lines;
    if (!filter) {
        TES_LOG(kelvo::log::Error, operation << "(\"" << name << "\"): filter not found.");
        return lines;
    }
    // "optional [Integer, Float] size"
    for (const boost::shared_ptr<Port>& port :
         inputs ? filter->getInputs() : filter->getOutputs()) {
        std::string line = port->isOptional() ? "optional " : "";
        const std::vector<DataType>& types = port->getTypes();
        for (std::size_t i = 0; i < types.size(); ++i)
            line += (i ? ", " : "[") + Data::getTypeName(types[i]);
        if (!types.empty()) line += "] ";
        lines.push_back(line + port->getName());
    }
    return lines;
}

std::vector<std::string> TessarityPrivate::getFilterInputs(const std::string& name) const {
    return _portLines(name, true, "getFilterInputs");
}

std::vector<std::string> TessarityPrivate::getFilterOutputs(const std::string& name) const {
    return _portLines(name, false, "getFilterOutputs");
}

bool TessarityPrivate::deleteFilter(const std::string& name) {
    // Processes and composites that use the filter keep their object.
    boost::mutex::scoped_lock lock(_filtersMutex);
    return _filters.erase(name) != 0;
}

// Sources.

boost::shared_ptr<NodeSource> TessarityPrivate::_findSource(const std::string& name) const {
    auto source = _sources.find(name);
    return source == _sources.end() ? boost::shared_ptr<NodeSource>() : source->second;
}

boost::shared_ptr<NodeSource> TessarityPrivate::_findSourceOrAlias(const std::string& name) const {
    if (boost::shared_ptr<NodeSource> source = _findSource(name)) return source;
    auto alias = _sourceAliases.find(name);
    return alias == _sourceAliases.end() ? boost::shared_ptr<NodeSource>() : alias->second;
}

boost::shared_ptr<Process> TessarityPrivate::_findProcess(const std::string& name) const {
    auto process = _processes.find(name);
    return process == _processes.end() ? boost::shared_ptr<Process>() : process->second;
}

void TessarityPrivate::_clearSourceBoundCache() {
    boost::mutex::scoped_lock lock(_sourcesMutex);
    _sourceBoundCache.clear();
}

std::vector<std::string> TessarityPrivate::getSources() const {
    boost::mutex::scoped_lock lock(_sourcesMutex);
    std::vector<std::string> names;
    for (const auto& source : _sources) names.push_back(source.first);
    return names;
}

bool TessarityPrivate::createSource(const std::string& name) {
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

bool TessarityPrivate::createSource(boost::shared_ptr<UserSource> source) {
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

bool TessarityPrivate::createSourceFromProcessSink(const std::string& name,
                                                   const std::string& sink) {
    std::ostringstream failure;
    {
        boost::mutex::scoped_lock processes(_processesMutex);
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
        } else if (!(process = _findProcess(names.first))) {
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

bool TessarityPrivate::createSourceAlias(const std::string& alias, const std::string& source) {
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

bool TessarityPrivate::renameSourceAlias(const std::string& alias, const std::string& newAlias) {
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

bool TessarityPrivate::retargetSourceAlias(const std::string& alias, const std::string& source) {
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

std::set<std::string> TessarityPrivate::_namesOf(const std::string& source) const {
    std::set<std::string> names{source};
    auto aliases = _sourceAliasTargets.find(source);
    if (aliases != _sourceAliasTargets.end())
        names.insert(aliases->second.begin(), aliases->second.end());
    return names;
}

bool TessarityPrivate::isSourceBound(const std::string& name) const {
    {
        boost::mutex::scoped_lock lock(_sourcesMutex);
        auto cached = _sourceBoundCache.find(name);
        if (cached != _sourceBoundCache.end()) return cached->second;
    }
    // A process reads the source if it holds its name or the name of one of its aliases.
    boost::mutex::scoped_lock processes(_processesMutex);
    boost::mutex::scoped_lock sources(_sourcesMutex);
    std::set<std::string> names;
    {
        boost::mutex::scoped_lock aliases(_sourceAliasesMutex);
        names = _namesOf(name);
    }
    bool bound = false;
    for (const auto& process : _processes) {
        if (!process.second->isLive()) continue;
        for (const std::string& read : names)
            bound = bound || process.second->getSources().count(read);
    }
    _sourceBoundCache[name] = bound;
    return bound;
}

float TessarityPrivate::getSourceFrequency(const std::string& name) const {
    boost::mutex::scoped_lock processes(_processesMutex);
    std::set<std::string> names;
    {
        boost::mutex::scoped_lock aliases(_sourceAliasesMutex);
        names = _namesOf(name);
    }
    float frequency = 0.0f;
    for (const auto& process : _processes) {
        if (!process.second->isLive()) continue;
        for (const std::string& read : names)
            if (process.second->getSources().count(read) &&
                process.second->getFrequency() > frequency)
                frequency = process.second->getFrequency();
    }
    return frequency;
}

boost::shared_ptr<NodeSource> TessarityPrivate::_findProcessSource(const std::string& source,
                                                                   bool forSet) const {
    const std::pair<std::string, std::string> names = splitString(":", source);
    boost::shared_ptr<Process> process;
    boost::shared_ptr<NodeSource> node;
    {
        boost::mutex::scoped_lock lock(_processesMutex);
        process = _findProcess(names.first);
        if (process) {
            auto found = process->getSources().find(names.second);
            if (found != process->getSources().end()) node = found->second;
        }
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

void TessarityPrivate::setData(const std::string& source, boost::shared_ptr<Data> data) {
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

boost::shared_ptr<Data> TessarityPrivate::getSourceData(const std::string& source,
                                                        const Type::Duration& tolerance) const {
    return getSourceData(source, Type::Time::now(), tolerance);
}

boost::shared_ptr<Data> TessarityPrivate::getSourceData(const std::string& source,
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

bool TessarityPrivate::deleteSource(const std::string& name) {
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

// Events.

bool TessarityPrivate::_addSinkEvent(const std::string& sink,
                                     const boost::shared_ptr<Event>& event) {
    const std::pair<std::string, std::string> names = splitString(":", sink);
    std::ostringstream failure;
    {
        boost::mutex::scoped_lock lock(_processesMutex);
        boost::shared_ptr<Process> owner = _findProcess(names.first);
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

bool TessarityPrivate::_isSinkName(const std::string& sink) {
    if (sink.find(':') != std::string::npos) return true;
    TES_LOG(kelvo::log::Error, "createEvent(\"" << sink << "\", callback): invalid sink format "
                                                << "expected \"process:sink\".");
    return false;
}

bool TessarityPrivate::createEvent(const std::string& sink, Callback callback) {
    if (!_isSinkName(sink)) return false;
    return _addSinkEvent(sink, boost::make_shared<Event>(callback));
}

bool TessarityPrivate::createEvent(const std::string& sink, const std::string& process) {
    if (!_isSinkName(sink)) return false;
    boost::shared_ptr<Process> target;
    {
        boost::mutex::scoped_lock lock(_processesMutex);
        target = _findProcess(process);
    }
    if (!target) {
        TES_LOG(kelvo::log::Error,
                "createEvent(" << sink << ", " << process << "): unknown target process.");
        return false;
    }
    return _addSinkEvent(sink, boost::make_shared<Event>(target, _scheduler));
}

bool TessarityPrivate::_addSourceEvent(const std::string& source,
                                       const boost::shared_ptr<Event>& event, bool forCallback) {
    const char* const verb = forCallback ? "Can't retrieve source \"" : "Can't access source \"";
    boost::shared_ptr<NodeSource> node;
    if (source.find(':') != std::string::npos) {
        const std::pair<std::string, std::string> names = splitString(":", source);
        boost::shared_ptr<Process> owner;
        {
            boost::mutex::scoped_lock lock(_processesMutex);
            owner = _findProcess(names.first);
            if (owner && owner->getSources().count(names.second))
                node = owner->getSources().at(names.second);
        }
        if (!owner)
            TES_THROW(verb << names.second << "\": process \"" << names.first << "\" unknown.");
        if (!node)
            TES_THROW(verb << names.second << "\": process \"" << names.first
                           << "\" don't own this source.");
    } else {
        {
            boost::mutex::scoped_lock sources(_sourcesMutex);
            boost::mutex::scoped_lock aliases(_sourceAliasesMutex);
            node = _findSourceOrAlias(source);
        }
        if (!node && forCallback)
            TES_THROW("Can't retrieve source \"" << source << "\": source unknown.");
        if (!node) TES_THROW("Can't get data from source \"" << source << "\": source unknown.");
    }
    node->addEvent(event);
    return true;
}

bool TessarityPrivate::createSourceEvent(const std::string& source, Callback callback) {
    return _addSourceEvent(source, boost::make_shared<Event>(callback), true);
}

bool TessarityPrivate::createSourceEvent(const std::string& source, const std::string& process) {
    boost::shared_ptr<Process> target;
    {
        boost::mutex::scoped_lock lock(_processesMutex);
        target = _findProcess(process);
    }
    if (!target) TES_THROW("Can't get process \"" << process << "\": process unknown.");
    return _addSourceEvent(source, boost::make_shared<Event>(target, _scheduler), false);
}

void TessarityPrivate::startScheduler() { _scheduler->start(); }

void TessarityPrivate::stopScheduler() { _scheduler->stop(); }

}  // namespace Tessarity
