#include <benchmark/benchmark.h>

#include <tessarity/tessarity.h>

using Tessarity::Data;

// A new engine without workers: most of it is the registration of the filter catalogue.
static void EngineConstruction(benchmark::State& state) {
    for (auto _ : state) {
        Tessarity::Tessarity engine(0);
        benchmark::DoNotOptimize(engine);
    }
}
BENCHMARK(EngineConstruction);

// Building, registering and deleting a process of one filter on a global source.
static void CreateProcess(benchmark::State& state) {
    Tessarity::Tessarity engine(0);
    engine.createSource("camera");
    for (auto _ : state) {
        engine.createProcess("copy", "Identity", {{"in", "camera"}}, {{"out", "out"}}, {}, {}, 3,
                             30.0f, Tessarity::Type::Duration::Seconds(1));
        state.PauseTiming();
        engine.deleteProcess("copy");
        state.ResumeTiming();
    }
}
BENCHMARK(CreateProcess);

// getData through the facade of a process that is due at every call.
static void GetDataDueProcess(benchmark::State& state) {
    Tessarity::Tessarity engine(0);
    engine.createSource("camera");
    engine.setData("camera", boost::make_shared<Data>(1));
    engine.createProcess("copy", "Identity", {{"in", "camera"}}, {{"out", "out"}}, {}, {}, 0, 1e7f,
                         Tessarity::Type::Duration::Seconds(1));
    long long time = 1;
    for (auto _ : state)
        benchmark::DoNotOptimize(engine.getData("copy:out", Tessarity::Type::Time(time++)));
}
BENCHMARK(GetDataDueProcess);

// A 640x480 colour frame set on a source and read back through an Identity process, with the
// image borrowing the application's pixels: the round that bench/python_bench.py makes from
// Python.
static void ColorFrameRound(benchmark::State& state) {
    Tessarity::Tessarity engine(0);
    engine.createSource("camera");
    engine.createProcess("copy", "Identity", {{"in", "camera"}}, {{"out", "out"}}, {}, {}, 0, 1e7f,
                         Tessarity::Type::Duration::Seconds(1));
    std::vector<unsigned char> pixels(640 * 480 * 3, 7);
    long long time = 1;
    for (auto _ : state) {
        const Tessarity::Type::Time at(time++);
        auto value = boost::make_shared<Data>(
            boost::make_shared<Tessarity::Type::ColorImage>(pixels.data(), 640, 480));
        value->setTimestamp(at);
        engine.setData("camera", value);
        benchmark::DoNotOptimize(engine.getData("copy:out", at));
    }
}
BENCHMARK(ColorFrameRound);
