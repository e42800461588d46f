// tessarity.Engine: the facade with Python names. Every operation releases the GIL while the
// engine works (lifetime.h says why that is what keeps the GIL and the engine's locks apart);
// values and names are converted before and after, with the GIL held.
#include <pybind11/stl.h>

#include "filters.h"
#include "lifetime.h"
#include "values.h"

namespace TessarityPython {

using namespace Tessarity;
using Engine = Tessarity::Tessarity;

namespace {

// Dropping the last handle stops the workers and waits for them, and they may be waiting
// for the GIL.
struct EngineDelete {
    void operator()(Engine* engine) const {
        untrackEngine(engine);
        py::gil_scoped_release release;
        delete engine;
    }
};

// A dict, or an iterable of (key, value) pairs of strings.
Engine::Pairs toPairs(py::handle pairs) {
    Engine::Pairs list;
    py::object items = PyDict_Check(pairs.ptr()) ? pairs.attr("items")()
                                                 : py::reinterpret_borrow<py::object>(pairs);
    for (py::handle item : items) {
        const py::sequence pair = py::reinterpret_borrow<py::sequence>(item);
        if (!PySequence_Check(item.ptr()) || PyUnicode_Check(item.ptr()) || pair.size() != 2)
            throw py::type_error("expected pairs of strings, got " + bytes(py::repr(item)));
        list.emplace_back(bytes(pair[0]), bytes(pair[1]));
    }
    return list;
}

bool createEvent(Engine& engine, const std::string& name, py::handle target, bool source) {
    if (PyUnicode_Check(target.ptr())) {
        const std::string process = bytes(target);
        py::gil_scoped_release release;
        return source ? engine.createSourceEvent(name, process) : engine.createEvent(name, process);
    }
    Engine::Callback callback = makeCallback(target);
    py::gil_scoped_release release;
    return source ? engine.createSourceEvent(name, callback) : engine.createEvent(name, callback);
}

}  // namespace

void bindEngine(py::module_& module) {
    const auto released = py::call_guard<py::gil_scoped_release>();
    const py::arg_v noTime("time", py::none());

    py::enum_<ClassificationType>(module, "ClassificationType")
        .value("KNN", KNN)
        .export_values();

    py::class_<Engine, std::unique_ptr<Engine, EngineDelete>>(module, "Engine")
        .def(py::init([](unsigned int threads) {
                 Engine* engine;
                 {
                     py::gil_scoped_release release;
                     engine = new Engine(threads);
                 }
                 trackEngine(engine);
                 return engine;
             }),
             py::arg("threads"))

        // Programs.
        .def("load_program", &Engine::loadProgram, py::arg("program"), released)
        .def(
            "load_program_file",
            [](Engine& engine, py::handle path) {
                const std::string file =
                    bytes(py::module_::import("os").attr("fsdecode")(path));
                py::gil_scoped_release release;
                return engine.loadProgramFromFile(file);
            },
            py::arg("path"))

        // Results.
        .def(
            "get_data",
            [](Engine& engine, const std::string& sink, py::handle time) {
                DataPtr data;
                if (time.is_none()) {
                    py::gil_scoped_release release;
                    data = engine.getData(sink);
                } else {
                    const Type::Time at = toTime(time);
                    py::gil_scoped_release release;
                    data = engine.getData(sink, at);
                }
                return toPython(data);
            },
            py::arg("sink"), noTime)
        .def(
            "get_last_data",
            [](Engine& engine, const std::string& sink) {
                DataPtr data;
                {
                    py::gil_scoped_release release;
                    data = engine.getLastData(sink);
                }
                return toPython(data);
            },
            py::arg("sink"))

        // The filter library.
        .def(
            "create_filter",
            [](Engine& engine, py::handle filter) {
                auto adapted = makeFilter(filter);
                py::gil_scoped_release release;
                return engine.createFilter(adapted);
            },
            py::arg("filter"))
        .def(
            "create_filter",
            [](Engine& engine, const std::string& name, py::handle filters,
               const Engine::Links& links, const Engine::Exports& inputs,
               const Engine::Exports& outputs) {
                const Engine::Pairs nodes = toPairs(filters);
                py::gil_scoped_release release;
                return engine.createFilter(name, nodes, links, inputs, outputs);
            },
            py::arg("name"), py::arg("filters"), py::arg("links"), py::arg("inputs"),
            py::arg("outputs"))
        .def("create_classification_filter", &Engine::createClassificationFilter,
             py::arg("name"), py::arg("type"), py::arg("file"), released)
        .def("dump_filter", &Engine::dumpFilter, py::arg("name"), py::arg("depth") = 1, released)
        .def("get_filters", &Engine::getFilters, released)
        .def("is_filter", &Engine::isFilter, py::arg("name"), released)
        .def("get_filter_description", &Engine::getFilterDescription, py::arg("name"), released)
        .def("get_filter_inputs", &Engine::getFilterInputs, py::arg("name"), released)
        .def("get_filter_outputs", &Engine::getFilterOutputs, py::arg("name"), released)
        .def("delete_filter", &Engine::deleteFilter, py::arg("name"), released)
        .def(
            "create_lambda",
            [](const Engine& engine, const std::string& filter) -> py::object {
                boost::shared_ptr<Type::Lambda> lambda;
                {
                    py::gil_scoped_release release;
                    lambda = engine.createLambda(filter);
                }
                return lambda ? py::cast(lambda) : py::none();
            },
            py::arg("filter"))

        // Sources.
        .def("get_sources", &Engine::getSources, released)
        .def(
            "create_source",
            [](Engine& engine, py::handle source) {
                if (PyUnicode_Check(source.ptr())) {
                    const std::string name = bytes(source);
                    py::gil_scoped_release release;
                    return engine.createSource(name);
                }
                auto adapted = makeSource(source);
                py::gil_scoped_release release;
                return engine.createSource(adapted);
            },
            py::arg("source"))
        .def("create_source_from_process_sink", &Engine::createSourceFromProcessSink,
             py::arg("name"), py::arg("sink"), released)
        .def("create_source_alias", &Engine::createSourceAlias, py::arg("alias"),
             py::arg("source"), released)
        .def("rename_source_alias", &Engine::renameSourceAlias, py::arg("alias"),
             py::arg("new_alias"), released)
        .def("retarget_source_alias", &Engine::retargetSourceAlias, py::arg("alias"),
             py::arg("source"), released)
        .def("is_source_bound", &Engine::isSourceBound, py::arg("name"), released)
        .def("get_source_frequency", &Engine::getSourceFrequency, py::arg("name"), released)
        .def(
            "set_data",
            [](Engine& engine, const std::string& source, py::handle value, py::handle time) {
                const Type::Time at = time.is_none() ? Type::Time::now() : toTime(time);
                const DataPtr data = toData(value, at);
                if (data) data->setTimestamp(at);
                py::gil_scoped_release release;
                engine.setData(source, data);
            },
            py::arg("source"), py::arg("value"), noTime)
        .def(
            "get_source_data",
            [](const Engine& engine, const std::string& source, py::handle tolerance,
               py::handle time) {
                const Type::Duration within = toDuration(tolerance);
                DataPtr data;
                if (time.is_none()) {
                    py::gil_scoped_release release;
                    data = engine.getSourceData(source, within);
                } else {
                    const Type::Time at = toTime(time);
                    py::gil_scoped_release release;
                    data = engine.getSourceData(source, at, within);
                }
                return toPython(data);
            },
            py::arg("source"), py::arg("tolerance") = 1000000, noTime)
        .def("delete_source", &Engine::deleteSource, py::arg("name"), released)

        // Processes.
        .def("get_processes", &Engine::getProcesses, released)
        .def("is_process", &Engine::isProcess, py::arg("name"), released)
        .def("get_process_description", &Engine::getProcessDescription, py::arg("name"), released)
        .def("set_process_description", &Engine::setProcessDescription, py::arg("name"),
             py::arg("description"), released)
        .def("get_process_sources", &Engine::getProcessSources, py::arg("name"), released)
        .def("get_process_sinks", &Engine::getProcessSinks, py::arg("name"), released)
        .def("get_process_aggregated_sinks", &Engine::getProcessAggregatedSinks, py::arg("name"),
             released)
        .def("get_process_priority", &Engine::getProcessPriority, py::arg("name"), released)
        .def("get_process_frequency", &Engine::getProcessFrequency, py::arg("name"), released)
        .def(
            "get_process_tolerance",
            [](const Engine& engine, const std::string& name) {
                return engine.getProcessTolerance(name).getTotalMicroseconds();
            },
            py::arg("name"), released)
        .def("set_process_priority", &Engine::setProcessPriority, py::arg("name"),
             py::arg("priority"), released)
        .def("set_process_frequency", &Engine::setProcessFrequency, py::arg("name"),
             py::arg("frequency"), released)
        .def(
            "set_process_tolerance",
            [](Engine& engine, const std::string& name, py::handle tolerance) {
                const Type::Duration within = toDuration(tolerance);
                py::gil_scoped_release release;
                engine.setProcessTolerance(name, within);
            },
            py::arg("name"), py::arg("tolerance"))
        .def(
            "create_process",
            [](Engine& engine, const std::string& name, const std::string& filter,
               py::handle inputs, py::handle outputs, py::handle triggers, py::handle sources,
               unsigned int priority, float frequency, py::handle tolerance) {
                const Engine::Pairs in = toPairs(inputs), out = toPairs(outputs),
                                    wakes = toPairs(triggers), own = toPairs(sources);
                const Type::Duration within = toDuration(tolerance);
                py::gil_scoped_release release;
                return engine.createProcess(name, filter, in, out, wakes, own, priority,
                                            frequency, within);
            },
            // The defaults of a process header in a program.
            py::arg("name"), py::arg("filter"), py::arg("inputs") = py::tuple(),
            py::arg("outputs") = py::tuple(), py::arg("triggers") = py::tuple(),
            py::arg("sources") = py::tuple(), py::arg("priority") = 3,
            py::arg("frequency") = 1.0f, py::arg("tolerance") = 1000000)
        .def("rename_process", &Engine::renameProcess, py::arg("name"), py::arg("new_name"),
             released)
        .def("reset_process", &Engine::resetProcess, py::arg("name"), released)
        .def("is_process_enabled", &Engine::isProcessEnable, py::arg("name"), released)
        .def("is_process_zombie", &Engine::isProcessZombie, py::arg("name"), released)
        .def("enable_process", &Engine::enableProcess, py::arg("name"), released)
        .def("disable_process", &Engine::disableProcess, py::arg("name"), released)
        .def("delete_process", &Engine::deleteProcess, py::arg("name"), released)
        .def("get_scheduled_jobs", &Engine::getScheduledJobs, released)
        .def("get_instrumentation_result", &Engine::getInstrumentationResult, released)

        // Events: `target` is a callable, or the name of a process to wake.
        .def(
            "create_event",
            [](Engine& engine, const std::string& sink, py::handle target) {
                return createEvent(engine, sink, target, false);
            },
            py::arg("sink"), py::arg("target"))
        .def(
            "create_source_event",
            [](Engine& engine, const std::string& source, py::handle target) {
                return createEvent(engine, source, target, true);
            },
            py::arg("source"), py::arg("target"))
        .def(
            "on",
            [](Engine& engine, const std::string& sink, py::handle callback) {
                if (!PyCallable_Check(callback.ptr()))
                    throw py::type_error("on() takes a callable");
                return createEvent(engine, sink, callback, false);
            },
            py::arg("sink"), py::arg("callback"))

        // Scheduler.
        .def("start_scheduler", &Engine::startScheduler, released)
        .def("stop_scheduler", &Engine::stopScheduler, released);
}

}  // namespace TessarityPython
