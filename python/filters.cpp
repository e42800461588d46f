#include "filters.h"

#include <algorithm>

#include <kelvo/log.h>

#include "lifetime.h"
#include "values.h"

namespace TessarityPython {

using namespace Tessarity;

namespace {

const char* const kLogCategory = "tessarity.python";

// Called with the GIL held, inside the handler of the exception.
void report(const std::string& who, const std::exception& error) {
    kelvo::log::log(kelvo::log::Error, kLogCategory, who + " failed: " + error.what(), __FILE__,
                    __func__, __LINE__);
}

std::vector<std::string> declarations(py::handle list, const char* what) {
    std::vector<std::string> lines;
    for (py::handle line : list) {
        if (!PyUnicode_Check(line.ptr()))
            throw py::type_error(std::string("a filter's ") + what + " are strings");
        lines.push_back(bytes(line));
    }
    return lines;
}

std::string nameOf(py::handle instance) {
    py::object name = instance.attr("name");
    return name.is_none() ? bytes(instance.get_type().attr("__name__")) : bytes(name);
}

class PythonFilter : public UserFilter {
public:
    explicit PythonFilter(py::handle instance)
        : _instance(py::reinterpret_borrow<py::object>(instance)),
          _name(nameOf(instance)),
          _inputs(declarations(instance.attr("inputs"), "inputs")),
          _outputs(declarations(instance.attr("outputs"), "outputs")),
          _stateful(py::bool_(instance.attr("stateful"))) {
        py::object description = instance.attr("description");
        if (description.is_none()) description = instance.get_type().attr("__doc__");
        if (!description.is_none()) _description = bytes(description);
    }

    std::string getName() override { return _name; }
    std::string getDescription() override { return _description; }
    std::vector<std::string> getInputs() override { return _inputs; }
    std::vector<std::string> getOutputs() override { return _outputs; }
    bool hasLocalData() override { return _stateful; }

    std::vector<DataPtr> apply(const std::vector<DataPtr>& inputs) override {
        if (!pythonAlive()) return {};
        py::gil_scoped_acquire gil;
        try {
            py::handle self = _instance.get();
            // The engine swaps in the state of this process and place before the call; it
            // travels boxed, so the filter gets back the very object it left.
            if (_stateful) self.attr("state") = toPython(getLocalData());
            py::object result = self.attr("process")(toPythonList(inputs));
            std::vector<DataPtr> outputs = _outputsOf(result);
            if (_stateful) setLocalData(boxedData(self.attr("state")));
            return outputs;
        } catch (const std::exception& error) {
            report("Filter \"" + _name + "\"", error);
        }
        return {};
    }

private:
    // A list or tuple with a value per output, a dict by output name, or None for none.
    std::vector<DataPtr> _outputsOf(py::handle result) const {
        std::vector<DataPtr> outputs(_outputs.size());
        if (result.is_none()) return outputs;
        if (PyDict_Check(result.ptr())) {
            for (auto item : py::reinterpret_borrow<py::dict>(result)) {
                const std::string name = bytes(item.first);
                auto found = std::find(_outputs.begin(), _outputs.end(), name);
                if (found == _outputs.end())
                    throw py::value_error("process() returned a value for \"" + name +
                                          "\", which is not an output");
                outputs[found - _outputs.begin()] = toData(item.second);
            }
            return outputs;
        }
        if (!PyList_Check(result.ptr()) && !PyTuple_Check(result.ptr()))
            throw py::type_error(
                "process() returns a list with one value per output, a dict or None");
        const py::sequence values = py::reinterpret_borrow<py::sequence>(result);
        if (values.size() > outputs.size())
            throw py::value_error("process() returned " + std::to_string(values.size()) +
                                  " values for " + std::to_string(outputs.size()) + " outputs");
        for (std::size_t i = 0; i < values.size(); ++i) outputs[i] = toData(values[i]);
        return outputs;
    }

    SharedObject _instance;
    std::string _name;
    std::string _description;
    std::vector<std::string> _inputs;
    std::vector<std::string> _outputs;
    bool _stateful;
};

class PythonSource : public UserSource {
public:
    explicit PythonSource(py::handle instance)
        : _instance(py::reinterpret_borrow<py::object>(instance)), _name(nameOf(instance)) {}

    std::string getName() const override { return _name; }

    void setData(const DataPtr& data) override {
        if (!pythonAlive()) return;
        py::gil_scoped_acquire gil;
        try {
            _instance.get().attr("set_data")(toPython(data));
        } catch (const std::exception& error) {
            report("Source \"" + _name + "\"", error);
        }
    }

    DataPtr getData(const Type::Time& time, const Type::Duration& tolerance) const override {
        if (!pythonAlive()) return DataPtr();
        py::gil_scoped_acquire gil;
        try {
            return toData(_instance.get().attr("get_data")(time.getTotalMicroseconds(),
                                                           tolerance.getTotalMicroseconds()));
        } catch (const std::exception& error) {
            report("Source \"" + _name + "\"", error);
        }
        return DataPtr();
    }

private:
    SharedObject _instance;
    std::string _name;
};

struct PythonCallback {
    SharedObject callable;
    std::string label;

    void operator()(DataPtr data) const {
        if (!pythonAlive()) return;
        py::gil_scoped_acquire gil;
        try {
            callable.get()(toPython(data));
        } catch (const std::exception& error) {
            report("Callback " + label, error);
        }
    }
};

void requireInstance(py::handle instance, py::handle type, const char* what) {
    if (!PyObject_IsInstance(instance.ptr(), type.ptr()))
        throw py::type_error(std::string("expected an instance of a subclass of tessarity.") +
                             what + ", got " + bytes(py::repr(instance)));
}

}  // namespace

boost::shared_ptr<UserFilter> makeFilter(py::handle instance) {
    requireInstance(instance, packageClasses().filter, "Filter");
    return boost::make_shared<PythonFilter>(instance);
}

boost::shared_ptr<UserSource> makeSource(py::handle instance) {
    requireInstance(instance, packageClasses().source, "Source");
    return boost::make_shared<PythonSource>(instance);
}

Tessarity::Tessarity::Callback makeCallback(py::handle callable) {
    if (!PyCallable_Check(callable.ptr()))
        throw py::type_error("a callback is a callable, or a process named by a string");
    return PythonCallback{SharedObject(py::reinterpret_borrow<py::object>(callable)),
                          bytes(py::repr(callable))};
}

}  // namespace TessarityPython
