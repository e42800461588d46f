#include <tessarity/duration.h>

#include <climits>
#include <cmath>

#include <kelvo/os.h>

namespace Tessarity {
namespace Type {

namespace {

// Back from float to a count. Out of range or NaN (a division by zero) would be undefined
// behaviour for a plain cast, so those saturate, and NaN gives zero.
long long toCount(float value) {
    if (std::isnan(value)) return 0;
    if (value >= 0x1p63f) return LLONG_MAX;
    if (value < -0x1p63f) return LLONG_MIN;
    return static_cast<long long>(value);
}

}  // namespace

void Duration::sleep() const {
    // A negative duration would wrap to weeks once cut to 32 bits; it means "already due".
    long long milliseconds = getTotalMilliseconds();
    kelvo::os::msleep(milliseconds > 0 ? static_cast<unsigned int>(milliseconds) : 0u);
}

Duration Duration::operator*(float factor) const {
    return Duration(toCount(static_cast<float>(_microseconds) * factor));
}

Duration Duration::operator/(float divisor) const {
    return Duration(toCount(static_cast<float>(_microseconds) / divisor));
}

}  // namespace Type
}  // namespace Tessarity
