// The source variants: where a run's snapshot comes from, with the protocol kept balanced.
#include "graph/node_pulse.h"
#include "graph/node_source_alias.h"
#include "graph/source_adapter.h"
#include "kits/graph_kit.h"
#include "runtime/node_process_source.h"

using namespace graphkit;

const StringHash kP("p"), kQ("q");

TEST(AliasSource, ChainForwardsToItsTargetAndFollowsARetarget) {
    LogCheck check;
    auto camera = boost::make_shared<NodeSource>("camera");
    auto other = boost::make_shared<NodeSource>("other");
    auto inner = boost::make_shared<NodeSourceAlias>("inner", camera);
    auto outer = boost::make_shared<NodeSourceAlias>("outer", inner);
    Texts raised;
    camera->addEvent(record(raised, "camera"));
    outer->addEvent(record(raised, "outer"));  // plays no part
    outer->setData(integer(1));
    // Both synchronizes of a run share one snapshot, which a value set meanwhile leaves alone.
    EXPECT_EQ(nums(run(outer, kP, 1, 0, [&] { outer->setData(integer(2)); })), (Ints{1, 1}));
    EXPECT_EQ(raised, (Texts{"camera1", "camera2"}));
    other->setData(integer(8));
    inner->setSource(other);  // followed at once
    EXPECT_EQ((Ints{num(outer->getData(at(0), kTolerance)), int(outer->getUid())}), (Ints{8, 1}));
    EXPECT_FALSE(outer->requestData(kP, kP, 0, nullptr));  // both passes reach the target
    outer->requestEmpty(kP, kP, 0, nullptr);
    check.expected = {"1 tessarity.nodeSource|other->requestData(p): No cache found.",
                      "1 tessarity.nodeSource|other->requestEmpty(p): no cache found."};
}

TEST(PulseSource, ValueServesOneRunThenTheDefault) {
    LogCheck check;
    auto pulse = boost::make_shared<NodePulse>("pulse");
    auto bare = boost::make_shared<NodePulse>("bare");  // no default
    // What both synchronizes of a run saw, and the uid after it.
    auto look = [](const boost::shared_ptr<NodePulse>& source, const StringHash& p) {
        Values got = run(source, p);
        return Ints{num(got[0]), num(got[1]), int(source->getUid())};
    };
    pulse->setDefaultData(integer(1));
    EXPECT_EQ((Ints{num(pulse->getData(at(0), kTolerance)), int(pulse->getUid())}), (Ints{1, 0}));
    pulse->setData(integer(0));
    EXPECT_EQ(look(pulse, kP), (Ints{0, 0, 2}));  // the second synchronize does not fall back
    EXPECT_EQ(look(pulse, kQ), (Ints{1, 1, 3}));  // another process gets the default
    EXPECT_EQ(look(bare, kP), (Ints{kNone, kNone, 0}));
    bare->setData(integer(5));
    EXPECT_EQ(look(bare, kP), (Ints{5, 5, 2}));
    EXPECT_EQ(look(bare, kP), (Ints{kNone, kNone, 2}));  // the uid moves with values only
}

TEST(ProcessSource, RunsItsSourceProcessWhenDueAndWhileLive) {
    LogCheck check;
    Graph up(boost::make_shared<Probe>(), 1.0f);  // one run per second
    auto source = boost::make_shared<NodeProcessSource>("proc:sink1", up.process, "sink1");
    EXPECT_EQ(source->getDependencies(), Texts{"proc"});
    // What both synchronizes of a run saw, the runs of "proc", and the source's uid; "proc"
    // runs at the dependent's time.
    auto step = [&](int value, long long time) {
        if (value != kNone) up.sources[0]->setData(integer(value));
        Values got = run(source, kP, time);
        return Ints{num(got[0]), num(got[1]), up.probe->applied, int(source->getUid())};
    };
    EXPECT_EQ(step(1, 10000000), (Ints{1, 1, 1, 0}));  // one run for both synchronizes
    EXPECT_EQ(step(2, 10500000), (Ints{1, 1, 1, 0}));  // inside the period: the last value
    EXPECT_EQ(step(kNone, 11000000), (Ints{2, 2, 2, 0}));
    EXPECT_EQ(up.probe->times, (std::vector<Type::Time>{at(10000000), at(11000000)}));
    up.process->disable();
    EXPECT_EQ(step(3, 13000000), (Ints{kNone, kNone, 2, 0}));
    up.process->zombify();
    EXPECT_EQ(step(kNone, 13000000), (Ints{3, 3, 3, 0}));
    up.process->unZombify();
    EXPECT_EQ(step(kNone, 15000000), (Ints{kNone, kNone, 3, 0}));
}

TEST(SourceAdapter, ForwardsToTheUserSourceAndReadsItOncePerRun) {
    LogCheck check;
    // Notes each value set and the tolerance of each read, and answers a read with its time
    // (none at time kNone).
    struct History : UserSource {
        std::string getName() const override { return "history"; }
        void setData(const Ptr& data) override { calls.push_back(num(data)); }
        Ptr getData(const Type::Time& time, const Type::Duration& tolerance) const override {
            calls.push_back(int(tolerance.getTotalMicroseconds()));
            return integer(int(time.getTotalMicroseconds()));
        }
        mutable Ints calls;
    };

    auto user = boost::make_shared<History>();
    auto adapter = boost::make_shared<SourceAdapter>(user);
    Texts raised;
    adapter->addEvent(record(raised, "adapter"));
    EXPECT_EQ(adapter->getName(), "history");
    adapter->setData(integer(1));
    adapter->setData(nullptr);
    EXPECT_EQ(raised, Texts{"adapter1"});
    EXPECT_EQ(num(adapter->getData(at(42), Type::Duration(7))), 42);
    EXPECT_EQ(nums(run(adapter, kP, 100, 5)), (Ints{100, 100}));
    // Overlapping runs of two processes each take their own read.
    auto q = [&] { EXPECT_EQ(nums(run(adapter, kQ, 400)), (Ints{400, 400})); };
    EXPECT_EQ(nums(run(adapter, kP, 300, 0, q)), (Ints{300, 300}));
    EXPECT_EQ(user->calls, (Ints{1, kNone, 7, 5, 0, 0}));  // two values set, then four reads
    EXPECT_EQ(adapter->getUid(), 0u);
    EXPECT_EQ(nums(run(adapter, kP, kNone)), (Ints{kNone, kNone}));  // no data: a null snapshot
}
