// Program files and plug-in modules: the file system and the dynamic loader in front of the
// parser.
#include "language/program_loader.h"

#include <dlfcn.h>

#include <cstdio>

#include <boost/filesystem.hpp>

#include <kelvo/os.h>
#include <kelvo/unicode.h>

#include "common/logging.h"
#include "language/parser.h"

namespace Tessarity {

namespace {
const char* const kLogCategory = "tessarity.private";
const char* const kLogFile = "src/tessarity_p";
}  // namespace

ProgramLoader::ProgramLoader(Parser& parser) : _parser(parser) {}

bool ProgramLoader::loadProgramFromFile(const std::string& path, void* handle) {
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

}  // namespace Tessarity
