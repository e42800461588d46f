#ifndef TESSARITY_TYPES_VECTOR_H
#define TESSARITY_TYPES_VECTOR_H

#include <tessarity/export.h>

namespace Tessarity {
namespace Type {

// What the vectors share. Every operation works component by component, first to last; `*`
// and `/` are per component too, with no check for zero. The components are a bare float
// array, so a vector of N components is exactly N floats.
template <typename V, int N>
class TESSARITY_EXPORT VectorComponents {
public:
    float dot(const V& other) const {
        float sum = _c[0] * other._c[0];
        for (int i = 1; i < N; ++i) sum += _c[i] * other._c[i];
        return sum;
    }
    // Exact: no tolerance, and a NaN component makes a vector unequal even to itself.
    bool operator==(const V& other) const {
        for (int i = 0; i < N; ++i)
            if (!(_c[i] == other._c[i])) return false;
        return true;
    }

    V operator+(const V& other) const { return V(_self()) += other; }
    V operator-(const V& other) const { return V(_self()) -= other; }
    V operator*(const V& other) const { return V(_self()) *= other; }
    V operator/(const V& other) const { return V(_self()) /= other; }

    // These return the new value, not a reference, as the time values do.
    V operator+=(const V& other) {
        for (int i = 0; i < N; ++i) _c[i] += other._c[i];
        return _self();
    }
    V operator-=(const V& other) {
        for (int i = 0; i < N; ++i) _c[i] -= other._c[i];
        return _self();
    }
    V operator*=(const V& other) {
        for (int i = 0; i < N; ++i) _c[i] *= other._c[i];
        return _self();
    }
    V operator/=(const V& other) {
        for (int i = 0; i < N; ++i) _c[i] /= other._c[i];
        return _self();
    }

protected:
    VectorComponents() = default;
    const V& _self() const { return static_cast<const V&>(*this); }

    float _c[N];
};

class TESSARITY_EXPORT Vector2 : public VectorComponents<Vector2, 2> {
public:
    Vector2(float x, float y) {
        _c[0] = x;
        _c[1] = y;
    }

    float& x() { return _c[0]; }
    float& y() { return _c[1]; }
    const float& x() const { return _c[0]; }
    const float& y() const { return _c[1]; }
};

class TESSARITY_EXPORT Vector3 : public VectorComponents<Vector3, 3> {
public:
    Vector3(float x, float y, float z) {
        _c[0] = x;
        _c[1] = y;
        _c[2] = z;
    }

    float& x() { return _c[0]; }
    float& y() { return _c[1]; }
    float& z() { return _c[2]; }
    const float& x() const { return _c[0]; }
    const float& y() const { return _c[1]; }
    const float& z() const { return _c[2]; }
};

class TESSARITY_EXPORT Vector4 : public VectorComponents<Vector4, 4> {
public:
    Vector4(float x, float y, float z, float w) {
        _c[0] = x;
        _c[1] = y;
        _c[2] = z;
        _c[3] = w;
    }

    float& x() { return _c[0]; }
    float& y() { return _c[1]; }
    float& z() { return _c[2]; }
    float& w() { return _c[3]; }
    const float& x() const { return _c[0]; }
    const float& y() const { return _c[1]; }
    const float& z() const { return _c[2]; }
    const float& w() const { return _c[3]; }
};

// A position and an orientation; the angles take part in every operation like the position.
class TESSARITY_EXPORT Vector6 : public VectorComponents<Vector6, 6> {
public:
    Vector6(float x, float y, float z, float wx, float wy, float wz) {
        _c[0] = x;
        _c[1] = y;
        _c[2] = z;
        _c[3] = wx;
        _c[4] = wy;
        _c[5] = wz;
    }

    float& x() { return _c[0]; }
    float& y() { return _c[1]; }
    float& z() { return _c[2]; }
    float& wx() { return _c[3]; }
    float& wy() { return _c[4]; }
    float& wz() { return _c[5]; }
    const float& x() const { return _c[0]; }
    const float& y() const { return _c[1]; }
    const float& z() const { return _c[2]; }
    const float& wx() const { return _c[3]; }
    const float& wy() const { return _c[4]; }
    const float& wz() const { return _c[5]; }
};

static_assert(sizeof(Vector2) == 2 * sizeof(float) && sizeof(Vector6) == 6 * sizeof(float),
              "a vector is its components and nothing else");

}  // namespace Type
}  // namespace Tessarity

#endif
