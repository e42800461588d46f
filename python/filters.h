#ifndef TESSARITY_PYTHON_FILTERS_H
#define TESSARITY_PYTHON_FILTERS_H

// What Python code runs on the engine's threads: filters, sources and callbacks. Each takes
// the GIL only while its Python code runs, and reports a Python exception as one error line
// in the category "tessarity.python" instead of handing it to the engine.

#include <boost/shared_ptr.hpp>
#include <pybind11/pybind11.h>

#include <tessarity/tessarity.h>

namespace TessarityPython {

namespace py = pybind11;

// From instances of the package's Filter and Source classes; their declarations are read
// once, here, with the GIL held. Throws TypeError for anything else.
boost::shared_ptr<Tessarity::UserFilter> makeFilter(py::handle instance);
boost::shared_ptr<Tessarity::UserSource> makeSource(py::handle instance);
Tessarity::Tessarity::Callback makeCallback(py::handle callable);

}  // namespace TessarityPython

#endif
