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
