#ifndef TESSARITY_LANGUAGE_PROGRAM_LOADER_H
#define TESSARITY_LANGUAGE_PROGRAM_LOADER_H

#include <map>
#include <string>

#include <boost/thread/mutex.hpp>

namespace Tessarity {

class Parser;

// Reads program files (".tsp", ".txt") into the parser and runs the entry of plug-in modules
// (".so", ".dylib"). Each path is taken once in the life of an engine.
class ProgramLoader {
public:
    explicit ProgramLoader(Parser& parser);

    // `handle` is the application's Tessarity*: imports pass it on, and a module's entry
    // `tessarityInit` receives it.
    bool loadProgramFromFile(const std::string& path, void* handle);

private:
    Parser& _parser;
    std::map<std::string, bool> _loadedFiles;
    boost::mutex _loadedFilesMutex;  // alone: held only to test and record a path
};

}  // namespace Tessarity

#endif
