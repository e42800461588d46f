#include "options.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <limits>
#include <thread>

#include <boost/make_shared.hpp>

namespace TessarityRun {

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool allDigits(const std::string& text, std::size_t from = 0) {
    if (from >= text.size()) return false;
    for (std::size_t i = from; i < text.size(); ++i)
        if (!isDigit(text[i])) return false;
    return true;
}

// An optional minus, then digits: the language's whole number.
bool isWholeNumber(const std::string& text) {
    return allDigits(text, !text.empty() && text[0] == '-' ? 1 : 0);
}

// An optional minus, digits around one point, at least one digit: the language's decimal.
bool isDecimal(const std::string& text) {
    std::size_t i = !text.empty() && text[0] == '-' ? 1 : 0;
    bool digit = false, point = false;
    for (; i < text.size(); ++i) {
        if (isDigit(text[i])) {
            digit = true;
        } else if (text[i] == '.' && !point) {
            point = true;
        } else {
            return false;
        }
    }
    return digit && point;
}

std::string unquote(const std::string& text) {
    std::string result;
    for (std::size_t i = 1; i + 1 < text.size(); ++i) {
        char c = text[i];
        if (c == '\\') {
            if (i + 2 == text.size()) break;  // a backslash before the closing quote
            c = text[++i];
            if (c == 'n') c = '\n';
            else if (c == 'r') c = '\r';
            else if (c == 't') c = '\t';
            else if (c == '0') c = '\0';
        }
        result += c;
    }
    return result;
}

// "NAME=VALUE" of --set and --frames, both sides required.
std::pair<std::string, std::string> splitAssignment(const std::string& option,
                                                    const std::string& value,
                                                    const std::string& form) {
    const std::size_t at = value.find('=');
    if (at == std::string::npos || at == 0 || at + 1 == value.size())
        throw UsageError(option + " needs " + form + ", got '" + value + "'");
    return {value.substr(0, at), value.substr(at + 1)};
}

unsigned int wholeNumber(const std::string& option, const std::string& value,
                         unsigned int most) {
    if (!allDigits(value) || value.size() > 9 || std::stoul(value) > most)
        throw UsageError(option + " needs a whole number from 0 to " + std::to_string(most) +
                         ", got '" + value + "'");
    return static_cast<unsigned int>(std::stoul(value));
}

SourceSetting parseSetting(const std::string& value) {
    const auto parts = splitAssignment("--set", value, "SOURCE=VALUE or SOURCE=@FILE");
    SourceSetting setting{parts.first, parts.second, false};
    if (setting.value[0] == '@') {
        setting.value.erase(0, 1);
        setting.isFile = true;
        if (setting.value.empty())
            throw UsageError("--set " + value + ": a file name must follow the '@'");
    } else if (!parseLiteral(setting.value)) {
        if (isWholeNumber(setting.value))
            throw UsageError("--set " + value + ": " + setting.value + " does not fit an int");
        throw UsageError("--set " + value + ": '" + setting.value +
                         "' is no literal (true, 3, 2.5 or \"text\"); a text keeps its quotes "
                         "through the shell as in --set '" + setting.source + "=\"" +
                         setting.value + "\"'");
    }
    return setting;
}

SinkName parseSink(const std::string& value) {
    const std::size_t at = value.find(':');
    if (at == std::string::npos || at == 0 || at + 1 == value.size())
        throw UsageError("--get needs PROCESS:SINK, got '" + value + "'");
    return {value.substr(0, at), value.substr(at + 1)};
}

DumpRequest parseDump(const std::string& value) {
    const std::size_t at = value.rfind(':');
    if (at == std::string::npos) return {value, 1};
    const std::string depth = value.substr(at + 1);
    if (at == 0 || !allDigits(depth) || depth.size() > 3)
        throw UsageError("--dump needs FILTER or FILTER:DEPTH with a whole depth, got '" +
                         value + "'");
    return {value.substr(0, at), std::stoi(depth)};
}

}  // namespace

bool Options::runs() const {
    if (program.empty()) return false;
    return !settings.empty() || !frames.empty() || !sinks.empty() ||
           (!listFilters && describe.empty() && dumps.empty());
}

boost::shared_ptr<Tessarity::Data> parseLiteral(const std::string& text) {
    using Tessarity::Data;
    if (text == "true" || text == "false") return boost::make_shared<Data>(text == "true");
    if (isWholeNumber(text)) {
        errno = 0;
        const long long value = std::strtoll(text.c_str(), nullptr, 10);
        if (errno == ERANGE || value < INT_MIN || value > INT_MAX)
            return boost::shared_ptr<Data>();
        return boost::make_shared<Data>(static_cast<int>(value));
    }
    if (text == "infinity") return boost::make_shared<Data>(std::numeric_limits<float>::infinity());
    if (isDecimal(text)) return boost::make_shared<Data>(std::strtof(text.c_str(), nullptr));
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"')
        return boost::make_shared<Data>(unquote(text));
    return boost::shared_ptr<Data>();
}

Options parseOptions(const std::vector<std::string>& arguments) {
    Options options;
    options.threads = std::max(1u, std::thread::hardware_concurrency());
    // Asking for help is never refused, whatever stands beside it.
    for (const std::string& argument : arguments) {
        if (argument == "-h" || argument == "--help") {
            options.help = true;
            return options;
        }
    }
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "--filters") {
            options.listFilters = true;
            continue;
        }
        if (argument.size() < 2 || argument[0] != '-') {
            if (!options.program.empty())
                throw UsageError("one program at a time: '" + argument + "' follows '" +
                                 options.program + "'");
            options.program = argument;
            continue;
        }
        // The options with a value take it as the next argument or behind "=".
        std::string name = argument, value;
        const std::size_t equals = argument.find('=');
        const bool attached = equals != std::string::npos;
        if (attached) {
            name = argument.substr(0, equals);
            value = argument.substr(equals + 1);
        }
        static const char* const withValue[] = {"--set",   "--frames",   "--get",      "--out",
                                                "--dump",  "--describe", "--threads",  "--verbosity"};
        bool known = false;
        for (const char* option : withValue) known = known || name == option;
        if (!known) throw UsageError("unknown option '" + argument + "' (see --help)");
        if (!attached) {
            if (i + 1 == arguments.size()) throw UsageError(name + " needs a value (see --help)");
            value = arguments[++i];
        }
        if (name == "--set") {
            options.settings.push_back(parseSetting(value));
        } else if (name == "--frames") {
            const auto parts = splitAssignment(name, value, "SOURCE=DIR");
            options.frames.push_back({parts.first, parts.second});
        } else if (name == "--get") {
            options.sinks.push_back(parseSink(value));
        } else if (name == "--dump") {
            options.dumps.push_back(parseDump(value));
        } else if (name == "--describe") {
            if (value.empty()) throw UsageError("--describe needs a filter name");
            options.describe.push_back(value);
        } else if (name == "--out") {
            if (value.empty()) throw UsageError("--out needs a directory");
            options.outputDirectory = value;
        } else if (name == "--threads") {
            options.threads = wholeNumber(name, value, 256);
        } else {
            options.verbosity = static_cast<int>(wholeNumber(name, value, 6));
        }
    }
    for (std::size_t a = 0; a < options.frames.size(); ++a) {
        for (std::size_t b = 0; b < a; ++b)
            if (options.frames[a].source == options.frames[b].source)
                throw UsageError("--frames feeds '" + options.frames[a].source + "' twice");
        for (const SourceSetting& setting : options.settings)
            if (setting.source == options.frames[a].source)
                throw UsageError("'" + setting.source + "' is both set once (--set) and fed (--frames)");
    }
    const bool looksOnly = options.listFilters || !options.describe.empty() || !options.dumps.empty();
    const bool feeds = !options.settings.empty() || !options.frames.empty() || !options.sinks.empty();
    if (options.program.empty() && (feeds || !looksOnly))
        throw UsageError("no program given: tessarity-run PROGRAM.tsp [options] (see --help)");
    return options;
}

std::string helpText() {
    return "Usage: tessarity-run PROGRAM.tsp [options]\n"
           "       tessarity-run [PROGRAM.tsp] --filters | --describe NAME | --dump FILTER\n"
           "\n"
           "Loads a program of the Tessarity language, sets its sources, runs it and shows\n"
           "what its sinks give. Results go to stdout; progress, log and timing to stderr.\n"
           "\n"
           "Sources\n"
           "  --set SOURCE=VALUE     set a source before the first run to a literal: true,\n"
           "                         3, 2.5 or \"text\" (keep the quotes: 'name=\"a b\"')\n"
           "  --set SOURCE=@FILE     ... to an image file: PNG, JPEG, PGM or PPM; colour\n"
           "                         gives a ColorImage, grey a GrayscaleImage; alpha is dropped\n"
           "  --frames SOURCE=DIR    feed the image files of DIR in name order, one run per\n"
           "                         frame, stamped 1/30 s apart\n"
           "Results\n"
           "  --get PROCESS:SINK     read a sink after each run (repeatable; default: every\n"
           "                         sink of every process). Images are written as PNG files\n"
           "                         PROCESS-SINK-FRAME.png, other values printed, one line\n"
           "                         per frame and sink\n"
           "  --out DIR              where files go (default: tessarity-out)\n"
           "  --dump FILTER[:DEPTH]  write the Graphviz graph of a filter, DEPTH levels deep\n"
           "                         (default 1); also as PNG and SVG when 'dot' is installed\n"
           "Filters\n"
           "  --filters              list the filters, the library's and the program's\n"
           "  --describe NAME        show a filter: description, ports and picture\n"
           "Engine\n"
           "  --threads N            workers for what the program's events wake (default:\n"
           "                         the number of cores); with 0 the replay's pulls alone run\n"
           "                         the processes\n"
           "  --verbosity N          log lines shown: 0 none, 1 fatal, 2 errors, 3 warnings\n"
           "                         (default), 4 info, 5 verbose, 6 debug\n"
           "  -h, --help             this text\n"
           "\n"
           "Exit status: 0 done, 1 bad input or a failed run, 2 a malformed command line.\n"
           "Example: tessarity-run gate.tsp --set camera=7 --get Main:mask\n";
}

}  // namespace TessarityRun
