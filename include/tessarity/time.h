#ifndef TESSARITY_TIME_H
#define TESSARITY_TIME_H

#include <tessarity/export.h>

#include <tessarity/duration.h>

namespace Tessarity {
namespace Type {

// A point in time as a signed count of microseconds since the Unix epoch. Zero means "not set".
class TESSARITY_EXPORT Time {
public:
    static Time now();

    Time() : _microseconds(0) {}
    explicit Time(long long microseconds) : _microseconds(microseconds) {}

    long long getTotalMicroseconds() const { return _microseconds; }
    long long getTotalMilliseconds() const { return _microseconds / 1000; }
    long long getTotalSeconds() const { return _microseconds / 1000000; }

    Duration operator-(const Time& other) const {
        return Duration(wrappingSub(_microseconds, other._microseconds));
    }
    Time operator+(const Duration& shift) const {
        return Time(wrappingAdd(_microseconds, shift.getTotalMicroseconds()));
    }
    Time operator-(const Duration& shift) const {
        return Time(wrappingSub(_microseconds, shift.getTotalMicroseconds()));
    }
    // These return the new value, not a reference: chaining does not write back.
    Time operator+=(const Duration& shift) { return *this = *this + shift; }
    Time operator-=(const Duration& shift) { return *this = *this - shift; }

    bool operator<(const Time& other) const { return _microseconds < other._microseconds; }
    bool operator>(const Time& other) const { return _microseconds > other._microseconds; }
    bool operator<=(const Time& other) const { return _microseconds <= other._microseconds; }
    bool operator>=(const Time& other) const { return _microseconds >= other._microseconds; }
    bool operator==(const Time& other) const { return _microseconds == other._microseconds; }
    bool operator!=(const Time& other) const { return _microseconds != other._microseconds; }

private:
    long long _microseconds;
};

}  // namespace Type
}  // namespace Tessarity

#endif
