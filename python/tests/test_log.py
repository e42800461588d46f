import logging
import threading

import pytest

import tessarity


def test_engine_lines_reach_loggers_named_by_their_category(engine, caplog):
    with caplog.at_level(logging.DEBUG, logger="tessarity"):
        engine.create_source("camera")
        engine.create_source("camera")
        engine.create_process("p", "Identity", {"in": "camera"}, {"out": "out"})
        engine.delete_process("p")
    assert [(r.name, r.levelname, r.message) for r in caplog.records] == [
        ("tessarity.private", "ERROR", 'createSource("camera"): source already exists.'),
        ("tessarity.private", "VERBOSE",
         'new tessarity process: "p" priority: 3 frequency: 1 tolerance: 1000ms'),
        ("tessarity.private", "VERBOSE", 'Delete process "p".'),
    ]


def test_lines_logged_on_workers(caplog, wait_until):
    engine = tessarity.Engine(threads=2)
    engine.create_source("in")
    engine.create_process("p", "Print", {"in": "in"}, {"out": "out"}, [("in", "self")],
                          priority=0, frequency=1e6)
    with caplog.at_level(logging.INFO, logger="tessarity"):
        engine.set_data("in", 42)
        wait_until(lambda: any(r.name == "tessarity" for r in caplog.records))
    record, = [r for r in caplog.records if r.name == "tessarity"]
    assert record.levelname == "INFO" and record.message == "42"
    assert record.thread != threading.get_ident()


def test_lines_go_to_stderr_and_back(engine, caplog, capfd):
    engine.create_source("x")
    tessarity.log_to_stderr(verbosity=2)
    try:
        engine.create_source("x")
    finally:
        tessarity.log_to_python()
    assert capfd.readouterr().err == \
        '[error] tessarity.private: createSource("x"): source already exists.\n'
    assert not caplog.records
    engine.create_source("x")
    assert [r.message for r in caplog.records] == ['createSource("x"): source already exists.']


@pytest.mark.parametrize("call", [
    lambda engine: engine.set_data("lens", 1),
    lambda engine: engine.get_data("nope:out", time=1),
    lambda engine: engine.get_last_data("nope:out"),
    lambda engine: engine.get_source_data("lens"),
    lambda engine: engine.create_source_event("lens", "nope"),
    lambda engine: engine.set_process_tolerance("nope", 10),
], ids=["set_data", "get_data", "get_last_data", "get_source_data", "create_source_event",
        "set_process_tolerance"])
def test_refusals_raise_value_error_with_the_logged_text(engine, caplog, call):
    with caplog.at_level(logging.ERROR, logger="tessarity"), pytest.raises(ValueError) as refused:
        call(engine)
    assert [r.message for r in caplog.records] == [str(refused.value)]


def test_refusals_without_an_exception_answer_false(engine, caplog):
    with caplog.at_level(logging.ERROR, logger="tessarity"):
        assert not engine.create_classification_filter("shapes", tessarity.KNN, "nowhere.xml")
        assert not engine.delete_process("nope")
    assert len(caplog.records) == 2
