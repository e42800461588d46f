#ifndef KELVO_OS_H
#define KELVO_OS_H

#include <cstdio>
#include <string>

namespace kelvo {
namespace os {

void msleep(unsigned int ms);

// fopen on a UTF-8 path.
std::FILE* fopen(const std::string& path, const std::string& mode);

// Linux keeps 15 bytes of a thread's name: longer names are cut, never refused.
void setCurrentThreadName(const std::string& name);
std::string getCurrentThreadName();

}  // namespace os
}  // namespace kelvo

#endif
