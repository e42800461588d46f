#ifndef KELVO_CLOCK_H
#define KELVO_CLOCK_H

#include <kelvo/export.h>

namespace kelvo {

struct KELVO_EXPORT Clock {
    // Nanoseconds since the Unix epoch, from the system clock, so that timestamps mean the
    // same thing to every application on the machine.
    static long long now();
};

}  // namespace kelvo

#endif
