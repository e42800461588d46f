#include <benchmark/benchmark.h>
#include <boost/make_shared.hpp>

#include "graph/memory_manager.h"
#include "graph/node_source.h"
#include "graph/port.h"

using namespace Tessarity;

static void MemoryManagerWarmGet(benchmark::State& state) {
    MemoryManager memory;
    StringHash process("camera_process"), key("camera_process/threshold");
    memory.setData(process, key, boost::make_shared<Data>(1));
    for (auto _ : state) benchmark::DoNotOptimize(memory.getData(process, key));
}
BENCHMARK(MemoryManagerWarmGet);

// One run's worth of protocol on a source: synchronize, pull through a port, release.
static void SourceSynchronizeRequestRelease(benchmark::State& state) {
    auto source = boost::make_shared<NodeSource>("camera");
    source->setData(boost::make_shared<Data>(7));
    auto input = boost::make_shared<Port>("in");
    input->attach(source->getOutput("out"));
    StringHash process("camera_process");
    const Type::Time time(1);
    const Type::Duration tolerance(0);
    for (auto _ : state) {
        source->synchronize(time, tolerance, process, process, 1);
        benchmark::DoNotOptimize(input->requestData(process, process, 0));
        input->synchronizeRelease(process, process, 0);
    }
}
BENCHMARK(SourceSynchronizeRequestRelease);
