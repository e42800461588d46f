#include "kelvo/path.h"

#include <cstdlib>
#include <vector>

#include <boost/filesystem.hpp>
#include <boost/thread/mutex.hpp>

namespace kelvo {
namespace path {

namespace {

boost::mutex& rootsMutex() {
    static boost::mutex* m = new boost::mutex;
    return *m;
}

std::vector<std::string>& addedRoots() {
    static std::vector<std::string>* roots = new std::vector<std::string>;
    return *roots;
}

bool isRegularFile(const boost::filesystem::path& p) {
    boost::system::error_code error;
    return boost::filesystem::is_regular_file(p, error);
}

}  // namespace

void addDataPath(const std::string& root) {
    boost::mutex::scoped_lock lock(rootsMutex());
    addedRoots().push_back(root);
}

std::string findData(const std::string& app, const std::string& file, bool excludeUser) {
    boost::filesystem::path asGiven(file);
    if (asGiven.is_absolute()) {
        boost::system::error_code error;
        if (boost::filesystem::exists(asGiven, error)) return file;
    }

    std::vector<std::string> roots;
    {
        boost::mutex::scoped_lock lock(rootsMutex());
        roots = addedRoots();
    }
    roots.push_back(KELVO_INSTALL_DATADIR);
    roots.push_back("/usr/local/share");
    roots.push_back("/usr/share");
    if (!excludeUser) {
        const char* home = std::getenv("HOME");
        if (home && *home) roots.push_back(std::string(home) + "/.local/share");
    }

    for (const std::string& root : roots) {
        boost::filesystem::path candidate = boost::filesystem::path(root) / app / file;
        if (isRegularFile(candidate)) return candidate.string();
    }
    return std::string();
}

}  // namespace path
}  // namespace kelvo
