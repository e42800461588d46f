#ifndef TESSARITY_DATATYPE_H
#define TESSARITY_DATATYPE_H

#include <cstdint>

namespace Tessarity {

// The numbers are part of the interface: ports, programs and plug-ins store them, so an entry
// never moves. Unscoped so that filters can write `Integer` rather than `DataType::Integer`.
enum DataType : std::int32_t {
    Invalid = 0,
    Boolean = 1,
    Integer = 2,
    UnsignedInteger = 3,
    Float = 4,
    Double = 5,
    String = 6,
    ColorImage = 7,
    GrayscaleImage = 8,
    BinaryImage = 9,
    LabelImage = 10,
    DepthImage = 11,
    XYZImage = 12,
    MatrixImage = 13,
    Histogram = 14,
    AudioBuffer = 15,
    Color = 16,
    Vector2 = 17,
    Vector3 = 18,
    Vector4 = 19,
    Vector6 = 20,
    Region2 = 21,
    Region3 = 22,
    Array = 23,
    Human = 24,
    Object2D = 25,
    Object3D = 26,
    Time = 27,
    Duration = 28,
    Unknown = 29,
    Lambda = 30
};

}  // namespace Tessarity

#endif
