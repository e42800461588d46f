#ifndef TESSARITY_PYTHON_VALUES_H
#define TESSARITY_PYTHON_VALUES_H

// Engine values to Python values and back.
//
//   None            no value (a null pointer); a value tagged Invalid reads as None too
//   bool, int       Boolean; Integer, or UnsignedInteger from 2**31 to 2**32 - 1
//   float, str      Double (numpy.float32 gives Float, numpy.uint32 UnsignedInteger); String
//   list, tuple     Array; a tuple of 2, 3, 4 or 6 numbers is a Vector of that many
//   numpy arrays    images, by dtype and shape (see arrayData); read back as read-only views
//   datetime        Time (naive ones are local time); timedelta: Duration
//   the package's Color, Region2, Region3, Histogram, AudioBuffer classes: their records
//   Human, Object2D, Object3D, Lambda: bound classes that share the C++ object
//   anything else   an opaque Unknown value, read back as the very same object

#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>
#include <pybind11/pybind11.h>

#include <tessarity/tessarity.h>

PYBIND11_DECLARE_HOLDER_TYPE(T, boost::shared_ptr<T>)

namespace TessarityPython {

namespace py = pybind11;
using DataPtr = boost::shared_ptr<Tessarity::Data>;

// Null for None. An image made here takes `time` as its own timestamp (0: now).
DataPtr toData(py::handle value, const Tessarity::Type::Time& time = Tessarity::Type::Time());
py::object toPython(const DataPtr& data);

// Any object as an opaque Unknown value, which toPython gives back as the very object.
DataPtr boxedData(py::handle value);

std::vector<DataPtr> toDataList(py::handle values);
py::list toPythonList(const std::vector<DataPtr>& values);

// An int of microseconds (since the Unix epoch for a time), a datetime or a timedelta.
Tessarity::Type::Time toTime(py::handle time);
Tessarity::Type::Duration toDuration(py::handle duration);
py::object timeToPython(const Tessarity::Type::Time& time);

// Text as Python sees it; bytes that are not UTF-8 survive the round trip as surrogates.
py::str text(const std::string& bytes);
std::string bytes(py::handle text);

// The Python classes of the package, handed over once by its __init__.
struct PackageClasses {
    py::handle color, region2, region3, histogram, audioBuffer, image, filter, source;
    py::handle datetime, timedelta, toMicroseconds, timeFromMicroseconds, durationFromMicroseconds;
    py::handle logEmitter;
};
const PackageClasses& packageClasses();

void bindValues(py::module_& module);

}  // namespace TessarityPython

#endif
