// The source variants: where a run's snapshot comes from, with the protocol kept balanced.
#include <gtest/gtest.h>
#include <boost/make_shared.hpp>

#include "event.h"
#include "filterprimitive.h"
#include "logcapture.h"
#include "nodefilter.h"
#include "nodeprocesssource.h"
#include "nodepulse.h"
#include "nodesink.h"
#include "nodesourcealias.h"
#include "port.h"
#include "process.h"
#include "sourceadapter.h"

using namespace Tessarity;

namespace {

// Pulls each input once and releases it, as a filter node does at its computing pull.
class Consumer : public Node {
public:
    Consumer(int inputs, const boost::shared_ptr<Node>& upstream) : Node("sink") {
        for (int i = 0; i < inputs; ++i) {
            addInput(boost::make_shared<Port>("in", boost::shared_ptr<Port>(), this));
            getInputs().back()->attach(upstream->getOutput("out"));
        }
    }
    std::vector<boost::shared_ptr<Data>> pull(const StringHash& process) {
        std::vector<boost::shared_ptr<Data>> values;
        for (const boost::shared_ptr<Port>& input : getInputs()) {
            values.push_back(input->requestData(process, process, 1));
            input->synchronizeRelease(process, process, 1);
        }
        return values;
    }
    // Both passes of one run, and the release of this node's own count.
    std::vector<boost::shared_ptr<Data>> run(const StringHash& process, const Type::Time& time,
                                             const Type::Duration& tolerance = Type::Duration()) {
        synchronize(time, tolerance, process, process, 0);
        std::vector<boost::shared_ptr<Data>> values = pull(process);
        synchronizeRelease(process, process, 0);
        return values;
    }
    boost::shared_ptr<Data> requestData(const StringHash&, const StringHash&, long long,
                                        boost::shared_ptr<Port>) override {
        return boost::shared_ptr<Data>();
    }
    void requestEmpty(const StringHash&, const StringHash&, long long,
                      boost::shared_ptr<Port>) override {}
};

boost::shared_ptr<Data> integer(int value) { return boost::make_shared<Data>(value); }
// No value reads as -1, so that a failed check reports instead of crashing.
int asInt(const boost::shared_ptr<Data>& data) { return data ? int(*data) : -1; }

boost::shared_ptr<Event> counter(int& count) {
    return boost::make_shared<Event>([&count](boost::shared_ptr<Data>) { ++count; });
}

const Type::Time kNow(1000);
const Type::Duration kTolerance(0);
const boost::shared_ptr<Port> kNoPort;

}  // namespace

TEST(AliasSource, ForwardsToItsTargetAndFollowsARetarget) {
    auto camera = boost::make_shared<NodeSource>("camera");
    auto other = boost::make_shared<NodeSource>("other");
    auto alias = boost::make_shared<NodeSourceAlias>("view", camera);
    int cameraEvents = 0, aliasEvents = 0;
    camera->addEvent(counter(cameraEvents));
    alias->addEvent(counter(aliasEvents));

    alias->setData(integer(4));
    EXPECT_EQ(asInt(camera->getData(kNow, kTolerance)), 4);
    EXPECT_EQ(cameraEvents, 1);
    EXPECT_EQ(aliasEvents, 0);  // the alias's own events play no part

    other->setData(integer(7));
    other->setData(integer(8));
    alias->setSource(other);
    EXPECT_EQ(asInt(alias->getData(kNow, kTolerance)), 8);
    EXPECT_EQ(alias->getUid(), 2u);
}

TEST(AliasSource, ChainOfAliasesKeepsTheBookkeepingOnTheTarget) {
    LogCapture log;
    StringHash process("p");
    auto camera = boost::make_shared<NodeSource>("camera");
    auto inner = boost::make_shared<NodeSourceAlias>("inner", camera);
    auto outer = boost::make_shared<NodeSourceAlias>("outer", inner);
    auto consumer = boost::make_shared<Consumer>(2, outer);

    outer->setData(integer(1));
    for (int run = 1; run <= 2; ++run) {
        consumer->synchronize(kNow, kTolerance, process, process, 0);
        outer->setData(integer(run + 1));  // reaches the next run only
        EXPECT_EQ(asInt(camera->requestData(process, process, 0, kNoPort)), run);
        std::vector<boost::shared_ptr<Data>> values = consumer->pull(process);
        EXPECT_EQ(asInt(values[0]), run);
        EXPECT_EQ(values[0], values[1]);
        consumer->synchronizeRelease(process, process, 0);
    }
    EXPECT_TRUE(log.lines().empty());

    // Both passes reach the target, whose snapshot is gone now.
    EXPECT_FALSE(outer->requestData(process, process, 0, kNoPort));
    outer->requestEmpty(process, process, 0, kNoPort);
    consumer.reset();
    outer.reset();
    inner.reset();
    camera.reset();
    std::vector<LogCapture::Line> lines = log.lines();
    ASSERT_EQ(lines.size(), 2u);  // and no destructor finds a count left open
    EXPECT_EQ(lines[0].message, "camera->requestData(p): No cache found.");
    EXPECT_EQ(lines[1].message, "camera->requestEmpty(p): no cache found.");
}

TEST(AliasSource, RetargetBetweenThePassesBreaksTheBalance) {
    LogCapture log;
    StringHash process("p");
    auto camera = boost::make_shared<NodeSource>("camera");
    auto other = boost::make_shared<NodeSource>("other");
    auto alias = boost::make_shared<NodeSourceAlias>("view", camera);
    auto consumer = boost::make_shared<Consumer>(1, alias);
    camera->setData(integer(1));

    consumer->synchronize(kNow, kTolerance, process, process, 0);
    alias->setSource(other);
    EXPECT_FALSE(consumer->pull(process)[0]);
    consumer->synchronizeRelease(process, process, 0);
    camera.reset();

    std::vector<LogCapture::Line> lines = log.lines();
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0].message, "other->requestData(p): No cache found.");
    EXPECT_EQ(lines[1].message, "other->synchronizeRelease(p): Invalid release on process p");
    EXPECT_EQ(lines[2].message.find("camera->~NodeSource()"), 0u);  // the run's count
    EXPECT_EQ(lines[3].message.find("camera->~Node()"), 0u);
}

TEST(PulseSource, ValueServesOneRunThenTheDefault) {
    LogCapture log;
    StringHash a("a"), b("b");
    auto pulse = boost::make_shared<NodePulse>("trigger");
    auto consumer = boost::make_shared<Consumer>(2, pulse);
    int events = 0;
    pulse->addEvent(counter(events));

    pulse->setDefaultData(integer(1));
    EXPECT_EQ(asInt(pulse->getData(kNow, kTolerance)), 1);
    EXPECT_EQ(pulse->getUid(), 0u);

    pulse->setData(integer(0));
    std::vector<boost::shared_ptr<Data>> values = consumer->run(a, kNow);
    EXPECT_EQ(asInt(values[0]), 0);
    EXPECT_EQ(values[0], values[1]);  // the second synchronize of the run does not fall back
    EXPECT_EQ(pulse->getUid(), 2u);
    // Another process sharing the pulse gets the default, and so does the next run.
    EXPECT_EQ(asInt(consumer->run(b, kNow)[0]), 1);
    EXPECT_EQ(asInt(consumer->run(a, kNow)[0]), 1);
    EXPECT_EQ(pulse->getUid(), 4u);
    EXPECT_EQ(events, 1);

    consumer.reset();
    pulse.reset();
    EXPECT_TRUE(log.lines().empty());
}

TEST(PulseSource, WithoutDefaultIsNullBetweenValues) {
    StringHash process("p");
    auto pulse = boost::make_shared<NodePulse>("trigger");
    auto consumer = boost::make_shared<Consumer>(1, pulse);

    EXPECT_FALSE(consumer->run(process, kNow)[0]);
    EXPECT_EQ(pulse->getUid(), 0u);
    pulse->setData(integer(5));
    EXPECT_EQ(asInt(consumer->run(process, kNow)[0]), 5);
    EXPECT_FALSE(consumer->run(process, kNow)[0]);
    EXPECT_EQ(pulse->getUid(), 2u);
}

namespace {

// Hands its input on, and counts its runs so that a test sees when the process computed.
class PassThrough : public FilterPrimitive {
public:
    PassThrough() : FilterPrimitive("PassThrough"), runs(0) {
        _addInput("in");
        _addOutput("out");
    }
    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
        long long) override {
        ++runs;
        return {inputs[0]};
    }
    int runs;
};

// The process "upstream", of one run per second: camera -> PassThrough -> sink "out".
struct Upstream {
    Upstream()
        : camera(boost::make_shared<NodeSource>("camera")),
          filter(boost::make_shared<PassThrough>()),
          node(boost::make_shared<NodeFilter>("pass", filter)),
          sink(boost::make_shared<NodeSink>("out")),
          process(boost::make_shared<Process>("upstream", node, 3, 1.0f, Type::Duration(0))) {
        node->getInput("in")->attach(camera->getOutput("out"));
        sink->getInput("in")->attach(node->getOutput("out"));
        process->addSource(camera);
        process->addSink(sink);
    }
    boost::shared_ptr<NodeSource> camera;
    boost::shared_ptr<PassThrough> filter;
    boost::shared_ptr<NodeFilter> node;
    boost::shared_ptr<NodeSink> sink;
    boost::shared_ptr<Process> process;
};

const Type::Time kStart(10000000);

}  // namespace

TEST(ProcessSource, DependentRunsItsSourceProcessWhenDue) {
    LogCapture log;
    StringHash dependent("dependent");
    {
        Upstream up;
        auto source = boost::make_shared<NodeProcessSource>("upstream:out", up.process, "out");
        EXPECT_EQ(source->getDependencies(), std::vector<std::string>{"upstream"});
        auto consumer = boost::make_shared<Consumer>(2, source);

        up.camera->setData(integer(1));
        std::vector<boost::shared_ptr<Data>> values = consumer->run(dependent, kStart);
        EXPECT_EQ(asInt(values[0]), 1);
        EXPECT_EQ(values[0], values[1]);
        EXPECT_EQ(up.filter->runs, 1);  // once for both synchronizes

        // Inside the period, at the dependent's time: the sink's last value, no run.
        up.camera->setData(integer(2));
        EXPECT_EQ(asInt(consumer->run(dependent, kStart + Type::Duration(500000))[0]), 1);
        EXPECT_EQ(up.filter->runs, 1);
        EXPECT_EQ(asInt(consumer->run(dependent, kStart + Type::Duration(1000000))[0]), 2);
        EXPECT_EQ(up.filter->runs, 2);

        // Its own value plays no part, and it never reads as unchanged.
        source->setData(integer(9));
        EXPECT_EQ(source->getUid(), 0u);
        EXPECT_EQ(asInt(consumer->run(dependent, kStart + Type::Duration(1000000))[0]), 2);
    }
    EXPECT_TRUE(log.lines().empty());
}

TEST(ProcessSource, DisabledSourceProcessGivesNullUnlessZombie) {
    LogCapture log;
    StringHash dependent("dependent");
    {
        Upstream up;
        auto source = boost::make_shared<NodeProcessSource>("upstream:out", up.process, "out");
        auto consumer = boost::make_shared<Consumer>(1, source);
        up.camera->setData(integer(3));

        up.process->disable();
        EXPECT_FALSE(consumer->run(dependent, kStart)[0]);
        up.process->zombify();
        EXPECT_EQ(asInt(consumer->run(dependent, kStart)[0]), 3);
        up.process->unZombify();
        EXPECT_FALSE(consumer->run(dependent, kStart + Type::Duration(5000000))[0]);
        EXPECT_EQ(up.filter->runs, 1);
    }
    EXPECT_TRUE(log.lines().empty());
}

namespace {

// Answers with the time it is asked for, so that a value tells when it was read.
class History : public UserSource {
public:
    std::string getName() const override { return "history"; }
    void setData(const boost::shared_ptr<Data>& data) override { received.push_back(data); }
    boost::shared_ptr<Data> getData(const Type::Time& time,
                                    const Type::Duration& tolerance) const override {
        ++reads;
        lastTolerance = tolerance;
        return answers ? integer(int(time.getTotalMicroseconds())) : boost::shared_ptr<Data>();
    }
    std::vector<boost::shared_ptr<Data>> received;
    mutable int reads = 0;
    mutable Type::Duration lastTolerance;
    bool answers = true;
};

}  // namespace

TEST(SourceAdapter, ForwardsToTheUserSourceAndKeepsItsUidAtZero) {
    auto user = boost::make_shared<History>();
    auto adapter = boost::make_shared<SourceAdapter>(user);
    int events = 0;
    adapter->addEvent(counter(events));
    EXPECT_EQ(adapter->getName(), "history");

    adapter->setData(integer(1));
    adapter->setData(boost::shared_ptr<Data>());
    ASSERT_EQ(user->received.size(), 2u);
    EXPECT_FALSE(user->received[1]);
    EXPECT_EQ(events, 1);
    EXPECT_EQ(adapter->getUid(), 0u);
    EXPECT_EQ(asInt(adapter->getData(Type::Time(42), Type::Duration(7))), 42);
    EXPECT_EQ(user->lastTolerance, Type::Duration(7));
}

TEST(SourceAdapter, EachRunReadsTheUserSourceOnceAtItsTime) {
    LogCapture log;
    StringHash a("a"), b("b");
    auto user = boost::make_shared<History>();
    auto adapter = boost::make_shared<SourceAdapter>(user);
    auto consumer = boost::make_shared<Consumer>(2, adapter);

    std::vector<boost::shared_ptr<Data>> values =
        consumer->run(a, Type::Time(100), Type::Duration(5));
    EXPECT_EQ(asInt(values[0]), 100);
    EXPECT_EQ(values[0], values[1]);
    EXPECT_EQ(user->reads, 1);
    EXPECT_EQ(user->lastTolerance, Type::Duration(5));

    // Overlapping runs of two processes each take their own read.
    adapter->synchronize(Type::Time(300), kTolerance, a, a, 0);
    adapter->synchronize(Type::Time(400), kTolerance, b, b, 0);
    EXPECT_EQ(asInt(adapter->requestData(a, a, 0, kNoPort)), 300);
    EXPECT_EQ(asInt(adapter->requestData(b, b, 0, kNoPort)), 400);
    adapter->synchronizeRelease(a, a, 0);
    adapter->synchronizeRelease(b, b, 0);
    EXPECT_EQ(user->reads, 3);

    user->answers = false;  // no data: a null snapshot, pulled as such
    EXPECT_FALSE(consumer->run(a, Type::Time(500))[0]);
    consumer.reset();
    adapter.reset();
    EXPECT_TRUE(log.lines().empty());
}
