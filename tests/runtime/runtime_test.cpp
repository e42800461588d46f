// Filter nodes, sinks, processes and events: what a run computes, keeps and releases.
#include <sstream>
#include <stdexcept>

#include "engine/tessarity_private.h"
#include "kits/graph_kit.h"
#include "runtime/scheduler.h"

using namespace graphkit;

static Ints settings(const Process& p) {
    return {int(p.getPriority()), int(p.getFrequency()),
            int(p.getTolerance().getTotalMicroseconds())};
}
static long long ttl(const Process& process, long long time) {
    return process.getTimeToLive(at(time)).getTotalMicroseconds();
}

TEST(Sink, SharedNodeFeedsSinksAndGroupsOncePerRun) {
    LogCheck check;
    Values out = {integer(1), integer(2)};
    Graph g(boost::make_shared<Probe>(0, 2, [&](const Values&) { return out; }));
    auto other = boost::make_shared<NodeFilter>("other", g.probe);  // the same filter again
    g.process->addSink(sinkOn(other->getOutputs()[0], "sink3"));
    auto group = boost::make_shared<AggregatedSink>("sink1");  // wins over the sink
    auto none = boost::make_shared<AggregatedSink>("none");
    Texts raised;
    g.sink(2)->addEvent(record(raised, "a"));
    g.sink(2)->addEvent(record(raised, "b"));
    for (auto a : {group, none}) a->addEvent(record(raised, a->getName()));
    for (auto a : {group, none}) g.process->addAggregatedSink(a);
    for (int i : {2, 1, 3}) EXPECT_TRUE(group->addSink(g.sink(i)));
    EXPECT_FALSE(group->addSink(g.sink(1)) ||
                 group->addSink(boost::make_shared<NodeSink>("sink1")));
    g.process->update(at(1000000));
    EXPECT_EQ(items(g.process->getLastData("sink1")), (Ints{1, 2, 1}));  // in name order
    out[1] = nullptr;  // sink2 now gets none, which also clears the group
    g.process->update(at(2000000));
    EXPECT_FALSE(g.sink(2)->getLastData() || group->getLastData());
    EXPECT_EQ(raised, (Texts{"a2", "b2", "none0", "sink10", "none0"}));
    EXPECT_EQ(items(none->getLastData()), Ints{});

    std::ostringstream a, b;  // the filter's context: the request and the node's address
    a << "proc__" << static_cast<const void*>(g.node.get());
    b << "proc__" << static_cast<const void*>(other.get());
    EXPECT_EQ(g.probe->requests, (Texts{a.str(), b.str(), a.str(), b.str()}));  // once per node
    EXPECT_EQ(g.probe->counts(), (Ints{4, 0, 4, 4}));  // released once all sinks have pulled
}

TEST(NodeFilter, InputsAndOutputsOfAComputation) {
    LogCheck check;  // an unbalanced count would be reported when the nodes die
    // in1 optional, in2 required, in3 fed through another node, in4 unbound: both with
    // defaults, the node's ports having none of their own.
    Graph up(boost::make_shared<Probe>());
    Values seen;
    Graph g(boost::make_shared<Probe>(4, 1, [&](const Values& v) { return seen = v; }), 4.0f, 2);
    g.node->getInputs()[2]->attach(up.node->getOutputs()[0]);
    g.probe->getInputs()[0]->setOptional(true);
    g.probe->getInputs()[2]->setDefaultData(integer(9));
    g.probe->getInputs()[3]->setDefaultData(integer(7));
    up.sources[0]->setData(integer(4));
    g.process->update(at(1000000));
    EXPECT_EQ(g.probe->counts(), (Ints{0, 1, 1, 1}));   // in2 has no value
    EXPECT_EQ(up.probe->counts(), (Ints{0, 1, 1, 1}));  // walked by requestEmpty all the same
    g.sources[1]->setData(integer(3));
    g.process->update(at(2000000));
    EXPECT_EQ(nums(seen), (Ints{kNone, 3, 4, 7}));

    Values out = {integer(1), nullptr};  // out3: none
    auto probe = boost::make_shared<Probe>(0, 3, [&](const Values&) { return out; });
    auto node = boost::make_shared<NodeFilter>("node", probe);
    const auto& outs = node->getOutputs();
    node->synchronize(at(1), kTolerance, kProc, kProc, 0);
    Ints got;  // a foreign port, out1 itself and through a child, out2, out3 (beyond), no port
    for (auto port :
         {boost::make_shared<Port>("out1"), outs[0], boost::make_shared<Port>("x", outs[0]),
          outs[1], outs[2], boost::shared_ptr<Port>()})
        got.push_back(num(node->requestData(kProc, kProc, 0, port)));
    EXPECT_EQ(got, (Ints{kNone, 1, 1, kNone, kNone, kNone}));
    node->requestEmpty(kProc, kProc, 0, nullptr);
    node->requestEmpty(kProc, kProc, 0, outs[0]);  // computed already: no abort
    node->synchronizeRelease(kProc, kProc, 0);
    EXPECT_EQ(probe->counts(), (Ints{1, 0, 1, 1}));
    NodeFilter empty("empty", nullptr);
    empty.synchronize(at(1), kTolerance, kProc, kProc, 0);
    empty.synchronizeRelease(kProc, kProc, 0);
    check.expected = {
        "1 tessarity.nodeFilter|node->requestData(proc): No output port specified",
        "1 tessarity.nodeFilter|node->requestEmpty(proc): No output port specified",
        "1 tessarity.nodeFilter|empty->_synchronize(proc): Filter node doesn't own a filter !",
        "1 tessarity.nodeFilter|empty->_synchronizeRelease(proc): Invalid release on process proc"};
}

TEST(Process, PeriodAndTimeToLive) {
    Process bare("bare", nullptr, 3, 4.0f, kTolerance);
    EXPECT_TRUE(bare.update(at(1000000)));  // no sinks, yet the time moves
    EXPECT_EQ((Ints{int(ttl(bare, 1000000)), int(ttl(bare, 1300000))}), (Ints{250000, -50000}));
    for (long long t : {1249999, 750001}) EXPECT_TRUE(bare.isValid(at(t)));  // strict bounds
    for (long long t : {1250000, 750000}) EXPECT_FALSE(bare.isValid(at(t)));
    // The quotient is taken in single precision, then truncated.
    EXPECT_EQ(ttl(Process("slow", nullptr, 3, 0.003f, kTolerance), 0), 333333344);
    EXPECT_TRUE(Process("never", nullptr, 3, 0.0f, kTolerance).isValid(at(LLONG_MIN)));  // always
}

TEST(Process, RunsSettersAndDeclarations) {
    LogCheck check;
    Graph g(boost::make_shared<Probe>());
    Process& p = *g.process;
    auto group = boost::make_shared<AggregatedSink>("group");
    group->addSink(g.sink(1));
    p.addAggregatedSink(group);
    EXPECT_FALSE(p.watchSource(g.sources[0]));
    EXPECT_TRUE(p.watchSource(g.sources[0]));
    auto step = [&](int value, long long time) {
        if (value != kNone) g.sources[0]->setData(integer(value));
        p.update(at(time));
        return g.probe->applied;
    };
    EXPECT_EQ(step(1, 1000000), 1);
    EXPECT_EQ(step(2, 1000000), 1);  // inside the period, although the source changed
    EXPECT_EQ(step(kNone, 1250000), 2);
    EXPECT_EQ(step(kNone, 1500000), 3);  // past the period, although nothing changed
    p.setFrequency(2e6f);                // period 0: at one time the watched sources decide
    EXPECT_EQ(step(kNone, 1500000), 3);
    EXPECT_EQ(step(3, 1500000), 4);
    EXPECT_TRUE(p.getLastData("group") && p.reset());
    EXPECT_FALSE(p.getLastData("sink1") || p.getLastData("group"));
    EXPECT_EQ(step(kNone, 0), 5);  // at the reset time: only the forgotten uid makes it run
    p.watchSource(boost::make_shared<NodeSource>("unset"));  // uid 0: always changed
    EXPECT_EQ(step(kNone, 0), 6);
    EXPECT_EQ(step(kNone, 0), 7);

    p.setFrequency(4.0f);
    std::vector<long long> busy;
    g.probe->body = [&](const Values&) -> Values {
        busy.push_back(ttl(p, 1100000));
        p.setFrequency(0.0f);
        busy.push_back(ttl(p, 1100000));
        throw std::runtime_error("broken");
    };
    EXPECT_THROW(p.update(at(1000000)), std::runtime_error);
    EXPECT_EQ(busy, (std::vector<long long>{250000, LLONG_MIN}));  // the period, not the time left
    EXPECT_EQ(ttl(p, 2000000), LLONG_MAX - 999999);                // free again; the sum wraps
    EXPECT_THROW(p.getData("nope", at(1000000)), std::invalid_argument);
    EXPECT_THROW(p.getLastData("nope"), std::invalid_argument);
    p.disable();
    EXPECT_FALSE(p.update(at(5000000)) || g.probe->applied != 8);
    Process clamped("clamped", nullptr, 9, -2.0f, Type::Duration(-5));  // only the priority
    EXPECT_EQ(settings(clamped), (Ints{8, -2, -5}));
    EXPECT_TRUE(p.setPriority(200) && p.setFrequency(-1.0f) && p.setTolerance(Type::Duration(0)));
    EXPECT_TRUE(p.setTolerance(Type::Duration(7)));
    EXPECT_THROW(p.setTolerance(Type::Duration(-1)), std::invalid_argument);
    EXPECT_EQ(settings(p), (Ints{8, 0, 7}));
    for (bool first : {true, false}) {
        EXPECT_EQ(p.addSource(boost::make_shared<NodeSource>("src")), first);
        EXPECT_EQ(p.addSink(boost::make_shared<NodeSink>("out")), first);
        EXPECT_EQ(p.addAggregatedSink(boost::make_shared<AggregatedSink>("all")), first);
    }
    // The refusals are logged at error level.
    const std::string error = "2 tessarity.process   |Can't ";
    const std::string unknown = "(\"nope\"): the process proc doesn't own this sink node.";
    const std::string count = "\n  process: " + std::to_string(kProc.getHash()) + ", count: 1\n";
    check.expected = {
        error + "get data" + unknown, error + "get last data" + unknown,
        error + "set tolerance for process \"proc\":  tolerance must be positive.",
        error + "add sink to process. Sink already present.",
        error + "add aggregated sink to process. Aggregated sink already present.",
        // The counts of the run that threw are still standing.
        "1 tessarity.node|sink1->~Node(): There is still active synchronize count:" + count,
        "1 tessarity.nodeFilter|node->~NodeFilter(): There is still count to entry cache:" + count,
        "1 tessarity.node|node->~Node(): There is still active synchronize count:" + count};
}

TEST(Event, CallbacksAndProcessJobs) {
    Ptr value = integer(1);
    EXPECT_THROW(Event(Event::Callback()).raise(value), boost::bad_function_call);
    std::atomic<int> runs(0);
    Graph g(boost::make_shared<Probe>(0, 1, [&](const Values&) { return ++runs, Values(); }), 1.0f);
    g.process->setPriority(0);   // runs only when a job asks for it
    TessarityPrivate engine(1);  // its worker stops before the objects above die
    ASSERT_TRUE(engine.getProcessRegistry().add(g.process));
    value->setTimestamp(at(5000000));
    Event(g.process, boost::weak_ptr<Scheduler>()).raise(value);  // a scheduler that is gone
    Event(g.process, engine.getScheduler()).raise(value);
    for (int i = 0; i < 3000 && runs == 0; ++i)
        boost::this_thread::sleep_for(boost::chrono::milliseconds(10));
    ASSERT_EQ(runs, 1);
    EXPECT_EQ(g.probe->times, std::vector<Type::Time>{at(5000000)});  // the value's time
}
