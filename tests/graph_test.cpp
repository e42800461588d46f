// The pull protocol between nodes, ports and sources.
#include <atomic>
#include <thread>

#include <gtest/gtest.h>
#include <boost/make_shared.hpp>

#include "event.h"
#include "logcapture.h"
#include "nodesource.h"
#include "port.h"

using namespace Tessarity;

namespace {

// A consumer with any number of inputs: it pulls each input once and releases it, as a
// filter node does at its computing pull.
class Consumer : public Node {
public:
    explicit Consumer(const std::string& name, int inputs = 1) : Node(name) {
        for (int i = 0; i < inputs; ++i)
            addInput(boost::make_shared<Port>("in" + std::to_string(i + 1),
                                              boost::shared_ptr<Port>(), this));
    }
    std::vector<boost::shared_ptr<Data>> pull(const StringHash& process,
                                              const StringHash& request) {
        std::vector<boost::shared_ptr<Data>> values;
        for (const boost::shared_ptr<Port>& input : getInputs()) {
            values.push_back(input->requestData(process, request, 1));
            input->synchronizeRelease(process, request, 1);
        }
        return values;
    }
    boost::shared_ptr<Data> requestData(const StringHash&, const StringHash&, long long,
                                        boost::shared_ptr<Port>) override {
        return boost::shared_ptr<Data>();
    }
    void requestEmpty(const StringHash&, const StringHash&, long long,
                      boost::shared_ptr<Port>) override {}
};

void connect(const boost::shared_ptr<Port>& input, const boost::shared_ptr<Node>& upstream) {
    input->attach(upstream->getOutput("out"));
}

boost::shared_ptr<Data> integer(int value) { return boost::make_shared<Data>(value); }

const Type::Time kNow(1000);
const Type::Duration kTolerance(0);

}  // namespace

TEST(NodeSource, RunSeesTheValueOfItsFirstSynchronize) {
    LogCapture log;
    StringHash process("p");
    auto source = boost::make_shared<NodeSource>("camera");
    auto consumer = boost::make_shared<Consumer>("sink");
    connect(consumer->getInputs()[0], source);

    EXPECT_EQ(source->getUid(), 0u);
    source->setData(integer(1));
    consumer->synchronize(kNow, kTolerance, process, process, 0);
    source->setData(integer(2));  // during the run: reaches only the next one
    EXPECT_EQ(int(*consumer->pull(process, process)[0]), 1);
    EXPECT_EQ(int(*source->getData(kNow, kTolerance)), 2);
    consumer->synchronizeRelease(process, process, 0);

    consumer->synchronize(kNow, kTolerance, process, process, 0);
    EXPECT_EQ(int(*consumer->pull(process, process)[0]), 2);
    consumer->synchronizeRelease(process, process, 0);
    EXPECT_EQ(source->getUid(), 2u);
    EXPECT_EQ(log.countAtMost(kelvo::log::Error), 0u);
}

TEST(NodeSource, UnsetSourceAndNullValue) {
    LogCapture log;
    StringHash process("p");
    auto source = boost::make_shared<NodeSource>("camera");
    int raised = 0;
    source->addEvent(boost::make_shared<Event>([&](boost::shared_ptr<Data>) { ++raised; }));

    source->synchronize(kNow, kTolerance, process, process, 0);
    EXPECT_FALSE(source->requestData(process, process, 0, boost::shared_ptr<Port>()));
    source->synchronizeRelease(process, process, 0);

    source->setData(integer(3));
    source->setData(boost::shared_ptr<Data>());  // clears, counts, raises nothing
    EXPECT_FALSE(source->getData(kNow, kTolerance));
    EXPECT_EQ(source->getUid(), 2u);
    EXPECT_EQ(raised, 1);
    EXPECT_TRUE(log.lines().empty());
}

TEST(NodeSource, CallbackMaySetItsOwnSource) {
    auto source = boost::make_shared<NodeSource>("camera");
    std::vector<int> seen;
    source->addEvent(boost::make_shared<Event>([&](boost::shared_ptr<Data> data) {
        seen.push_back(int(*data));
        if (int(*data) < 3) source->setData(integer(int(*data) + 1));
    }));
    source->setData(integer(1));
    EXPECT_EQ(seen, (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(source->getUid(), 3u);
}

TEST(NodeSource, ReleasesBalanceAndFaultsAreReported) {
    LogCapture log;
    StringHash process("p");
    auto source = boost::make_shared<NodeSource>("camera");
    source->setData(integer(5));

    source->synchronize(kNow, kTolerance, process, process, 0);
    source->synchronize(kNow, kTolerance, process, process, 0);
    source->synchronizeRelease(process, process, 0);
    ASSERT_TRUE(source->requestData(process, process, 0, boost::shared_ptr<Port>()));
    source->synchronizeRelease(process, process, 0);
    EXPECT_TRUE(log.lines().empty());

    source->synchronizeRelease(process, process, 0);
    EXPECT_FALSE(source->requestData(process, process, 0, boost::shared_ptr<Port>()));
    source->requestEmpty(process, process, 0, boost::shared_ptr<Port>());
    // A release whose request is counted but whose process never took a snapshot.
    source->synchronize(kNow, kTolerance, process, process, 0);
    source->synchronizeRelease(StringHash("q"), process, 0);

    std::vector<LogCapture::Line> lines = log.lines();
    ASSERT_EQ(lines.size(), 4u);
    for (const LogCapture::Line& line : lines) EXPECT_EQ(line.level, kelvo::log::Fatal);
    EXPECT_EQ(lines[0].category, "tessarity.node");
    EXPECT_EQ(lines[0].message, "camera->synchronizeRelease(p): Invalid release on process p");
    EXPECT_EQ(lines[1].category, "tessarity.nodeSource");
    EXPECT_EQ(lines[1].message, "camera->requestData(p): No cache found.");
    EXPECT_EQ(lines[2].message, "camera->requestEmpty(p): no cache found.");
    EXPECT_EQ(lines[3].category, "tessarity.nodeSource");
    EXPECT_EQ(lines[3].message, "camera->_synchronizeRelease(q): Invalid release on process q");
}

TEST(NodeSource, DestructionWithOpenCountsIsReported) {
    LogCapture log;
    StringHash process("p");
    {
        auto source = boost::make_shared<NodeSource>("camera");
        source->synchronize(kNow, kTolerance, process, process, 0);
    }
    std::vector<LogCapture::Line> lines = log.lines();
    ASSERT_EQ(lines.size(), 2u);
    const std::string entry = "\n  process: " + std::to_string(process.getHash()) + ", count: 1\n";
    EXPECT_EQ(lines[0].category, "tessarity.nodeSource");
    EXPECT_EQ(lines[0].message,
              "camera->~NodeSource(): There is still count to entry cache:" + entry);
    EXPECT_EQ(lines[1].category, "tessarity.node");
    EXPECT_EQ(lines[1].message,
              "camera->~Node(): There is still active synchronize count:" + entry);
}

TEST(NodeSource, SharedUpstreamIsCountedPerConsumerAndReleased) {
    LogCapture log;
    StringHash process("p");
    auto source = boost::make_shared<NodeSource>("camera");
    auto consumer = boost::make_shared<Consumer>("both", 2);
    connect(consumer->getInputs()[0], source);
    connect(consumer->getInputs()[1], source);
    source->setData(integer(9));

    for (int run = 0; run < 3; ++run) {
        consumer->synchronize(kNow, kTolerance, process, process, 0);
        std::vector<boost::shared_ptr<Data>> values = consumer->pull(process, process);
        EXPECT_EQ(int(*values[0]), 9);
        EXPECT_EQ(values[0], values[1]);  // one snapshot, shared
        consumer->synchronizeRelease(process, process, 0);
    }
    consumer.reset();
    source.reset();
    EXPECT_TRUE(log.lines().empty());
}

TEST(NodeSource, ProcessesHoldSeparateSnapshots) {
    StringHash a("a"), b("b");
    auto source = boost::make_shared<NodeSource>("camera");
    source->setData(integer(1));
    source->synchronize(kNow, kTolerance, a, a, 0);
    source->setData(integer(2));
    source->synchronize(kNow, kTolerance, b, b, 0);
    EXPECT_EQ(int(*source->requestData(a, a, 0, boost::shared_ptr<Port>())), 1);
    EXPECT_EQ(int(*source->requestData(b, b, 0, boost::shared_ptr<Port>())), 2);
    source->synchronizeRelease(a, a, 0);
    source->synchronizeRelease(b, b, 0);
}

TEST(NodeSource, ConcurrentProcessesAndSettersStayBalanced) {
    LogCapture log;
    auto source = boost::make_shared<NodeSource>("camera");
    source->setData(integer(0));
    std::atomic<bool> wrong(false);
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t)
        threads.emplace_back([&, t] {
            auto consumer = boost::make_shared<Consumer>("sink" + std::to_string(t), 2);
            connect(consumer->getInputs()[0], source);
            connect(consumer->getInputs()[1], source);
            StringHash process("process" + std::to_string(t));
            for (int i = 0; i < 2000; ++i) {
                consumer->synchronize(kNow, kTolerance, process, process, 0);
                std::vector<boost::shared_ptr<Data>> values = consumer->pull(process, process);
                if (!values[0] || values[0] != values[1]) wrong = true;
                consumer->synchronizeRelease(process, process, 0);
            }
        });
    threads.emplace_back([&] {
        for (int i = 1; i <= 2000; ++i) source->setData(integer(i));
    });
    for (std::thread& thread : threads) thread.join();
    EXPECT_FALSE(wrong);
    EXPECT_EQ(source->getUid(), 2001u);
    EXPECT_TRUE(log.lines().empty());
}

TEST(Port, ChainResolvesTypesDefaultsAndOwner) {
    auto root = boost::make_shared<Port>("in");
    root->addType(Integer).addType(Float);
    auto middle = boost::make_shared<Port>("in", root);
    Consumer owner("node", 0);
    auto outer = boost::make_shared<Port>("in", middle, &owner);

    outer->addType(String);  // written where it is never read
    EXPECT_FALSE(outer->isCompatible(String));
    EXPECT_TRUE(outer->isCompatible(Float));
    EXPECT_EQ(outer->getRecursiveParent(), root);
    EXPECT_FALSE(root->getRecursiveParent());
    EXPECT_EQ(outer->getNode(), &owner);
    EXPECT_EQ(middle->getNode(), nullptr);

    auto any = boost::make_shared<Port>("any");
    auto strings = boost::make_shared<Port>("s");
    strings->addType(String);
    EXPECT_TRUE(outer->isCompatible(any));
    EXPECT_FALSE(outer->isCompatible(strings));

    EXPECT_FALSE(outer->isOptional());
    middle->setDefaultData(integer(4));
    EXPECT_TRUE(outer->isOptional());  // a default makes a port optional
    EXPECT_EQ(int(*outer->getDefaultData()), 4);
    EXPECT_FALSE(outer->bound());
}

TEST(Port, DefaultsOnTheUnboundAndTheBoundPath) {
    LogCapture log;
    StringHash process("p");
    auto parent = boost::make_shared<Port>("in");
    parent->setDefaultData(integer(7));

    // Unbound: the port's own default only, the parent's is not seen.
    Consumer unbound("unbound", 0);
    auto port = boost::make_shared<Port>("in", parent, &unbound);
    EXPECT_FALSE(port->requestData(process, process, 0));

    // Bound to a source that has no value: the chain's default stands in.
    auto source = boost::make_shared<NodeSource>("camera");
    Consumer bound("bound", 0);
    auto input = boost::make_shared<Port>("in", parent, &bound);
    bound.addInput(input);
    input->attach(source->getOutput(""));
    bound.synchronize(kNow, kTolerance, process, process, 0);
    EXPECT_EQ(int(*input->requestData(process, process, 0)), 7);
    input->synchronizeRelease(process, process, 0);
    bound.synchronizeRelease(process, process, 0);
    EXPECT_TRUE(log.lines().empty());
}

TEST(Port, BadLinksAreLoggedAndGiveNull) {
    LogCapture log;
    StringHash process("p");
    auto first = boost::make_shared<NodeSource>("first");
    auto second = boost::make_shared<NodeSource>("second");
    Consumer consumer("c", 0);
    auto twice = boost::make_shared<Port>("twice", boost::shared_ptr<Port>(), &consumer);
    twice->attach(first->getOutput("out"));
    twice->attach(second->getOutput("out"));
    auto loose = boost::make_shared<Port>("loose", boost::shared_ptr<Port>(), &consumer);
    loose->attach(boost::make_shared<Port>("nowhere"));

    EXPECT_FALSE(twice->requestData(process, process, 0));
    twice->requestEmpty(process, process, 0);
    twice->synchronizeRelease(process, process, 0);
    EXPECT_FALSE(loose->requestData(process, process, 0));
    loose->requestEmpty(process, process, 0);
    loose->synchronizeRelease(process, process, 0);  // silent

    std::vector<LogCapture::Line> lines = log.lines();
    ASSERT_EQ(lines.size(), 5u);
    for (const LogCapture::Line& line : lines) {
        EXPECT_EQ(line.level, kelvo::log::Error);
        EXPECT_EQ(line.category, "tessarity.port      ");
    }
    EXPECT_EQ(lines[0].message,
              "twice::requestData(): An input port can not have multiple outputs.");
    EXPECT_EQ(lines[1].message,
              "twice::requestEmpty(): An input port can not have multiple outputs.");
    EXPECT_EQ(lines[2].message,
              "synchronizeRelease(): an input port (twice) can not have multiple outputs and only "
              "an input port can use synchronizeRelease().");
    EXPECT_EQ(lines[3].message, "loose::requestData(): trying to get data from an unbound port.");
    EXPECT_EQ(lines[4].message, "loose::requestEmpty(): trying to get data from an unbound port.");
}

TEST(Port, LoadedValuesCoverTheChainPerRequest) {
    StringHash process("p"), request("p/inner"), other("p/other");
    auto inner = boost::make_shared<Port>("in");
    auto outer = boost::make_shared<Port>("x", inner);
    std::vector<boost::shared_ptr<Port>> ports{outer};

    Port::loadData(ports, {integer(11)}, process, request, 0);
    EXPECT_EQ(int(*inner->requestData(process, request, 0)), 11);
    EXPECT_EQ(int(*outer->requestData(process, request, 0)), 11);
    EXPECT_FALSE(inner->requestData(process, other, 0));
    inner->requestEmpty(process, request, 0);  // loaded: nothing to walk

    Port::unloadData(ports, process, request, 0);
    EXPECT_FALSE(inner->requestData(process, request, 0));
    Port::unloadData(ports, process, request, 0);  // absent is no fault
}

TEST(Node, PortLookupByNameAndTheEmptyName) {
    Consumer one("one", 1), two("two", 2), none("none", 0);
    EXPECT_EQ(one.getInput(""), one.getInputs()[0]);
    EXPECT_FALSE(two.getInput(""));
    EXPECT_FALSE(none.getInput(""));
    EXPECT_EQ(two.getInput("in2"), two.getInputs()[1]);
    EXPECT_FALSE(one.getInput("in2"));
    two.addInput(boost::make_shared<Port>(""));
    EXPECT_EQ(two.getInput(""), two.getInputs()[2]);
    EXPECT_EQ(NodeSource("s").getOutput("")->getName(), "out");
}
