#include <algorithm>
#include <chrono>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>
#include <boost/make_shared.hpp>
#include <boost/thread/condition_variable.hpp>
#include <boost/thread/mutex.hpp>

#include "engine/tessarity_private.h"
#include "graph/event.h"
#include "graph/filter_primitive.h"
#include "graph/node_filter.h"
#include "graph/node_sink.h"
#include "graph/node_source.h"
#include "graph/port.h"
#include "runtime/process.h"
#include "runtime/scheduler.h"

using namespace Tessarity;

namespace {

class PassThrough : public FilterPrimitive {
public:
    PassThrough() : FilterPrimitive("PassThrough") {
        _addInput("in");
        _addOutput("out");
    }
    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
        long long) override {
        return inputs;
    }
};

// source -> `length` nodes over one filter -> sink "out". A frequency above a million runs
// the process at every new time. Ports point at their nodes without owning them, so the
// nodes are kept in `nodes`, as a composite filter keeps its inner nodes.
boost::shared_ptr<Process> makeChain(const boost::shared_ptr<NodeSource>& source, int length,
                                     std::vector<boost::shared_ptr<NodeFilter>>& nodes) {
    static const boost::shared_ptr<Filter> filter = boost::make_shared<PassThrough>();
    boost::shared_ptr<Port> upstream = source->getOutput("out");
    for (int i = 0; i < length; ++i) {
        nodes.push_back(boost::make_shared<NodeFilter>("n" + std::to_string(i), filter));
        nodes.back()->getInput("in")->attach(upstream);
        upstream = nodes.back()->getOutput("out");
    }
    auto sink = boost::make_shared<NodeSink>("out");
    sink->getInput("in")->attach(upstream);
    auto process = boost::make_shared<Process>("chain", nodes.back(), 0, 1e7f, Type::Duration());
    process->addSource(source);
    process->addSink(sink);
    return process;
}

}  // namespace

// The cost of running a process of one pass-through node, against calling the filter alone.
static void ProcessUpdateChain(benchmark::State& state) {
    auto source = boost::make_shared<NodeSource>("camera");
    source->setData(boost::make_shared<Data>(1));
    std::vector<boost::shared_ptr<NodeFilter>> nodes;
    boost::shared_ptr<Process> process = makeChain(source, static_cast<int>(state.range(0)), nodes);
    long long time = 1;
    for (auto _ : state) process->update(Type::Time(time++));
    // Reported as nodes per second: its inverse is the cost of one node.
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(ProcessUpdateChain)->Arg(1)->Arg(10);

static void FilterCalledDirectly(benchmark::State& state) {
    PassThrough filter;
    std::vector<boost::shared_ptr<Data>> inputs{boost::make_shared<Data>(1)};
    StringHash process("chain");
    for (auto _ : state) benchmark::DoNotOptimize(filter.applyFilter(inputs, process, process, 0));
}
BENCHMARK(FilterCalledDirectly);

// From setData on a source to the callback of the sink of the process it triggers, on an
// engine with two otherwise idle workers. The time is taken in the callback itself.
static void EventLatency(benchmark::State& state) {
    typedef std::chrono::steady_clock Clock;
    boost::mutex mutex;
    boost::condition_variable arrived;
    long long seen = 0;
    Clock::time_point called;
    TessarityPrivate engine(2);
    auto source = boost::make_shared<NodeSource>("trigger");
    std::vector<boost::shared_ptr<NodeFilter>> nodes;
    boost::shared_ptr<Process> process = makeChain(source, 1, nodes);
    process->getSinks().at("out")->addEvent(boost::make_shared<Event>([&](boost::shared_ptr<Data>) {
        const Clock::time_point now = Clock::now();
        {
            boost::mutex::scoped_lock lock(mutex);
            called = now;
            ++seen;
        }
        arrived.notify_one();
    }));
    source->addEvent(boost::make_shared<Event>(boost::weak_ptr<Process>(process),
                                               boost::weak_ptr<Scheduler>(engine.getScheduler())));
    engine.getProcessRegistry().add(process);

    // A job for a process that a worker still holds is dropped, as the scheduler drops every
    // job for a running process; so each event waits, untimed, for the run before it to end,
    // and a lost one is counted rather than waited for.
    std::vector<double> latencies;
    int lost = 0;
    for (auto _ : state) {
        state.PauseTiming();
        std::this_thread::sleep_for(std::chrono::microseconds(200));
        state.ResumeTiming();
        auto value = boost::make_shared<Data>(1);
        value->setTimestamp(Type::Time::now());
        long long expected;
        {
            boost::mutex::scoped_lock lock(mutex);
            expected = seen + 1;
        }
        const Clock::time_point start = Clock::now();
        source->setData(value);
        boost::mutex::scoped_lock lock(mutex);
        if (!arrived.wait_for(lock, boost::chrono::seconds(1), [&] { return seen >= expected; })) {
            ++lost;
            seen = expected;
            continue;
        }
        latencies.push_back(std::chrono::duration<double, std::micro>(called - start).count());
    }
    std::sort(latencies.begin(), latencies.end());
    state.counters["median_us"] = latencies[latencies.size() / 2];
    state.counters["p99_us"] = latencies[latencies.size() * 99 / 100];
    state.counters["lost"] = lost;
}
BENCHMARK(EventLatency)->Iterations(2000)->UseRealTime();
