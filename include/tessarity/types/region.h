#ifndef TESSARITY_TYPES_REGION_H
#define TESSARITY_TYPES_REGION_H

#include <tessarity/export.h>

#include <tessarity/types/vector.h>

namespace Tessarity {
namespace Type {

// A box from `start` to `end`. The corners are kept as given: nothing orders them.
template <typename V>
class TESSARITY_EXPORT Region {
public:
    Region(const V& start, const V& end) : start(start), end(end) {}
    Region(const Region&) = default;
    Region& operator=(const Region&) = default;
    virtual ~Region() = default;

    V start;
    V end;
};

class TESSARITY_EXPORT Region2 : public Region<Vector2> {
public:
    Region2(float x0, float y0, float x1, float y1) : Region(Vector2(x0, y0), Vector2(x1, y1)) {}
};

class TESSARITY_EXPORT Region3 : public Region<Vector3> {
public:
    Region3(float x0, float y0, float z0, float x1, float y1, float z1)
        : Region(Vector3(x0, y0, z0), Vector3(x1, y1, z1)) {}
};

}  // namespace Type
}  // namespace Tessarity

#endif
