#ifndef KELVO_PATH_H
#define KELVO_PATH_H

#include <kelvo/export.h>

#include <string>

namespace kelvo {
namespace path {

// Returns root/app/file for the first data root, in search order, where that is a regular
// file. An absolute `file` that exists is returned as it is. "" when nothing is found.
// Roots: those added with addDataPath, in order of adding, then <install prefix>/share,
// /usr/local/share, /usr/share and, unless excludeUser, $HOME/.local/share.
KELVO_EXPORT std::string findData(const std::string& app, const std::string& file, bool excludeUser);

KELVO_EXPORT void addDataPath(const std::string& root);

}  // namespace path
}  // namespace kelvo

#endif
