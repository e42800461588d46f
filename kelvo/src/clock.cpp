#include "kelvo/clock.h"

#include <chrono>

namespace kelvo {

long long Clock::now() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

}  // namespace kelvo
