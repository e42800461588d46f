#include "filter_info.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "failure.h"

extern char** environ;

namespace TessarityRun {

namespace {

namespace fs = std::filesystem;

std::string lower(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

void requireFilter(const Tessarity::Tessarity& engine, const std::string& name,
                   const std::string& option) {
    if (engine.isFilter(name)) return;
    std::string message = option + " " + name + ": no filter '" + name + "'";
    for (const std::string& known : engine.getFilters())
        if (lower(known) == lower(name)) message += "; did you mean '" + known + "'?";
    throw Failure(message + " (--filters lists them)");
}

// Runs dot on `source` for one output format; false if it did not succeed.
bool render(const std::string& source, const std::string& format, const std::string& target) {
    const std::string type = "-T" + format;
    std::vector<std::string> words = {"dot", type, "-o", target, source};
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(&word[0]);
    argv.push_back(nullptr);
    pid_t child = 0;
    if (posix_spawnp(&child, "dot", nullptr, nullptr, argv.data(), environ) != 0) return false;
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// Writes NAME.dot and, with dot, NAME.png and NAME.svg; returns the files written.
std::vector<std::string> writeGraph(const std::string& graph, const std::string& name,
                                    const std::string& directory) {
    std::error_code error;
    fs::create_directories(directory, error);
    const fs::path stem = fs::path(directory) / name;
    const std::string dotFile = stem.string() + ".dot";
    std::ofstream file(dotFile);
    file << graph;
    file.close();
    if (!file) throw Failure("cannot write '" + dotFile + "'");
    std::vector<std::string> written = {dotFile};
    if (!haveDot()) return written;
    for (const char* format : {"png", "svg"}) {
        const std::string target = stem.string() + "." + format;
        if (!render(dotFile, format, target))
            throw Failure("dot could not draw '" + dotFile + "' as " + format);
        written.push_back(target);
    }
    return written;
}

void printPorts(const std::vector<std::string>& ports, const std::string& title,
                std::ostream& out) {
    out << "  " << title << "\n";
    if (ports.empty()) out << "    (none)\n";
    for (const std::string& port : ports) out << "    " << port << "\n";
}

std::string joined(const std::vector<std::string>& ports) {
    std::string text;
    for (const std::string& port : ports) text += (text.empty() ? "" : ", ") + port;
    return text;
}

}  // namespace

bool haveDot() {
    const char* path = std::getenv("PATH");
    std::istringstream directories(path ? path : "");
    std::string directory;
    while (std::getline(directories, directory, ':')) {
        const std::string candidate = (directory.empty() ? "." : directory) + "/dot";
        if (access(candidate.c_str(), X_OK) == 0 && !fs::is_directory(candidate)) return true;
    }
    return false;
}

void listFilters(const Tessarity::Tessarity& engine, std::ostream& out) {
    const std::vector<std::string> filters = engine.getFilters();
    for (const std::string& name : filters) {
        out << name << "  (" << joined(engine.getFilterInputs(name)) << ") -> ("
            << joined(engine.getFilterOutputs(name)) << ")\n";
        const std::string description = engine.getFilterDescription(name);
        if (!description.empty()) out << "    " << description << "\n";
    }
    out << filters.size() << " filters; --describe NAME shows one\n";
}

void describeFilter(const Tessarity::Tessarity& engine, const std::string& name,
                    const std::string& directory, std::ostream& out) {
    requireFilter(engine, name, "--describe");
    out << name << "\n";
    const std::string description = engine.getFilterDescription(name);
    out << "  " << (description.empty() ? "(no description)" : description) << "\n";
    printPorts(engine.getFilterInputs(name), "inputs", out);
    printPorts(engine.getFilterOutputs(name), "outputs", out);
    if (!haveDot()) {
        out << "  picture: install Graphviz ('dot') to draw one\n";
        return;
    }
    const std::vector<std::string> written = writeGraph(engine.dumpFilter(name, 1), name, directory);
    out << "  picture: " << written.back() << "\n";
}

void dumpFilter(const Tessarity::Tessarity& engine, const DumpRequest& request,
                const std::string& directory, std::ostream& out) {
    requireFilter(engine, request.filter, "--dump");
    const std::vector<std::string> written =
        writeGraph(engine.dumpFilter(request.filter, request.depth), request.filter, directory);
    out << "wrote";
    for (const std::string& file : written) out << " " << file;
    out << (haveDot() ? "\n" : " (install Graphviz's 'dot' for PNG and SVG)\n");
}

}  // namespace TessarityRun
