#ifndef TESSARITY_PYTHON_LIFETIME_H
#define TESSARITY_PYTHON_LIFETIME_H

// Python references that C++ owns, and the one rule that keeps the GIL and the engine's locks
// apart: no thread waits for an engine lock while it holds the GIL. Every binding that enters
// the engine, or locks a shared record, releases the GIL first. So a thread that holds an
// engine lock (a worker in a run, a source replacing its value) may always block on the GIL:
// to run a Python filter or callback, to hand a log line to Python, or to drop the last
// reference to an array that an image borrowed.

#include <memory>

#include <pybind11/pybind11.h>

namespace Tessarity {
class Tessarity;
}

namespace TessarityPython {

namespace py = pybind11;

// False once the module has shut down for the interpreter's exit: from then on no thread of
// the engine enters Python, and the references C++ still holds are left to the process's end.
bool pythonAlive();

// The engines Python holds, so that the exit can stop their workers before the interpreter
// goes: a worker blocked on the GIL of a finalizing interpreter would never come back.
// Called with the GIL held.
void trackEngine(Tessarity::Tessarity* engine);
void untrackEngine(Tessarity::Tessarity* engine);
// Stops every tracked engine's workers and routes the log back to stderr.
void shutdownForExit();

// Drops one reference on any thread, taking the GIL for it.
void releaseReference(PyObject* object);

// A reference to a Python object that C++ keeps and copies; the last copy to go releases it
// with the GIL, on whatever thread that happens.
class SharedObject {
public:
    SharedObject() = default;
    explicit SharedObject(py::object object)
        : _object(object.release().ptr(), &releaseReference) {}

    py::handle get() const { return _object.get(); }

private:
    std::shared_ptr<PyObject> _object;
};

}  // namespace TessarityPython

#endif
