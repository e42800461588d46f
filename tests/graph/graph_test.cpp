// The pull protocol between nodes, ports and sources.
#include <thread>

#include "kits/graph_kit.h"

using namespace graphkit;

namespace {

typedef boost::shared_ptr<Port> PortPtr;
typedef const StringHash& Name;

const StringHash kP("p"), kQ("q");

void sync(Node& node, Name p, Name r) { node.synchronize(Type::Time(), Type::Duration(), p, r, 0); }

// A node whose inputs, if a source is given, all read that source's output.
class Consumer : public Node {
public:
    Consumer(const std::string& name, int inputs, boost::shared_ptr<Node> source = {})
        : Node(name) {
        for (int i = 1; i <= inputs; ++i) {
            addInput(boost::make_shared<Port>("in" + std::to_string(i), PortPtr(), this));
            if (source) getInputs().back()->attach(source->getOutput("out"));
        }
    }
    // Pulls each input once and releases it, as a filter node does at its computing pull.
    Values pull(Name process, Name request) {
        Values values;
        for (const PortPtr& input : getInputs()) {
            values.push_back(input->requestData(process, request, 1));
            input->synchronizeRelease(process, request, 1);
        }
        return values;
    }
    Values run(Name process) {
        sync(*this, process, process);
        Values values = pull(process, process);
        synchronizeRelease(process, process, 0);
        return values;
    }
    Ptr requestData(Name, Name, long long, PortPtr) override { return Ptr(); }
    void requestEmpty(Name, Name, long long, PortPtr) override {}
};

// The captured lines as "level category: message", one a line.
std::string logged(const LogCapture& log) {
    std::string text;
    for (const LogCapture::Line& line : log.lines())
        text += std::to_string(line.level) + " " + line.category + ": " + line.message + "\n";
    return text;
}

}  // namespace

TEST(NodeSource, EachProcessSeesTheValueOfItsFirstSynchronize) {
    LogCapture log;
    auto source = boost::make_shared<NodeSource>("camera");
    Consumer consumer("both", 2, source);
    source->setData(integer(1));
    sync(consumer, kP, kP);
    source->setData(integer(2));  // during the run: reaches only the next one
    sync(*source, kQ, kQ);        // another process takes its own snapshot
    EXPECT_EQ(num(consumer.pull(kP, kP)[1]), 1);
    consumer.synchronizeRelease(kP, kP, 0);
    // Snapshots are kept per process: a request nested in "q" sees the one of "q".
    EXPECT_EQ(num(source->requestData(kQ, StringHash("q/inner"), 0, PortPtr())), 2);
    source->synchronizeRelease(kQ, kQ, 0);
    EXPECT_EQ(num(consumer.run(kP)[1]), 2);
    EXPECT_EQ(num(source->getData(Type::Time(), Type::Duration())), 2);
    EXPECT_EQ(logged(log), "");
}

TEST(NodeSource, NullValuesReleasesAndFaults) {
    LogCapture log;
    auto source = boost::make_shared<NodeSource>("src");
    std::vector<int> seen;
    source->addEvent(boost::make_shared<Event>([&](Ptr data) {
        seen.push_back(num(data));
        if (data && int(*data) < 3) source->setData(integer(int(*data) + 1));
    }));
    source->setData(integer(1));  // the callback may set its own source
    source->setData(Ptr());       // clears, counts, raises nothing
    EXPECT_EQ(seen, (std::vector<int>{1, 2, 3}));
    EXPECT_FALSE(source->getData(Type::Time(), Type::Duration()));
    EXPECT_EQ(source->getUid(), 4u);

    // The null snapshot is read silently and survives the first of two releases.
    for (int i = 0; i < 2; ++i) sync(*source, kP, kP);
    source->synchronizeRelease(kP, kP, 0);
    EXPECT_FALSE(source->requestData(kP, kP, 0, PortPtr()));
    for (int i = 0; i < 2; ++i) source->synchronizeRelease(kP, kP, 0);  // the second is invalid
    EXPECT_FALSE(source->requestData(kP, kP, 0, PortPtr()));
    source->requestEmpty(kP, kP, 0, PortPtr());
    // A release whose request is counted but whose process never took a snapshot.
    sync(*source, kP, kP);
    source->synchronizeRelease(kQ, kP, 0);
    sync(*source, kP, kP);
    source.reset();  // open counts: one on the node, two on the snapshot of "p"
    EXPECT_EQ(logged(log),
              "1 tessarity.node: src->synchronizeRelease(p): Invalid release on process p\n"
              "1 tessarity.nodeSource: src->requestData(p): No cache found.\n"
              "1 tessarity.nodeSource: src->requestEmpty(p): no cache found.\n"
              "1 tessarity.nodeSource: src->_synchronizeRelease(q): Invalid release on process q\n"
              "1 tessarity.nodeSource: src->~NodeSource(): There is still count to entry cache:\n"
              "  process: 2654435881, count: 2\n\n"
              "1 tessarity.node: src->~Node(): There is still active synchronize count:\n"
              "  process: 2654435881, count: 1\n\n");
}

TEST(NodeSource, ConcurrentProcessesAndSettersStayBalanced) {
    LogCapture log;
    auto source = boost::make_shared<NodeSource>("camera");
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t)
        threads.emplace_back([&, t] {
            Consumer consumer("sink" + std::to_string(t), 2, source);
            StringHash process("process" + std::to_string(t));
            for (int i = 1; i <= 2000; ++i) {
                source->setData(integer(i));
                Values values = consumer.run(process);
                ASSERT_TRUE(values[0] && values[0] == values[1]);  // one snapshot, shared
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(source->getUid(), 6000u);
    source.reset();
    EXPECT_EQ(logged(log), "");
}

TEST(Port, ChainResolvesTypesDefaultsOwnerAndLookup) {
    auto source = boost::make_shared<NodeSource>("camera");
    auto root = boost::make_shared<Port>("in");
    root->addType(Integer).addType(Float);
    auto middle = boost::make_shared<Port>("in", root);
    Consumer owner("node", 0);
    auto outer = boost::make_shared<Port>("in", middle, &owner);
    auto strings = boost::make_shared<Port>("s");
    strings->addType(String);

    outer->addType(String);  // written where it is never read
    EXPECT_FALSE(outer->isCompatible(String));
    EXPECT_TRUE(outer->isCompatible(Float));
    EXPECT_TRUE(outer->isCompatible(boost::make_shared<Port>("any")));
    EXPECT_FALSE(outer->isCompatible(strings));
    EXPECT_EQ(outer->getRecursiveParent(), root);
    EXPECT_FALSE(root->getRecursiveParent());
    EXPECT_EQ(outer->getNode(), &owner);
    EXPECT_EQ(middle->getNode(), nullptr);
    // A node finds a port by exact name, or by the empty name if it has only one.
    Consumer two("two", 2);
    EXPECT_EQ(two.getInput("in2"), two.getInputs()[1]);
    EXPECT_FALSE(two.getInput("") || owner.getInput(""));
    two.addInput(boost::make_shared<Port>(""));
    EXPECT_EQ(two.getInput(""), two.getInputs()[2]);

    EXPECT_FALSE(outer->isOptional());
    middle->setDefaultData(integer(4));
    EXPECT_TRUE(outer->isOptional());  // a default makes a port optional
    // Unbound: the port's own default only; bound to an unset source: the chain's default.
    EXPECT_FALSE(outer->requestData(kP, kP, 0));
    owner.addInput(outer);
    EXPECT_TRUE(owner.getInput("") == outer && !owner.getInput("in2"));
    outer->attach(source->getOutput("out"));
    EXPECT_EQ(num(owner.run(kP)[0]), 4);
}

TEST(Port, BadLinksAreLoggedAndGiveNull) {
    LogCapture log;
    auto twice = boost::make_shared<Port>("twice"), loose = boost::make_shared<Port>("loose");
    for (const PortPtr& port : {twice, twice, loose}) port->attach(boost::make_shared<Port>("up"));
    for (const PortPtr& port : {twice, loose}) {
        EXPECT_FALSE(port->requestData(kP, kP, 0));
        port->requestEmpty(kP, kP, 0);
        port->synchronizeRelease(kP, kP, 0);  // silent for the loose one
    }
    const std::string error = "2 tessarity.port      : ";
    EXPECT_EQ(logged(log),
              error + "twice::requestData(): An input port can not have multiple outputs.\n" +
                  error + "twice::requestEmpty(): An input port can not have multiple outputs.\n" +
                  error +
                  "synchronizeRelease(): an input port (twice) can not have multiple outputs and "
                  "only an input port can use synchronizeRelease().\n" +
                  error + "loose::requestData(): trying to get data from an unbound port.\n" +
                  error + "loose::requestEmpty(): trying to get data from an unbound port.\n");
}

TEST(Port, LoadedValuesCoverTheChainPerRequest) {
    StringHash request("p/inner");
    auto inner = boost::make_shared<Port>("in");
    std::vector<PortPtr> ports{boost::make_shared<Port>("x", inner)};
    Port::loadData(ports, {integer(11)}, kP, request, 0);
    EXPECT_EQ(num(inner->requestData(kP, request, 0)), 11);
    EXPECT_EQ(num(ports[0]->requestData(kP, request, 0)), 11);
    EXPECT_FALSE(inner->requestData(kP, StringHash("p/other"), 0));
    Port::unloadData(ports, kP, request, 0);
    EXPECT_FALSE(inner->requestData(kP, request, 0));
}
