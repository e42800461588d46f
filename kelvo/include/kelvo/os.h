#ifndef KELVO_OS_H
#define KELVO_OS_H

#include <kelvo/export.h>

#include <cstdio>
#include <string>

namespace kelvo {
namespace os {

KELVO_EXPORT void msleep(unsigned int ms);

// fopen on a UTF-8 path.
KELVO_EXPORT std::FILE* fopen(const std::string& path, const std::string& mode);

// Linux keeps 15 bytes of a thread's name: longer names are cut, never refused.
KELVO_EXPORT void setCurrentThreadName(const std::string& name);
KELVO_EXPORT std::string getCurrentThreadName();

}  // namespace os
}  // namespace kelvo

#endif
