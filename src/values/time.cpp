#include <tessarity/time.h>

#include <kelvo/clock.h>

namespace Tessarity {
namespace Type {

Time Time::now() { return Time(kelvo::Clock::now() / 1000); }

}  // namespace Type
}  // namespace Tessarity
