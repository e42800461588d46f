// The framework's own cost per node: a composite chain of Identity nodes pulled through the
// facade, beside a TBB flow graph of the same depth doing the same nothing, in the same run.
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <new>
#include <vector>

#include <benchmark/benchmark.h>
#include <tbb/flow_graph.h>

#include <tessarity/tessarity.h>

namespace {

// Heap allocations of this thread, counted by the replaced operator new below.
thread_local long long allocations = 0;

typedef boost::shared_ptr<Tessarity::Data> Value;
typedef std::chrono::steady_clock Clock;

// An engine without workers running "chain": a composite of `depth` Identity nodes between
// the source "camera" and the sink "out"; each run sets the source and pulls the sink.
struct Chain {
    explicit Chain(int depth) : engine(0), value(boost::make_shared<Tessarity::Data>(1)) {
        Tessarity::Tessarity::Pairs nodes;
        Tessarity::Tessarity::Links links;
        for (int i = 0; i < depth; ++i) {
            nodes.push_back({"Identity", "n" + std::to_string(i)});
            if (i)
                links.push_back(
                    {{"n" + std::to_string(i - 1), "out"}, {nodes.back().second, "in"}});
        }
        engine.createFilter("Chain", nodes, links, {{{"n0", "in"}, "in"}},
                            {{{"n" + std::to_string(depth - 1), "out"}, "out"}});
        engine.createSource("camera");
        engine.createProcess("chain", "Chain", {{"in", "camera"}}, {{"out", "out"}}, {}, {}, 0,
                             1e7f, Tessarity::Type::Duration::Seconds(1));
    }
    void run() {
        engine.setData("camera", value);
        benchmark::DoNotOptimize(engine.getData("chain:out", Tessarity::Type::Time(++time)));
    }
    Tessarity::Tessarity engine;
    Value value;
    long long time = 0;
};

// The same depth of serial function nodes, one message at a time.
struct TbbChain {
    explicit TbbChain(int depth) {
        for (int i = 0; i < depth; ++i) {
            nodes.emplace_back(new tbb::flow::function_node<Value, Value>(
                graph, tbb::flow::serial, [](const Value& v) { return v; }));
            if (i) tbb::flow::make_edge(*nodes[i - 1], *nodes[i]);
        }
    }
    void run() {
        nodes.front()->try_put(value);
        graph.wait_for_all();
    }
    tbb::flow::graph graph;
    std::vector<std::unique_ptr<tbb::flow::function_node<Value, Value>>> nodes;
    Value value = boost::make_shared<Tessarity::Data>(1);
};

// The best of five batches, in nanoseconds per run.
template <typename C>
double nanosecondsPerRun(C& chain, int runs) {
    double best = 1e300;
    for (int batch = 0; batch < 5; ++batch) {
        const Clock::time_point start = Clock::now();
        for (int i = 0; i < runs; ++i) chain.run();
        best = std::min(
            best, std::chrono::duration<double, std::nano>(Clock::now() - start).count() / runs);
    }
    return best;
}

}  // namespace

// The counting allocator hands out malloc's memory, which these free.
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
void* operator new(std::size_t size) {
    ++allocations;
    if (void* memory = std::malloc(size ? size : 1)) return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

// One depth: a run through the facade, beside the TBB chain, and our heap allocations a run.
static void PullChainVsTbb(benchmark::State& state) {
    const int depth = static_cast<int>(state.range(0));
    Chain chain(depth);
    TbbChain tbb(depth);
    chain.run();  // the first run makes what later runs reuse
    double ours = 0, theirs = 0;
    for (auto _ : state) {
        ours = nanosecondsPerRun(chain, 2000);
        theirs = nanosecondsPerRun(tbb, 2000);
    }
    const long long before = allocations;
    for (int i = 0; i < 100; ++i) chain.run();
    state.counters["ours_ns"] = ours;
    state.counters["tbb_ns"] = theirs;
    state.counters["ratio"] = ours / theirs;
    state.counters["allocs_per_run"] = (allocations - before) / 100.0;
}
BENCHMARK(PullChainVsTbb)->Arg(1)->Arg(11)->Arg(51)->Iterations(3);

// The cost of one more node: depth 11 minus depth 1 over 10, and depth 51 minus 11 over 40.
static void PerNodeVsTbb(benchmark::State& state) {
    Chain one(1), eleven(11), fiftyOne(51);
    TbbChain tbbOne(1), tbbEleven(11), tbbFiftyOne(51);
    double ours = 0, theirs = 0, ours51 = 0, theirs51 = 0;
    for (auto _ : state) {
        const double o1 = nanosecondsPerRun(one, 2000), t1 = nanosecondsPerRun(tbbOne, 2000);
        const double o11 = nanosecondsPerRun(eleven, 2000),
                     t11 = nanosecondsPerRun(tbbEleven, 2000);
        const double o51 = nanosecondsPerRun(fiftyOne, 500),
                     t51 = nanosecondsPerRun(tbbFiftyOne, 500);
        ours = (o11 - o1) / 10, theirs = (t11 - t1) / 10;
        ours51 = (o51 - o11) / 40, theirs51 = (t51 - t11) / 40;
    }
    state.counters["ours_node_ns"] = ours;
    state.counters["tbb_node_ns"] = theirs;
    state.counters["ratio"] = ours / theirs;
    state.counters["ours_node_ns_51"] = ours51;
    state.counters["tbb_node_ns_51"] = theirs51;
}
BENCHMARK(PerNodeVsTbb)->Iterations(3);
