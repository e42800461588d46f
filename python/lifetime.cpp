#include "lifetime.h"

#include <atomic>
#include <set>
#include <vector>

#include <kelvo/log.h>
#include <tessarity/tessarity.h>

namespace TessarityPython {

namespace {

std::atomic<bool> shutDown{false};

std::set<Tessarity::Tessarity*>& engines() {
    static std::set<Tessarity::Tessarity*> live;
    return live;
}

}  // namespace

bool pythonAlive() { return !shutDown.load() && !_Py_IsFinalizing(); }

void trackEngine(Tessarity::Tessarity* engine) { engines().insert(engine); }

void untrackEngine(Tessarity::Tessarity* engine) { engines().erase(engine); }

void shutdownForExit() {
    kelvo::log::setHandler(kelvo::log::Handler());
    // Handles share their engine: these copies keep each one whole while the GIL is released,
    // whatever another thread drops meanwhile.
    std::vector<Tessarity::Tessarity> running;
    for (Tessarity::Tessarity* engine : engines()) running.push_back(*engine);
    {
        // A worker may be waiting for the GIL to finish its run: stopping waits for it.
        py::gil_scoped_release release;
        for (Tessarity::Tessarity& engine : running) engine.stopScheduler();
        shutDown = true;
        running.clear();
    }
}

void releaseReference(PyObject* object) {
    if (!pythonAlive()) return;
    py::gil_scoped_acquire gil;
    Py_DECREF(object);
}

}  // namespace TessarityPython
