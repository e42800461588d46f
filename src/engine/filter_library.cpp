// The filter library: the catalogue, composition of filters into composites, user filters,
// and what the library tells about its entries.
#include "engine/filter_library.h"

#include <boost/make_shared.hpp>

#include <kelvo/path.h>
#include <tessarity/types/lambda.h>

#include "common/logging.h"
#include "filters/catalogue.h"
#include "filters/classification/knn_classification.h"
#include "graph/filter.h"
#include "graph/filter_adapter.h"
#include "graph/filter_composite.h"
#include "graph/memory_manager.h"
#include "graph/node_filter.h"
#include "graph/port.h"
#include "text/text_utils.h"

namespace Tessarity {

namespace {
const char* const kLogCategory = "tessarity.private";
const char* const kLogFile = "src/tessarity_p";
}  // namespace

FilterLibrary::FilterLibrary(MemoryManager& memoryManager) : _memoryManager(memoryManager) {}

void FilterLibrary::registerCatalogue() {
    boost::mutex::scoped_lock lock(_filtersMutex);
    for (const boost::shared_ptr<Filter>& filter : Filters::createCatalogue()) _register(filter);
}

void FilterLibrary::_register(const boost::shared_ptr<Filter>& filter) {
    _filters[filter->getName()] = filter;
    filter->bindMemoryManager(&_memoryManager);
}

boost::shared_ptr<Filter> FilterLibrary::find(const std::string& name) const {
    boost::mutex::scoped_lock lock(_filtersMutex);
    auto found = _filters.find(name);
    return found == _filters.end() ? boost::shared_ptr<Filter>() : found->second;
}

bool FilterLibrary::createFilter(const std::string& name, const Pairs& filters, const Links& links,
                                 const Exports& inputs, const Exports& outputs) {
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

bool FilterLibrary::_composeFilter(const std::string& name, const Pairs& filters,
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

bool FilterLibrary::createFilter(boost::shared_ptr<UserFilter> filter) {
    // Nodes already built on a replaced entry keep the old object.
    auto adapter = boost::make_shared<FilterAdapter>(filter);
    boost::mutex::scoped_lock lock(_filtersMutex);
    _register(adapter);
    return true;
}

bool FilterLibrary::createClassificationFilter(const std::string& name, ClassificationType type,
                                               const std::string& file) {
    std::ostringstream failure;
    failure << "createClassificationFilter(\"" << name << "\", type, \"" << file << "\"): ";
    // The file is looked for first, outside the lock, whatever the name.
    const std::string path = kelvo::path::findData("orvik/vision/tsp", file, false);
    if (path.empty()) {
        failure << "File not found.";
    } else {
        boost::mutex::scoped_lock lock(_filtersMutex);
        if (_filters.count(name)) {
            failure << "A filter with the name \"" << name << "\" already exists.";
        } else if (type != KNN) {
            failure << "Invalid classification type.";
        } else {
            // Registered under the name asked for; the filter itself is "KNNClassification".
            auto filter = boost::make_shared<Filters::KNNClassification>(path);
            filter->bindMemoryManager(&_memoryManager);
            _filters[name] = filter;
            return true;
        }
    }
    TES_LOG(kelvo::log::Error, failure.str());
    return false;
}

std::string FilterLibrary::dumpFilter(const std::string& name, int depth) const {
    boost::shared_ptr<Filter> filter = find(name);
    if (!filter) return std::string();
    long id = 0;
    return "digraph " + name + "{\nrankdir=LR;\n\n" + filter->dumpToDot(id, depth) + "}\n";
}

std::vector<std::string> FilterLibrary::getFilters() const {
    boost::mutex::scoped_lock lock(_filtersMutex);
    std::vector<std::string> names;
    for (const auto& filter : _filters) names.push_back(filter.first);
    return names;
}

bool FilterLibrary::isFilter(const std::string& name) const {
    boost::mutex::scoped_lock lock(_filtersMutex);
    return _filters.count(name) != 0;
}

std::string FilterLibrary::getFilterDescription(const std::string& name) const {
    boost::shared_ptr<Filter> filter = find(name);
    if (filter) return filter->getDescription();
    TES_LOG(kelvo::log::Error, "getFilterDescription(\"" << name << "\"): filter not found.");
    return std::string();
}

std::vector<std::string> FilterLibrary::_portLines(const std::string& name, bool inputs,
                                                   const char* operation) const {
    boost::shared_ptr<Filter> filter = find(name);
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

std::vector<std::string> FilterLibrary::getFilterInputs(const std::string& name) const {
    return _portLines(name, true, "getFilterInputs");
}

std::vector<std::string> FilterLibrary::getFilterOutputs(const std::string& name) const {
    return _portLines(name, false, "getFilterOutputs");
}

boost::shared_ptr<Type::Lambda> FilterLibrary::createLambda(const std::string& name) const {
    if (boost::shared_ptr<Filter> filter = find(name)) return Type::Lambda::createLambda(filter);
    TES_LOG(kelvo::log::Error,
            "createLambda(\"" << name << "\"): The filter \"" << name << "\" has not been found.");
    return boost::shared_ptr<Type::Lambda>();
}

bool FilterLibrary::deleteFilter(const std::string& name) {
    // Processes and composites that use the filter keep their object.
    boost::mutex::scoped_lock lock(_filtersMutex);
    return _filters.erase(name) != 0;
}

}  // namespace Tessarity
