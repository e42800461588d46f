#include "kelvo/os.h"

#include <pthread.h>

#include <chrono>
#include <thread>

namespace kelvo {
namespace os {

void msleep(unsigned int ms) { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); }

std::FILE* fopen(const std::string& path, const std::string& mode) {
    // Paths are UTF-8 bytes on this platform, so no conversion is needed.
    return std::fopen(path.c_str(), mode.c_str());
}

void setCurrentThreadName(const std::string& name) {
    const std::size_t limit = 15;  // the kernel keeps 16 bytes with the terminating zero
    std::size_t size = name.size() < limit ? name.size() : limit;
    // Do not cut a UTF-8 sequence in two: step back over continuation bytes.
    if (size < name.size())
        while (size > 0 && (static_cast<unsigned char>(name[size]) & 0xC0) == 0x80) --size;
    pthread_setname_np(pthread_self(), name.substr(0, size).c_str());
}

std::string getCurrentThreadName() {
    char buffer[16] = {0};
    if (pthread_getname_np(pthread_self(), buffer, sizeof(buffer)) != 0) return std::string();
    return buffer;
}

}  // namespace os
}  // namespace kelvo
