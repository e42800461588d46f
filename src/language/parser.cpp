// The program language: statements cut into headers and bodies, bodies cut into lines, lines
// into the arguments of the engine's own operations. Every name is resolved behind those.
#include "language/parser.h"

#include <exception>
#include <iterator>
#include <stdexcept>
#include <vector>

#include <boost/filesystem.hpp>
#include <boost/make_shared.hpp>

#include "common/logging.h"
#include "language/program_host.h"
#include "runtime/process.h"
#include "text/text_utils.h"

namespace Tessarity {

namespace {
const char* const kLogCategory = "tessarity.parser";
const char* const kLogFile = "src/parser";

enum Statement {
    Header,
    FilterStatement,
    SourceStatement,
    ProcessStatement,
    EventStatement,
    ScriptStatement,
    DeleteStatement,
    ImportStatement
};

bool holds(const std::string& text, const char* mark) {
    return text.find(mark) != std::string::npos;
}

// The nodes of a chain "a -> b -> c", in order; `rest` is what follows the first "->".
std::list<std::string> chainElements(const std::string& left, std::string rest) {
    std::list<std::string> elements{left};
    while (holds(rest, "->")) {
        const std::pair<std::string, std::string> cut = splitString("->", rest);
        elements.push_back(cut.first);
        rest = cut.second;
    }
    elements.push_back(rest);
    return elements;
}

ProgramHost::Exports exports(const std::list<std::string>& lines, const char* mark) {
    ProgramHost::Exports result;
    for (const std::string& line : lines) {
        const std::pair<std::string, std::string> cut = splitString(mark, line);
        result.push_back(std::make_pair(splitString(":", cut.first), cut.second));
    }
    return result;
}

ProgramHost::Pairs pairs(const std::list<std::string>& lines, const char* mark) {
    ProgramHost::Pairs result;
    for (const std::string& line : lines) result.push_back(splitString(mark, line));
    return result;
}

}  // namespace

Parser::Parser(ProgramHost* host) : _host(host) {}

bool Parser::loadProgram(const std::string& program, void* handle, const std::string& directory) {
    const std::list<std::string> items = blockString('{', '}', removeComments('#', program));
    Statement state = Header;
    std::string name;
    for (const std::string& item : items) {
        if (state == Header) {
            const std::pair<std::string, std::string> cut = splitString(" ", item);
            const std::string& keyword = cut.first;
            if (keyword == "filter")
                state = FilterStatement;
            else if (keyword == "source")
                state = SourceStatement;
            else if (keyword == "process")
                state = ProcessStatement;
            else if (keyword == "event")
                state = EventStatement;
            else if (keyword == "script")
                state = ScriptStatement;
            else if (keyword == "delete")
                state = DeleteStatement;
            else if (keyword == "import" && cut.second == "file")
                state = ImportStatement;
            // Any other header is skipped without a word, and the state stays.
            if (state != Header && state != ImportStatement) name = cut.second;
            continue;
        }
        const Statement statement = state;
        state = Header;
        switch (statement) {
            case FilterStatement:
                if (!createFilter(name, item)) return false;
                break;
            case SourceStatement:
                if (!_createSource(name, item, program)) return false;
                break;
            case ProcessStatement:
                if (!createProcess(name, item)) return false;
                break;
            case EventStatement:
                if (!createEvent(name, item)) return false;
                break;
            case ScriptStatement:
                // No script filter can be created, so a script always ends the program.
                createFilterFromScript(name, item);
                return false;
            case DeleteStatement: {
                const std::string target = trimString(item);
                if (name == "filter") {
                    if (!_host->deleteFilter(target))
                        TES_LOG(kelvo::log::Warning, "Can't delete filter: " << target);
                } else if (name == "source") {
                    if (!_host->deleteSource(target))
                        TES_LOG(kelvo::log::Warning, "Can't delete source: " << target);
                } else if (name == "process") {
                    if (!_host->deleteProcess(target))
                        TES_LOG(kelvo::log::Warning, "Can't delete process: " << target);
                }
                break;
            }
            case ImportStatement: {
                std::string path = trimString(item);
                if (!directory.empty())
                    path = boost::filesystem::absolute(path, directory).string();
                // A missing or bad file does not stop the importing program.
                _host->loadProgramFromFile(path, handle);
                break;
            }
            case Header:
                break;
        }
    }
    return true;
}

bool Parser::_createSource(const std::string& name, const std::string& item,
                           const std::string& program) {
    const std::string body = trimString(item);
    if (!_host->createSource(name)) return false;
    if (body.empty()) return true;
    // "null" sets a null value, and a filter's name that filter as a value.
    boost::shared_ptr<Data> value = literalData(body);
    if (!value && body != "null" && _host->isFilter(body))
        if (boost::shared_ptr<Type::Lambda> lambda = _host->createLambda(body))
            value = boost::make_shared<Data>(lambda);
    if (!value && body != "null") {
        TES_LOG(kelvo::log::Error, "loadProgram(" << program << ", tessarityHandle): The source "
                                                  << name << " has an invalid body: " << item);
        return false;
    }
    try {
        _host->setData(name, value);
    } catch (const std::invalid_argument&) {
        // A name with ":" is read as "process:source" by setData; the engine logged it.
        return false;
    }
    return true;
}

bool Parser::createFilter(const std::string& name, const std::string& body) {
    std::list<std::string> filters, links, inputs, outputs;
    for (const std::string& line : listString(';', body)) {
        if (holds(line, "->"))
            links.push_back(line);
        else if (holds(line, "=>"))
            outputs.push_back(line);
        else if (holds(line, "<="))
            inputs.push_back(line);
        else
            filters.push_back(line);
    }
    return createFilter(name, filters, links, inputs, outputs);
}

bool Parser::createFilter(const std::string& name, const std::list<std::string>& filters,
                          const std::list<std::string>& links, const std::list<std::string>& inputs,
                          const std::list<std::string>& outputs) {
    ProgramHost::Pairs nodes = pairs(filters, " ");
    ProgramHost::Links connections;
    for (const std::string& line : links) {
        const std::pair<std::string, std::string> cut = splitString("->", line);
        if (!holds(cut.second, "->")) {
            connections.push_back(
                std::make_pair(splitString(":", cut.first), splitString(":", cut.second)));
            continue;
        }
        // A chain names nodes only: each link picks the single port of its two ends.
        if (holds(cut.first, ":") || holds(cut.second, ":")) {
            TES_LOG(kelvo::log::Error, "Chain filter can't contain a port.");
            return false;
        }
        const std::list<std::string> elements = chainElements(cut.first, cut.second);
        for (auto from = elements.begin(), to = std::next(from); to != elements.end(); ++from, ++to)
            connections.push_back(
                std::make_pair(ProgramHost::PortName(*from, ""), ProgramHost::PortName(*to, "")));
    }
    return _host->createFilter(name, nodes, connections, exports(inputs, "<="),
                               exports(outputs, "=>"));
}

bool Parser::createProcess(const std::string& header, const std::string& body) {
    std::list<std::string> inputs, outputs, triggers, sources;
    for (const std::string& line : listString(';', body)) {
        if (holds(line, "<="))
            inputs.push_back(line);
        else if (holds(line, "=>"))
            outputs.push_back(line);
        else if (holds(line, "~>"))
            triggers.push_back(line);
        else if (holds(line, "source ") || holds(line, "pulse "))
            sources.push_back(line);
        else
            TES_LOG(kelvo::log::Error, "createProcess(\""
                                           << header << ", body): invalid declaration \"" << line
                                           << "\"");
    }
    return createProcess(header, inputs, outputs, triggers, sources);
}

bool Parser::createProcess(const std::string& header, const std::list<std::string>& inputs,
                           const std::list<std::string>& outputs,
                           const std::list<std::string>& triggers,
                           const std::list<std::string>& sources) {
    const std::list<std::string> parts = blockString('(', ')', header);
    if (parts.size() != 2) {
        TES_LOG(kelvo::log::Error, "createProcess(\""
                                       << header
                                       << "\", inputs, outputs): Invalid process declaration");
        return false;
    }
    const std::string name = trimString(parts.front());
    const std::list<std::string> entries = listString(',', parts.back());
    if (entries.empty()) {
        TES_LOG(kelvo::log::Error, "createProcess(\"" << name
                                                      << "\", priority, frequency, tolerance): "
                                                         "expected at least a filter name.");
        return false;
    }
    const std::vector<std::string> entry(entries.begin(), entries.end());
    const std::string filter = trimString(entry[0]);
    unsigned int priority = Process::defaultPriority;
    float frequency = Process::defaultFrequency;
    Type::Duration tolerance = Process::defaultTolerance;
    const std::string prefix =
        "createProcess(\"" + header + "\", priority, frequency, tolerance): ";
    // Each setting is optional from the right; entries behind the tolerance are ignored.
    if (entry.size() > 1) {
        if (!isInteger(entry[1])) {
            TES_LOG(kelvo::log::Error,
                    prefix << "priority \"" << entry[1] << "\" is not a valid integer");
            return false;
        }
        priority = static_cast<unsigned int>(toInteger(entry[1]));
    }
    if (entry.size() > 2) {
        if (!isFloat(entry[2])) {
            TES_LOG(kelvo::log::Error,
                    prefix << "frequency \"" << entry[2] << "\" is not a valid float.");
            return false;
        }
        frequency = toFloat(entry[2]);
    }
    if (entry.size() > 3) {
        if (!isInteger(entry[3])) {
            TES_LOG(kelvo::log::Error,
                    prefix << "tolerance \"" << entry[3] << "\" is not a valid duration.");
            return false;
        }
        tolerance = Type::Duration(toInteger(entry[3]));
    }
    return _host->createProcess(name, filter, pairs(inputs, "<="), pairs(outputs, "=>"),
                                pairs(triggers, "~>"), pairs(sources, " "), priority, frequency,
                                tolerance);
}

bool Parser::createEvent(const std::string& origin, const std::string& body) {
    try {
        // The origin is tried as a sink first; that failure is logged, and a source is tried.
        if (!_host->createEvent(origin, body)) _host->createSourceEvent(origin, body);
    } catch (const std::exception& error) {
        TES_LOG(kelvo::log::Error, error.what());
        return false;
    }
    return true;
}

bool Parser::createFilterFromScript(const std::string& header, const std::string& body) {
    const std::string script = trimString(body);
    const std::list<std::string> parts = blockString('(', ')', header);
    if (parts.size() != 2) {
        TES_LOG(kelvo::log::Error,
                "createFilterFromScript(\"" << header << "\", body): Invalid filter declaration");
        return false;
    }
    const std::string name = trimString(parts.front());
    const std::list<std::string> entries = listString(',', parts.back());
    const std::string prefix = "createFilterFromScript(\"" + header + "\", inputs, outputs): ";
    auto entry = entries.begin();
    if (entry == entries.end()) {
        TES_LOG(kelvo::log::Error, prefix << "expected language name got nothing.");
        return false;
    }
    const std::string language = trimString(*entry);
    if (language != "lua") {
        TES_LOG(kelvo::log::Error, prefix << "the language " << language << " is not supported.");
        return false;
    }
    if (++entry == entries.end()) {
        TES_LOG(kelvo::log::Error, prefix << "expected inputs got nothing.");
        return false;
    }
    const std::list<std::string> inputs = listString(' ', *entry);
    if (++entry == entries.end()) {
        TES_LOG(kelvo::log::Error, prefix << "expected outputs got nothing.");
        return false;
    }
    const std::list<std::string> outputs = listString(' ', *entry);
    return createFilterFromScript(name, script, Lua, inputs, outputs);
}

bool Parser::createFilterFromScript(const std::string& name, const std::string&, Language,
                                    const std::list<std::string>&, const std::list<std::string>&) {
    // No script engine is built in: a script filter is checked, then refused.
    if (_host->isFilter(name))
        TES_LOG(kelvo::log::Error, "createFilterFromScript("
                                       << name << ", script, language): The filter " << name
                                       << " already exist.");
    else
        TES_LOG(kelvo::log::Error, "createFilterFromScript("
                                       << name
                                       << ", script, language): The language is not supported "
                                          "by tessarity.");
    return false;
}

}  // namespace Tessarity
