#ifndef TESSARITY_DURATION_H
#define TESSARITY_DURATION_H

#include <tessarity/export.h>

namespace Tessarity {
namespace Type {

// A signed count of microseconds. Kept to one integer so that it passes by value for free.
// Time arithmetic wraps on overflow, as the machine's 64-bit registers do, instead of
// leaving the result undefined: the period of a process of frequency 0 relies on it.
inline long long wrappingAdd(long long a, long long b) {
    return static_cast<long long>(static_cast<unsigned long long>(a) +
                                  static_cast<unsigned long long>(b));
}
inline long long wrappingSub(long long a, long long b) {
    return static_cast<long long>(static_cast<unsigned long long>(a) -
                                  static_cast<unsigned long long>(b));
}

class TESSARITY_EXPORT Duration {
public:
    static Duration Hours(long long hours) { return Duration(hours * 3600000000LL); }
    static Duration Minutes(long long minutes) { return Duration(minutes * 60000000LL); }
    static Duration Seconds(long long seconds) { return Duration(seconds * 1000000LL); }
    static Duration Milliseconds(long long milliseconds) { return Duration(milliseconds * 1000LL); }
    static Duration Microseconds(long long microseconds) { return Duration(microseconds); }

    Duration() : _microseconds(0) {}
    explicit Duration(long long microseconds) : _microseconds(microseconds) {}

    long long getTotalMicroseconds() const { return _microseconds; }
    long long getTotalMilliseconds() const { return _microseconds / 1000; }
    long long getTotalSeconds() const { return _microseconds / 1000000; }

    // Blocks the calling thread for the whole milliseconds of this duration.
    void sleep() const;

    Duration operator+(const Duration& other) const {
        return Duration(wrappingAdd(_microseconds, other._microseconds));
    }
    Duration operator-(const Duration& other) const {
        return Duration(wrappingSub(_microseconds, other._microseconds));
    }
    // Computed in single precision: about seven significant digits survive.
    Duration operator*(float factor) const;
    Duration operator/(float divisor) const;

    // These return the new value, not a reference: chaining does not write back.
    Duration operator+=(const Duration& other) { return *this = *this + other; }
    Duration operator-=(const Duration& other) { return *this = *this - other; }
    Duration operator*=(float factor) { return *this = *this * factor; }
    Duration operator/=(float divisor) { return *this = *this / divisor; }

    bool operator<(const Duration& other) const { return _microseconds < other._microseconds; }
    bool operator>(const Duration& other) const { return _microseconds > other._microseconds; }
    bool operator<=(const Duration& other) const { return _microseconds <= other._microseconds; }
    bool operator>=(const Duration& other) const { return _microseconds >= other._microseconds; }
    bool operator==(const Duration& other) const { return _microseconds == other._microseconds; }
    bool operator!=(const Duration& other) const { return _microseconds != other._microseconds; }

private:
    long long _microseconds;
};

}  // namespace Type
}  // namespace Tessarity

#endif
