#include <cstddef>
#include <cstdint>
#include <string>

#include <kelvo/log.h>
#include <tessarity/tessarity.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // Bad programs log a lot; the lines themselves are not under test here.
    static const bool quiet =
        (kelvo::log::setHandler([](int, const std::string&, const std::string&) {}), true);
    (void)quiet;
    Tessarity::Tessarity engine(0);
    engine.loadProgram(std::string(reinterpret_cast<const char*>(data), size));
    return 0;
}
