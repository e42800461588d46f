// The extension tessarity._tessarity; the package's __init__ adds the Python classes and
// hands them over.
#include "lifetime.h"
#include "values.h"

namespace TessarityPython {
void bindEngine(py::module_& module);
void bindLog(py::module_& module);
}  // namespace TessarityPython

PYBIND11_MODULE(_tessarity, module) {
    using namespace TessarityPython;
    bindValues(module);
    bindEngine(module);
    bindLog(module);
    module.def("_shutdown", &shutdownForExit);
}
