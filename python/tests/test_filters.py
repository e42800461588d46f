import logging
import threading

import pytest

import tessarity


class Scale(tessarity.Filter):
    """Multiplies by a factor, 2 unless given, and tells which thread ran it."""
    inputs = ["in [Integer]", "optional factor [Integer]"]
    outputs = ["out", "thread"]

    def process(self, inputs):
        value, factor = inputs
        return [value * (factor or 2), threading.get_native_id()]


class Count(tessarity.Filter):
    inputs = ["in"]
    outputs = ["count"]
    stateful = True

    def process(self, inputs):
        self.state = (self.state or 0) + 1
        return {"count": self.state}


class Broken(tessarity.Filter):
    inputs = ["in"]
    outputs = ["out"]

    def __init__(self, result):
        self.result = result

    def process(self, inputs):
        return self.result(inputs[0])


def test_a_python_filter_runs_in_a_composite_on_the_workers(wait_until):
    engine = tessarity.Engine(threads=2)
    assert engine.create_filter(Scale())
    assert engine.get_filter_description("Scale").startswith("Multiplies by a factor")
    assert engine.create_filter("Scaled", [("Identity", "pass"), ("Scale", "scale")],
                                [(("pass", "out"), ("scale", "in"))],
                                [(("pass", "in"), "in")],
                                [(("scale", "out"), "out"), (("scale", "thread"), "thread")])
    engine.create_source("camera")
    engine.create_process("P", "Scaled", {"in": "camera"}, {"out": "result", "thread": "thread"},
                          [("camera", "self")], priority=0, frequency=1e6)
    results, threads = [], set()
    engine.on("P:result", results.append)
    engine.on("P:thread", threads.add)
    for i in range(1, 31):
        engine.set_data("camera", i)
        wait_until(lambda: len(results) == i)
    assert results == [2 * i for i in range(1, 31)]
    assert threads and threading.get_native_id() not in threads


def test_state_is_kept_per_process(engine):
    engine.create_filter(Count())
    engine.create_source("in")
    for name in ("a", "b"):
        engine.create_process(name, "Count", {"in": "in"}, {"count": "count"}, frequency=1e6)
    engine.set_data("in", "x")
    counts = [engine.get_data("a:count", time=t) for t in (1, 2, 3)]
    assert counts == [1, 2, 3] and engine.get_data("b:count", time=1) == 1


@pytest.mark.parametrize("result, logged", [
    (lambda x: 1 / 0, "ZeroDivisionError"),
    (lambda x: {"nope": x}, "\"nope\", which is not an output"),
    (lambda x: [x, x], "returned 2 values for 1 outputs"),
    (lambda x: x, "returns a list with one value per output"),
])
def test_a_failing_filter_logs_and_gives_nothing(engine, caplog, result, logged):
    engine.create_filter(Broken(result))
    engine.create_source("in")
    engine.create_process("p", "Broken", {"in": "in"}, {"out": "out"}, frequency=1e6)
    engine.set_data("in", 5)
    with caplog.at_level(logging.ERROR, logger="tessarity"):
        assert engine.get_data("p:out", time=1) is None
    record, = [r for r in caplog.records if r.name == "tessarity.python"]
    assert record.message.startswith('Filter "Broken" failed: ') and logged in record.message


def test_a_python_filter_as_a_lambda(engine):
    engine.create_filter(Scale())
    assert engine.create_lambda("Scale").apply([3, 4])[0] == 12


def test_a_python_source_answers_a_run(engine):
    class Clock(tessarity.Source):
        name = "clock"

        def get_data(self, time, tolerance):
            return [time, tolerance]

    clock = Clock()
    assert engine.create_source(clock)
    engine.set_data("clock", "tick")
    assert clock.value == "tick"
    engine.create_process("p", "Identity", {"in": "clock"}, {"out": "out"}, frequency=1e6,
                          tolerance=250)
    assert engine.get_data("p:out", time=1234) == [1234, 250]


def test_only_filters_and_sources_of_the_package_are_taken(engine):
    with pytest.raises(TypeError):
        engine.create_filter(object())
    with pytest.raises(TypeError):
        engine.create_source(object())
