"""The round of the ColorFrameRound benchmark, from Python: a 640x480 colour frame set on a
source and read back through an Identity process, with no pixel copied either way. Prints
microseconds a round for Python and, given the benchmark program, for the same round in C++.

    PYTHONPATH=build-bench/python /usr/bin/python3 bench/python_bench.py build-bench/bench/tessarity_bench
"""
import json
import statistics
import subprocess
import sys
import time

import numpy as np

import tessarity

ROUNDS = 20000


def python_round_microseconds():
    engine = tessarity.Engine(0)
    engine.create_source("camera")
    engine.create_process("copy", "Identity", {"in": "camera"}, {"out": "out"}, priority=0,
                          frequency=1e7)
    frame = np.full((480, 640, 3), 7, np.uint8)
    runs = []
    moment = 1
    for _ in range(5):  # the median of five runs, as the C++ side reports it
        start = time.perf_counter()
        for _ in range(ROUNDS):
            engine.set_data("camera", frame, time=moment)
            out = engine.get_data("copy:out", time=moment)
            moment += 1
        runs.append((time.perf_counter() - start) / ROUNDS * 1e6)
    assert out.ctypes.data == frame.ctypes.data, "the frame was copied"
    return statistics.median(runs)


def cpp_round_microseconds(program):
    report = subprocess.run(
        [program, "--benchmark_filter=^ColorFrameRound$", "--benchmark_format=json",
         "--benchmark_repetitions=5", "--benchmark_report_aggregates_only=true"],
        check=True, capture_output=True, text=True)
    for run in json.loads(report.stdout)["benchmarks"]:
        if run.get("aggregate_name") == "median":
            scale = {"ns": 1e-3, "us": 1.0, "ms": 1e3}[run["time_unit"]]
            return run["real_time"] * scale
    raise RuntimeError("no median in the benchmark's report")


def main():
    python = python_round_microseconds()
    print("set_data + get_data of a 640x480 colour frame through Identity")
    print(f"  Python: {python:7.2f} us a round")
    if len(sys.argv) > 1:
        cpp = cpp_round_microseconds(sys.argv[1])
        print(f"  C++:    {cpp:7.2f} us a round")
        print(f"  Python costs {python - cpp:+.2f} us a round more")


if __name__ == "__main__":
    main()
