#include <string>

#include <benchmark/benchmark.h>
#include <tessarity/data.h>
#include <tessarity/stringhash.h>
#include <boost/make_shared.hpp>

using Tessarity::Data;
using Tessarity::StringHash;

static void DataFromInt(benchmark::State& state) {
    int value = 0;
    for (auto _ : state) {
        Data data(value++);
        benchmark::DoNotOptimize(data);
    }
}
BENCHMARK(DataFromInt);

static void DataFromString(benchmark::State& state) {
    const std::string value("a label longer than the small-string buffer");
    for (auto _ : state) {
        Data data(value);
        benchmark::DoNotOptimize(data);
    }
}
BENCHMARK(DataFromString);

static void DataFromSharedPointer(benchmark::State& state) {
    const boost::shared_ptr<void> payload = boost::make_shared<int>(1);
    for (auto _ : state) {
        Data data(payload);
        benchmark::DoNotOptimize(data);
    }
}
BENCHMARK(DataFromSharedPointer);

static void FloatFromIntegerData(benchmark::State& state) {
    Data data(42);
    for (auto _ : state) {
        benchmark::DoNotOptimize(data);
        float value = data;
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK(FloatFromIntegerData);

static void StringFromData(benchmark::State& state) {
    Data data(std::string("a label longer than the small-string buffer"));
    for (auto _ : state) {
        std::string value = data;
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK(StringFromData);

// Names of the lengths that processes and nested filter requests typically have.
static void StringHashFromName(benchmark::State& state) {
    const std::string name(static_cast<std::size_t>(state.range(0)), 'n');
    for (auto _ : state) {
        StringHash hash(name);
        benchmark::DoNotOptimize(hash);
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(StringHashFromName)->Arg(16)->Arg(64);
