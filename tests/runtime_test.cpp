// Filter nodes, sinks, processes and events: what a run computes, keeps and releases.
#include <climits>
#include <functional>
#include <sstream>
#include <stdexcept>

#include <gtest/gtest.h>
#include <boost/make_shared.hpp>
#include <boost/thread/condition_variable.hpp>

#include "aggregatedsink.h"
#include "event.h"
#include "filterprimitive.h"
#include "logcapture.h"
#include "memorymanager.h"
#include "nodefilter.h"
#include "nodesink.h"
#include "nodesource.h"
#include "port.h"
#include "process.h"
#include "scheduler.h"
#include "tessarity_p.h"

using namespace Tessarity;

namespace {

typedef std::vector<boost::shared_ptr<Data>> Values;

// Records what its node asks of it. It answers `body(inputs)` if set, else `outputs`, or, when
// bound to a memory manager, the number of its runs under (process, request).
class Probe : public FilterPrimitive {
public:
    Probe(int inputs, int outputs) : FilterPrimitive("Probe") {
        for (int i = 1; i <= inputs; ++i) _addInput("in" + std::to_string(i));
        for (int i = 1; i <= outputs; ++i) _addOutput("out" + std::to_string(i));
    }
    Values applyFilter(const Values& inputs, const StringHash& process, const StringHash& request,
                       long long) override {
        ++applied;
        received = inputs;
        requests.push_back(request.getText());
        if (MemoryManager* memory = _getMemoryManager()) {
            boost::shared_ptr<Data> runs = memory->getData(process, request);
            memory->setData(process, request, boost::make_shared<Data>(runs ? int(*runs) + 1 : 1));
            return {memory->getData(process, request)};
        }
        return body ? body(inputs) : outputs;
    }
    void abortFilter(const StringHash&, const StringHash&, long long) override { ++aborted; }
    void synchronize(const Type::Time& time, const Type::Duration&, const StringHash&,
                     const StringHash&, long long) override {
        ++opened;
        times.push_back(time);
    }
    void synchronizeRelease(const StringHash&, const StringHash&, long long) override { ++closed; }

    int applied = 0, aborted = 0, opened = 0, closed = 0;
    Values received, outputs;
    std::vector<std::string> requests;
    std::vector<Type::Time> times;
    std::function<Values(const Values&)> body;
};

boost::shared_ptr<Data> integer(int value) { return boost::make_shared<Data>(value); }
int num(const boost::shared_ptr<Data>& data) { return data ? int(*data) : INT_MIN; }
Values passThrough(const Values& inputs) { return inputs; }
Values array(const boost::shared_ptr<Data>& data) { return *data; }
Type::Time at(long long microseconds) { return Type::Time(microseconds); }
const StringHash kProc("proc");
const Type::Duration kTolerance(0);

// "level category|message" for each captured line.
std::vector<std::string> lines(const LogCapture& log) {
    std::vector<std::string> out;
    for (const LogCapture::Line& line : log.lines())
        out.push_back(std::to_string(line.level) + " " + line.category + "|" + line.message);
    return out;
}

// The text of the std::invalid_argument that `call` throws, or "" if it throws none.
std::string refusal(const std::function<void()>& call) {
    try {
        call();
    } catch (const std::invalid_argument& e) {
        return e.what();
    }
    return "";
}

// One filter node with a source "srcN" on each of its first `bound` inputs (all if negative)
// and a sink "sinkN" on each output, in a process named "proc" of priority 3.
struct Graph {
    explicit Graph(boost::shared_ptr<Probe> probe, float frequency = 4.0f, int bound = -1) {
        node = boost::make_shared<NodeFilter>("node", probe);
        process = boost::make_shared<Process>("proc", node, 3, frequency, kTolerance);
        const std::size_t count = bound < 0 ? node->getInputs().size() : std::size_t(bound);
        for (std::size_t i = 0; i < count; ++i) {
            sources.push_back(boost::make_shared<NodeSource>("src" + std::to_string(i + 1)));
            node->getInputs()[i]->attach(sources.back()->getOutput("out"));
            process->addSource(sources.back());
        }
        for (std::size_t i = 0; i < node->getOutputs().size(); ++i) {
            auto sink = boost::make_shared<NodeSink>("sink" + std::to_string(i + 1));
            sink->getInputs()[0]->attach(node->getOutputs()[i]);
            process->addSink(sink);
        }
    }
    boost::shared_ptr<NodeSink> sink(int i) const {
        return process->getSinks().at("sink" + std::to_string(i));
    }

    boost::shared_ptr<NodeFilter> node;
    std::vector<boost::shared_ptr<NodeSource>> sources;
    boost::shared_ptr<Process> process;
};

}  // namespace

TEST(NodeFilter, SharedNodeComputesOncePerRequest) {
    LogCapture log;
    {
        auto probe = boost::make_shared<Probe>(1, 2);
        probe->outputs = {integer(1), integer(2)};
        Graph graph(probe);
        graph.sources[0]->setData(integer(0));
        for (int round = 1; round <= 2; ++round) {
            graph.sink(1)->synchronize(at(round), kTolerance, kProc, kProc, 0);
            graph.sink(2)->synchronize(at(round), kTolerance, kProc, kProc, 0);
            EXPECT_EQ(probe->opened, round);
            EXPECT_EQ(num(graph.sink(1)->requestData(kProc, kProc, 0, nullptr)), 1);
            EXPECT_EQ(probe->closed, round - 1);  // the second sink still holds the result
            EXPECT_EQ(num(graph.sink(2)->requestData(kProc, kProc, 0, nullptr)), 2);
            EXPECT_EQ(probe->applied, round);
            EXPECT_EQ(probe->closed, round);
        }
    }
    EXPECT_EQ(log.countAtMost(kelvo::log::Error), 0u);
}

TEST(NodeFilter, MissingRequiredInputAbortsAndReleasesEverything) {
    LogCapture log;
    {
        // in1 has a value, in2 has none, in3 comes from another filter node.
        auto feed = boost::make_shared<NodeSource>("feed");
        auto upstream = boost::make_shared<Probe>(1, 1);
        upstream->body = passThrough;
        auto upNode = boost::make_shared<NodeFilter>("up", upstream);
        upNode->getInputs()[0]->attach(feed->getOutput("out"));
        auto probe = boost::make_shared<Probe>(3, 1);
        probe->body = passThrough;
        Graph graph(probe, 4.0f, 2);
        graph.node->getInputs()[2]->attach(upNode->getOutputs()[0]);
        graph.sources[0]->setData(integer(1));
        feed->setData(integer(3));

        EXPECT_TRUE(graph.process->update(at(1000000)));
        EXPECT_EQ(probe->applied, 0);
        EXPECT_EQ(probe->aborted, 1);
        EXPECT_EQ(upstream->applied, 0);  // walked by requestEmpty
        EXPECT_EQ(upstream->aborted, 1);
        EXPECT_EQ(upstream->closed, 1);
        EXPECT_FALSE(graph.sink(1)->getLastData());

        graph.sources[1]->setData(integer(2));
        graph.process->update(at(2000000));
        EXPECT_EQ(probe->applied, 1);
        EXPECT_EQ(upstream->applied, 1);
    }
    // An unbalanced count would be reported when the nodes die.
    EXPECT_EQ(log.countAtMost(kelvo::log::Error), 0u);
}

TEST(NodeFilter, OptionalDefaultAndMissingInputs) {
    LogCapture log;
    {
        auto probe = boost::make_shared<Probe>(4, 1);
        probe->getInputs()[0]->setOptional(true);
        probe->getInputs()[1]->setDefaultData(integer(7));
        probe->getInputs()[2]->setDefaultData(integer(8));
        probe->getInputs()[3]->setDefaultData(integer(9));
        probe->outputs = {integer(0)};
        Graph graph(probe, 4.0f, 3);  // in4 unbound: the node port has no default of its own
        graph.sources[2]->setData(integer(3));
        graph.process->update(at(1000000));
        ASSERT_EQ(probe->applied, 1);
        ASSERT_EQ(probe->received.size(), 4u);
        EXPECT_FALSE(probe->received[0]);
        EXPECT_EQ(num(probe->received[1]), 7);
        EXPECT_EQ(num(probe->received[2]), 3);
        ASSERT_TRUE(probe->received[3]);
        EXPECT_EQ(num(probe->received[3]), 9);
    }
    EXPECT_EQ(log.countAtMost(kelvo::log::Error), 0u);
}

TEST(NodeFilter, OutputChoiceAndUnknownPorts) {
    LogCapture log;
    auto probe = boost::make_shared<Probe>(1, 3);
    probe->outputs = {integer(1), nullptr};  // out2 answers null, out3 nothing at all
    Graph graph(probe);
    graph.sources[0]->setData(integer(0));
    const boost::shared_ptr<NodeFilter>& node = graph.node;

    node->synchronize(at(1), kTolerance, kProc, kProc, 0);
    EXPECT_FALSE(node->requestData(kProc, kProc, 0, boost::make_shared<Port>("out1")));
    EXPECT_EQ(probe->applied, 1);
    EXPECT_EQ(num(node->requestData(kProc, kProc, 0, node->getOutputs()[0])), 1);
    auto exported = boost::make_shared<Port>("x", node->getOutputs()[0]);
    EXPECT_EQ(num(node->requestData(kProc, kProc, 0, exported)), 1);
    EXPECT_FALSE(node->requestData(kProc, kProc, 0, node->getOutputs()[1]));
    EXPECT_FALSE(node->requestData(kProc, kProc, 0, node->getOutputs()[2]));
    EXPECT_FALSE(node->requestData(kProc, kProc, 0, nullptr));
    node->requestEmpty(kProc, kProc, 0, nullptr);
    EXPECT_EQ(probe->applied, 1);
    node->synchronizeRelease(kProc, kProc, 0);
    EXPECT_EQ(lines(log),
              (std::vector<std::string>{
                  "1 tessarity.nodeFilter|node->requestData(proc): No output port specified",
                  "1 tessarity.nodeFilter|node->requestEmpty(proc): No output port specified"}));
}

TEST(NodeFilter, NodeWithoutFilterReports) {
    LogCapture log;
    {
        NodeFilter node("empty", boost::shared_ptr<Filter>());
        EXPECT_TRUE(node.getInputs().empty() && node.getOutputs().empty());
        node.synchronize(at(1), kTolerance, kProc, kProc, 0);
        node.synchronizeRelease(kProc, kProc, 0);
    }
    EXPECT_EQ(
        lines(log),
        (std::vector<std::string>{
            "1 tessarity.nodeFilter|empty->_synchronize(proc): Filter node doesn't own a filter !",
            "1 tessarity.nodeFilter|empty->_synchronizeRelease(proc): Invalid release on process "
            "proc"}));
}

TEST(NodeFilter, FilterRequestIsPerNodeAndStableAcrossRuns) {
    MemoryManager memory;
    auto probe = boost::make_shared<Probe>(0, 1);
    probe->bindMemoryManager(&memory);
    auto a = boost::make_shared<NodeFilter>("a", probe);
    auto b = boost::make_shared<NodeFilter>("b", probe);
    Process process("proc", a, 3, 4.0f, kTolerance);
    for (const auto& node : {a, b}) {
        auto sink = boost::make_shared<NodeSink>("s" + node->getName());
        sink->getInputs()[0]->attach(node->getOutputs()[0]);
        process.addSink(sink);
    }
    process.update(at(1000000));
    process.update(at(2000000));
    EXPECT_EQ(num(process.getLastData("sa")), 2);
    EXPECT_EQ(num(process.getLastData("sb")), 2);

    std::ostringstream requestA, requestB;
    requestA << "proc__" << static_cast<const void*>(a.get());
    requestB << "proc__" << static_cast<const void*>(b.get());
    EXPECT_EQ(probe->requests, (std::vector<std::string>{requestA.str(), requestB.str(),
                                                         requestA.str(), requestB.str()}));
    EXPECT_EQ(num(memory.getData(kProc, StringHash(requestB.str()))), 2);
}

TEST(NodeFilter, ValueSetDuringARunReachesTheNextRun) {
    auto writer = boost::make_shared<Probe>(1, 1);
    Graph graph(writer);
    writer->body = [&](const Values& inputs) {
        graph.sources[0]->setData(integer(num(inputs[0]) + 10));
        return inputs;
    };
    auto reader = boost::make_shared<Probe>(1, 1);
    reader->body = passThrough;
    auto readerNode = boost::make_shared<NodeFilter>("reader", reader);
    readerNode->getInputs()[0]->attach(graph.sources[0]->getOutput("out"));
    auto late = boost::make_shared<NodeSink>("sink9");  // pulled after sink1
    late->getInputs()[0]->attach(readerNode->getOutputs()[0]);
    graph.process->addSink(late);

    graph.sources[0]->setData(integer(1));
    graph.process->update(at(1000000));
    EXPECT_EQ(num(late->getLastData()), 1);
    graph.process->update(at(2000000));
    EXPECT_EQ(num(graph.sink(1)->getLastData()), 11);
    EXPECT_EQ(num(late->getLastData()), 11);
}

TEST(Sink, StoresEveryRunAndRaisesOnValuesOnly) {
    auto probe = boost::make_shared<Probe>(1, 1);
    probe->body = passThrough;
    Graph graph(probe);
    std::vector<std::string> raised;
    for (std::string tag : {"first", "second"})
        graph.sink(1)->addEvent(
            boost::make_shared<Event>([&raised, tag](boost::shared_ptr<Data> data) {
                raised.push_back(tag + std::to_string(num(data)));
            }));

    graph.sources[0]->setData(integer(5));
    graph.process->update(at(1000000));
    EXPECT_EQ(num(graph.process->getLastData("sink1")), 5);
    graph.sources[0]->setData(nullptr);
    graph.process->update(at(2000000));
    EXPECT_FALSE(graph.process->getLastData("sink1"));  // overwritten, not kept
    graph.sources[0]->setData(integer(6));
    graph.process->update(at(3000000));
    EXPECT_EQ(raised, (std::vector<std::string>{"first5", "second5", "first6", "second6"}));
    EXPECT_TRUE(graph.sink(1)->reset());
    EXPECT_FALSE(graph.sink(1)->getLastData());
}

TEST(Sink, AggregatedValueInNameOrder) {
    std::vector<boost::shared_ptr<NodeSource>> sources;
    std::vector<boost::shared_ptr<NodeSink>> sinks;
    AggregatedSink group("group"), empty("none");
    Values raised;
    for (AggregatedSink* g : {&group, &empty})
        g->addEvent(boost::make_shared<Event>(
            [&raised](boost::shared_ptr<Data> data) { raised.push_back(data); }));
    for (const char* name : {"b", "a", "c"}) {
        sources.push_back(boost::make_shared<NodeSource>(name));
        sinks.push_back(boost::make_shared<NodeSink>(name));
        sinks.back()->getInputs()[0]->attach(sources.back()->getOutput("out"));
        EXPECT_TRUE(group.addSink(sinks.back()));
    }
    EXPECT_FALSE(group.addSink(sinks[1]));
    EXPECT_FALSE(group.addSink(boost::make_shared<NodeSink>("a")));
    ASSERT_EQ(group.getSinks().size(), 3u);
    EXPECT_EQ(group.getSinks().at("a"), sinks[1]);

    auto fill = [&](std::size_t i, boost::shared_ptr<Data> value) {
        sources[i]->setData(value);
        sinks[i]->synchronize(at(1), kTolerance, kProc, kProc, 0);
        sinks[i]->requestData(kProc, kProc, 0, nullptr);
    };
    for (std::size_t i = 0; i < 3; ++i) fill(i, integer(int(i) + 1));  // b=1 a=2 c=3
    group.update();
    ASSERT_TRUE(group.getLastData());
    Values combined = array(group.getLastData());
    ASSERT_EQ(combined.size(), 3u);
    EXPECT_EQ(num(combined[0]) * 100 + num(combined[1]) * 10 + num(combined[2]), 213);
    EXPECT_EQ(raised, Values{group.getLastData()});

    fill(2, nullptr);  // one member without a value clears the group
    group.update();
    EXPECT_FALSE(group.getLastData());
    EXPECT_EQ(raised.size(), 1u);

    empty.update();
    ASSERT_TRUE(empty.getLastData());
    EXPECT_EQ(empty.getLastData()->getType(), Array);
    EXPECT_TRUE(array(empty.getLastData()).empty());
    EXPECT_EQ(raised.size(), 2u);
}

TEST(Process, PeriodArithmetic) {
    Process quarter("quarter", nullptr, 3, 4.0f, kTolerance);
    EXPECT_TRUE(quarter.update(at(1000000)));  // no sinks: the time still moves
    EXPECT_EQ(quarter.getTimeToLive(at(1000000)).getTotalMicroseconds(), 250000);
    EXPECT_EQ(quarter.getTimeToLive(at(1300000)).getTotalMicroseconds(), -50000);
    EXPECT_TRUE(quarter.isValid(at(1249999)));
    EXPECT_FALSE(quarter.isValid(at(1250000)));
    EXPECT_TRUE(quarter.isValid(at(750001)));
    EXPECT_FALSE(quarter.isValid(at(750000)));

    // The quotient is taken in single precision, then truncated.
    Process slow("slow", nullptr, 3, 0.003f, kTolerance);
    EXPECT_EQ(slow.getTimeToLive(at(0)).getTotalMicroseconds(), 333333344);

    Process never("never", nullptr, 3, 0.0f, kTolerance);
    EXPECT_TRUE(never.isValid(at(0)));
    EXPECT_TRUE(never.isValid(at(LLONG_MAX)));
    EXPECT_TRUE(never.isValid(at(LLONG_MIN)));
    EXPECT_EQ(never.getTimeToLive(at(1000)).getTotalMicroseconds(), LLONG_MAX - 999);
}

TEST(Process, WhenARunIsDue) {
    auto probe = boost::make_shared<Probe>(1, 1);
    probe->body = passThrough;
    Graph graph(probe);
    EXPECT_FALSE(graph.process->watchSource(graph.sources[0]));
    EXPECT_TRUE(graph.process->watchSource(graph.sources[0]));
    graph.sources[0]->setData(integer(1));
    graph.process->update(at(1000000));
    graph.sources[0]->setData(integer(2));
    graph.process->update(at(1000000));  // same time
    graph.process->update(at(1100000));  // inside the period
    EXPECT_EQ(probe->applied, 1);
    graph.process->update(at(1250000));
    graph.process->update(at(1500000));  // past the period, nothing changed
    EXPECT_EQ(probe->applied, 3);

    // Period 0: at an unchanged time the watched sources alone decide.
    graph.process->setFrequency(2e6f);
    EXPECT_FALSE(graph.process->isValid(at(1500000)));
    graph.process->update(at(1500000));
    EXPECT_EQ(probe->applied, 3);
    graph.sources[0]->setData(integer(3));
    graph.process->update(at(1500000));
    EXPECT_EQ(probe->applied, 4);
    graph.process->watchSource(boost::make_shared<NodeSource>("unset"));  // uid 0
    graph.process->update(at(1500000));
    graph.process->update(at(1500000));
    EXPECT_EQ(probe->applied, 6);

    // Frequency 0: never recomputed, even if it never ran.
    auto idle = boost::make_shared<Probe>(0, 1);
    Graph never(idle, 0.0f);
    EXPECT_TRUE(never.process->update(at(5000000)));
    EXPECT_FALSE(never.process->getData("sink1", at(6000000)));
    EXPECT_EQ(idle->applied, 0);
}

TEST(Process, TimeToLiveWhileRunning) {
    auto probe = boost::make_shared<Probe>(0, 1);
    probe->outputs = {integer(1)};
    Graph graph(probe);
    Process* process = graph.process.get();
    long long busy = 0, busyZero = 0;
    graph.sink(1)->addEvent(boost::make_shared<Event>([&](boost::shared_ptr<Data>) {
        busy = process->getTimeToLive(at(1100000)).getTotalMicroseconds();
        process->setFrequency(0.0f);
        busyZero = process->getTimeToLive(at(1100000)).getTotalMicroseconds();
    }));
    ASSERT_TRUE(process->update(at(1000000)));
    EXPECT_EQ(busy, 250000);  // the period, not the 150000 left
    EXPECT_EQ(busyZero, LLONG_MIN);
    EXPECT_EQ(process->getTimeToLive(at(2000000)).getTotalMicroseconds(), LLONG_MAX - 999999);
}

TEST(Process, FilterExceptionLeavesCountsStanding) {
    LogCapture log;
    {
        auto probe = boost::make_shared<Probe>(0, 1);
        probe->body = [](const Values&) -> Values { throw std::runtime_error("broken"); };
        Graph graph(probe);
        EXPECT_THROW(graph.process->update(at(1000000)), std::runtime_error);
        // Free again: the time left, not the whole period.
        EXPECT_EQ(graph.process->getTimeToLive(at(1100000)).getTotalMicroseconds(), 150000);
        EXPECT_TRUE(log.lines().empty());
    }
    const std::string count = "\n  process: " + std::to_string(kProc.getHash()) + ", count: 1\n";
    EXPECT_EQ(
        lines(log),
        (std::vector<std::string>{
            "1 tessarity.node|sink1->~Node(): There is still active synchronize count:" + count,
            "1 tessarity.nodeFilter|node->~NodeFilter(): There is still count to entry cache:" +
                count,
            "1 tessarity.node|node->~Node(): There is still active synchronize count:" + count}));
}

TEST(Process, ResetThenUpdateRunsAtOnce) {
    auto probe = boost::make_shared<Probe>(1, 1);
    probe->body = passThrough;
    Graph graph(probe, 2e6f);
    auto group = boost::make_shared<AggregatedSink>("all");
    group->addSink(graph.sink(1));
    graph.process->addAggregatedSink(group);
    graph.process->watchSource(graph.sources[0]);
    graph.sources[0]->setData(integer(4));

    graph.process->update(at(0));
    graph.process->update(at(0));
    EXPECT_EQ(probe->applied, 1);
    EXPECT_EQ(array(graph.process->getLastData("all")).size(), 1u);
    EXPECT_TRUE(graph.process->reset());
    EXPECT_FALSE(graph.process->getLastData("sink1"));
    EXPECT_FALSE(graph.process->getLastData("all"));
    graph.process->update(at(0));  // only the forgotten uid makes this run
    EXPECT_EQ(probe->applied, 2);
    EXPECT_EQ(num(graph.process->getLastData("sink1")), 4);
}

TEST(Process, SettersAndDeclarations) {
    LogCapture log;
    Process process("proc", nullptr, 9, -2.0f, Type::Duration(-5));
    EXPECT_EQ(process.getPriority(), 8u);
    EXPECT_EQ(process.getFrequency(), -2.0f);  // stored as given
    EXPECT_EQ(process.getTolerance().getTotalMicroseconds(), -5);
    EXPECT_TRUE(process.setPriority(200));
    EXPECT_EQ(process.getPriority(), 8u);
    EXPECT_TRUE(process.setFrequency(-1.0f));
    EXPECT_EQ(process.getFrequency(), 0.0f);
    EXPECT_TRUE(process.setTolerance(Type::Duration(0)));
    EXPECT_TRUE(process.setTolerance(Type::Duration(7)));

    const std::string refused =
        "Can't set tolerance for process \"proc\":  tolerance must be positive.";
    EXPECT_EQ(refusal([&] { process.setTolerance(Type::Duration(-1)); }), refused);
    EXPECT_EQ(process.getTolerance().getTotalMicroseconds(), 7);

    EXPECT_TRUE(process.addSource(boost::make_shared<NodeSource>("src")));
    EXPECT_FALSE(process.addSource(boost::make_shared<NodeSource>("src")));
    EXPECT_TRUE(process.addSink(boost::make_shared<NodeSink>("out")));
    EXPECT_FALSE(process.addSink(boost::make_shared<NodeSink>("out")));
    EXPECT_TRUE(process.addAggregatedSink(boost::make_shared<AggregatedSink>("all")));
    EXPECT_FALSE(process.addAggregatedSink(boost::make_shared<AggregatedSink>("all")));
    const std::string error = "2 tessarity.process   |";
    EXPECT_EQ(
        lines(log),
        (std::vector<std::string>{
            error + refused, error + "Can't add sink to process. Sink already present.",
            error + "Can't add aggregated sink to process. Aggregated sink already present."}));
}

TEST(Process, ReadingSinksAndLiveness) {
    LogCapture log;
    auto probe = boost::make_shared<Probe>(0, 1);
    probe->outputs = {integer(3)};
    Graph graph(probe);
    Process& process = *graph.process;

    const std::string unknownData =
        "Can't get data(\"nope\"): the process proc doesn't own this sink node.";
    const std::string unknownLast =
        "Can't get last data(\"nope\"): the process proc doesn't own this sink node.";
    EXPECT_EQ(refusal([&] { process.getData("nope", at(1000000)); }), unknownData);
    EXPECT_EQ(refusal([&] { process.getLastData("nope"); }), unknownLast);
    EXPECT_EQ(lines(log), (std::vector<std::string>{"2 tessarity.process   |" + unknownData,
                                                    "2 tessarity.process   |" + unknownLast}));
    EXPECT_EQ(probe->applied, 0);  // the unknown name stopped getData before the run

    process.disable();
    EXPECT_FALSE(process.update(at(1000000)));
    EXPECT_EQ(refusal([&] { EXPECT_FALSE(process.getData("sink1", at(1000000))); }), "");
    EXPECT_EQ(probe->applied, 0);
    process.zombify();
    EXPECT_EQ(num(process.getData("sink1", at(1000000))), 3);
    EXPECT_TRUE(probe->received.empty());  // no inputs: runs with an empty vector
    process.unZombify();
    EXPECT_FALSE(process.getLastData("sink1"));  // kept, but not shown
    process.enable();
    EXPECT_EQ(num(process.getLastData("sink1")), 3);

    // A group wins over a sink of its name.
    auto group = boost::make_shared<AggregatedSink>("sink1");
    group->addSink(graph.sink(1));
    process.addAggregatedSink(group);
    process.update(at(2000000));
    ASSERT_TRUE(process.getLastData("sink1"));
    EXPECT_EQ(process.getLastData("sink1")->getType(), Array);
}

TEST(Event, CallbacksAndProcessJobs) {
    boost::shared_ptr<Data> value = integer(1);
    Event empty((Event::Callback()));
    EXPECT_THROW(empty.raise(value), boost::bad_function_call);

    auto probe = boost::make_shared<Probe>(0, 1);
    probe->outputs = {integer(1)};
    Graph graph(probe, 1.0f);
    graph.process->setPriority(0);  // runs only when a job asks for it
    boost::mutex mutex;
    boost::condition_variable ran;
    int runs = 0;
    graph.sink(1)->addEvent(boost::make_shared<Event>([&](boost::shared_ptr<Data>) {
        boost::mutex::scoped_lock lock(mutex);
        ++runs;
        ran.notify_all();
    }));
    TessarityPrivate engine(1);  // its worker stops before the objects above die
    ASSERT_TRUE(engine._addProcess(graph.process));

    // Neither a deleted process nor a scheduler that is gone gets a job.
    value->setTimestamp(at(5000000));
    auto gone = boost::make_shared<Process>("gone", nullptr, 3, 1.0f, kTolerance);
    Event orphan(gone, engine._getScheduler());
    gone.reset();
    orphan.raise(value);
    auto scheduler = boost::make_shared<Scheduler>(&engine, 0);
    Event stale(graph.process, scheduler);
    scheduler.reset();
    stale.raise(value);

    Event job(graph.process, engine._getScheduler());
    job.raise(value);
    boost::mutex::scoped_lock lock(mutex);
    ASSERT_TRUE(ran.wait_for(lock, boost::chrono::seconds(30), [&] { return runs == 1; }));
    ASSERT_EQ(probe->times.size(), 1u);
    EXPECT_EQ(probe->times[0], at(5000000));  // the value's time, not the clock's
}
