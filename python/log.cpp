// The engine's log lines as records of Python's logging. kelvo calls the handler on the thread
// that logs, which may hold engine locks: it may take the GIL all the same, since no thread
// waits for an engine lock with the GIL held (lifetime.h).
#include <kelvo/log.h>

#include "lifetime.h"
#include "values.h"

namespace TessarityPython {

namespace {

void toLogging(int level, const std::string& category, const std::string& message) {
    if (!pythonAlive()) return;
    py::gil_scoped_acquire gil;
    try {
        packageClasses().logEmitter(level, text(category), text(message));
    } catch (py::error_already_set& error) {
        error.discard_as_unraisable("the tessarity log handler");
    }
}

}  // namespace

void bindLog(py::module_& module) {
    module.def(
        "log_to_python", [] { kelvo::log::setHandler(&toLogging); },
        "Hands every log line of the engine to the logger 'tessarity' and its children "
        "(the default once the module is imported).");
    module.def(
        "log_to_stderr",
        [](py::object verbosity) {
            kelvo::log::setHandler(kelvo::log::Handler());
            if (!verbosity.is_none()) kelvo::log::setVerbosity(verbosity.cast<int>());
        },
        py::arg("verbosity") = py::none(),
        "Writes the engine's log lines to stderr again, those of `verbosity` (1 fatal ... "
        "6 debug; 4 unless changed) and more severe.");
}

}  // namespace TessarityPython
