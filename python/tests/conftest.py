import faulthandler
import os
import time

import pytest

import tessarity

# A deadlock fails the run with every thread's stack instead of hanging it.
faulthandler.dump_traceback_later(120, exit=True)

EXAMPLES = os.environ.get("TESSARITY_EXAMPLES",
                          os.path.join(os.path.dirname(__file__), "..", "..", "examples"))


@pytest.fixture
def engine():
    return tessarity.Engine(threads=0)


@pytest.fixture
def identity(engine):
    """An engine whose process "copy" passes the source "in" to the sink "out"."""
    engine.create_source("in")
    engine.create_process("copy", "Identity", {"in": "in"}, {"out": "out"}, frequency=1e6)
    return engine


@pytest.fixture
def wait_until():
    """Bounded polling: fails after `seconds` unless `condition()` came true."""
    def wait(condition, seconds=20.0):
        deadline = time.monotonic() + seconds
        while not condition():
            assert time.monotonic() < deadline, "timed out"
            time.sleep(0.001)
    return wait
