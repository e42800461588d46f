#ifndef TESSARITY_TYPES_COLOR_H
#define TESSARITY_TYPES_COLOR_H

#include <tessarity/export.h>

namespace Tessarity {
namespace Type {

// A colour as three single-precision components, in the order red, green, blue.
class TESSARITY_EXPORT Color {
public:
    Color(float r, float g, float b) : _r(r), _g(g), _b(b) {}

    float& r() { return _r; }
    float& g() { return _g; }
    float& b() { return _b; }
    const float& r() const { return _r; }
    const float& g() const { return _g; }
    const float& b() const { return _b; }

private:
    float _r;
    float _g;
    float _b;
};

}  // namespace Type
}  // namespace Tessarity

#endif
