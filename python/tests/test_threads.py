import logging
import sys
import threading

import numpy as np
import pytest

import tessarity


class Hold(tessarity.Filter):
    inputs = ["in"]
    outputs = ["out"]

    def __init__(self, hold=None):
        self.hold = hold

    def process(self, inputs):
        if self.hold:
            self.hold()
        return [inputs[0]]


class Calling(logging.Handler):
    def __init__(self, call):
        super().__init__()
        self.call = call

    def emit(self, record):
        self.call()


@pytest.mark.parametrize("where", ["filter", "callback", "log line"])
def test_a_call_that_waits_for_an_engine_lock_lets_python_run(where):
    """A worker holds a process's lock while its Python code waits; the main thread frees that
    code, then pulls the process and waits for the lock. The worker needs the GIL to finish:
    were it not released while the pull waits, neither thread would ever go on."""
    entered, release = threading.Event(), threading.Event()

    def hold(*_):
        entered.set()
        release.wait(60)

    engine = tessarity.Engine(threads=1)
    engine.create_source("in")
    engine.create_filter(Hold(hold if where == "filter" else None))
    engine.create_process("p", "Print" if where == "log line" else "Hold", {"in": "in"},
                          {"out": "out"}, [("in", "self")], priority=0, frequency=1e6)
    if where == "callback":
        engine.on("p:out", hold)
    logger, handler = logging.getLogger("tessarity"), Calling(hold)
    if where == "log line":
        logger.addHandler(handler)
        logger.setLevel(logging.INFO)
    interval = sys.getswitchinterval()
    try:
        engine.set_data("in", 1)
        assert entered.wait(60)
        # Nothing but a released GIL lets the worker back into Python now.
        sys.setswitchinterval(100)
        release.set()
        assert engine.get_data("p:out", time=2) == 1
    finally:
        sys.setswitchinterval(interval)
        logger.removeHandler(handler)
        logger.setLevel(logging.NOTSET)


def test_python_threads_and_workers_share_the_engine(caplog):
    """Python threads set, pull and read while two workers run a Python filter, callbacks and
    log lines, and drop arrays that images borrowed."""
    engine = tessarity.Engine(threads=2)
    engine.create_filter(Hold())
    engine.create_source("frames")
    engine.create_source("numbers")
    engine.create_process("show", "Print", {"in": "frames"}, {"out": "shown"},
                          [("frames", "self")], priority=0, frequency=1e6)
    engine.create_process("copy", "Hold", {"in": "numbers"}, {"out": "copied"},
                          [("numbers", "self")], priority=0, frequency=1e6)
    seen = []
    engine.on("show:shown", lambda frame: seen.append(frame.shape))
    engine.on("copy:copied", seen.append)
    failures = []

    def client(index):
        try:
            for i in range(2000):
                engine.set_data("frames", np.full((24, 32, 3), i, np.uint8))
                engine.set_data("numbers", i)
                assert engine.get_data("copy:copied") is not None
                engine.get_last_data("show:shown")
                engine.get_processes()
        except Exception as error:  # reported by the main thread
            failures.append(error)

    interval = sys.getswitchinterval()
    sys.setswitchinterval(1e-5)  # the GIL changes hands as often as it can
    try:
        with caplog.at_level(logging.INFO, logger="tessarity"):
            clients = [threading.Thread(target=client, args=(i,)) for i in range(4)]
            for thread in clients:
                thread.start()
            for thread in clients:
                thread.join(90)
    finally:
        sys.setswitchinterval(interval)
    assert not any(thread.is_alive() for thread in clients) and not failures
    assert (24, 32, 3) in seen and any(r.name == "tessarity" for r in caplog.records)


def test_two_python_threads_pull_two_processes_at_once():
    """Each pull runs its process's filter on the pulling thread; the filters can only pass
    the barrier together, so the two pulls must be inside the engine at the same time."""
    barrier = threading.Barrier(2, timeout=30)
    engine = tessarity.Engine(threads=0)
    engine.create_filter(Hold(barrier.wait))
    engine.create_source("in")
    for name in ("a", "b"):
        engine.create_process(name, "Hold", {"in": "in"}, {"out": "out"}, frequency=1e6)
    engine.set_data("in", 5, time=1)
    results = {}

    def pull(name):
        results[name] = engine.get_data(name + ":out", time=1)

    pullers = [threading.Thread(target=pull, args=(name,)) for name in ("a", "b")]
    for thread in pullers:
        thread.start()
    for thread in pullers:
        thread.join(60)
    assert results == {"a": 5, "b": 5}
