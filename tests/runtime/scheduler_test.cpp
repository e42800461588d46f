// The scheduler's cycle, dependency marking, and processes run by the workers themselves.
#include <atomic>

#include <gtest/gtest.h>

#include <kelvo/os.h>

#include "engine/tessarity_private.h"
#include "filters/flow/identity.h"
#include "graph/event.h"
#include "graph/node_filter.h"
#include "graph/node_sink.h"
#include "graph/node_source.h"
#include "graph/port.h"
#include "kits/engine_kit.h"
#include "runtime/process.h"
#include "runtime/scheduler.h"

using namespace Tessarity;
using enginekit::eventually;
typedef std::vector<std::string> Names;

namespace {

// A process that copies `input` to its sink "out", built by the engine.
bool copy(TessarityPrivate& engine, const std::string& name, const std::string& input,
          unsigned int priority, float frequency = 1.0f) {
    return engine.getProcessBuilder().createProcess(name, "Identity", {{"in", input}},
                                                    {{"out", "out"}}, {}, {}, priority, frequency,
                                                    Type::Duration());
}

// The same wired by hand: `source` -> Identity -> sink "out".
boost::shared_ptr<Process> makeProcess(const std::string& name,
                                       const boost::shared_ptr<NodeSource>& source,
                                       unsigned int priority, float frequency = 1.0f) {
    auto node =
        boost::make_shared<NodeFilter>(name + "_node", boost::make_shared<Filters::Identity>());
    node->getInput("in")->attach(source->getOutput("out"));
    auto sink = boost::make_shared<NodeSink>("out");
    sink->getInput("in")->attach(node->getOutput("out"));
    auto process = boost::make_shared<Process>(name, node, priority, frequency, Type::Duration());
    process->addSource(source);
    process->addSink(sink);
    return process;
}

// A disabled process whose source names the process it needs.
boost::shared_ptr<Process> needing(const std::string& name, const std::string& needed) {
    auto source = boost::make_shared<NodeSource>("from_" + needed);
    source->addDependency(needed);
    auto process = makeProcess(name, source, 1);
    process->disable();
    return process;
}

}  // namespace

TEST(Scheduler, CycleSpreadsProcessesByPriority) {
    TessarityPrivate engine(0);
    ASSERT_TRUE(copy(engine, "a", "1", 1) && copy(engine, "b", "1", 2) &&
                copy(engine, "c", "1", 3));
    EXPECT_EQ(engine.getProcessRegistry().getScheduledJobs(),
              (Names{"c", "b", "c", "a", "c", "b", "c"}));

    // Only the ratio of priorities counts; priority 0 and disabled processes stay out.
    TessarityPrivate ratio(0);
    ASSERT_TRUE(copy(ratio, "h", "1", 3) && copy(ratio, "l", "1", 1) &&
                copy(ratio, "manual", "1", 0) && copy(ratio, "off", "1", 8));
    ratio.getProcessRegistry().disableProcess("off");
    EXPECT_EQ(ratio.getProcessRegistry().getScheduledJobs(), (Names{"h", "h", "l", "h", "h"}));
    ratio.getProcessRegistry().deleteProcess("l");
    EXPECT_EQ(ratio.getProcessRegistry().getScheduledJobs(), Names{"h"});
    ratio.getProcessRegistry().deleteProcess("h");
    EXPECT_TRUE(ratio.getProcessRegistry().getScheduledJobs().empty());
}

TEST(Scheduler, NeededDisabledProcessesBecomeZombies) {
    TessarityPrivate engine(0);
    // c needs b, which needs a: each needed process comes first in name order, so marking b
    // needs one more walk to reach a.
    auto c = needing("c", "b"), b = needing("b", "a");
    auto a = needing("a", "nothing");  // an unknown name is ignored
    c->enable();
    ASSERT_TRUE(engine.getProcessRegistry().add(a) && engine.getProcessRegistry().add(b) &&
                engine.getProcessRegistry().add(c));
    ASSERT_FALSE(engine.getProcessRegistry().add(needing("c", "b")));  // the name is taken
    EXPECT_TRUE(b->isZombie() && a->isZombie());
    EXPECT_EQ(engine.getProcessRegistry().getScheduledJobs().size(), 3u);
    engine.getProcessRegistry().disableProcess("c");
    EXPECT_FALSE(a->isZombie() || b->isZombie() || c->isZombie());
    EXPECT_TRUE(engine.getProcessRegistry().getScheduledJobs().empty());

    // Mutual needs: enabling one wakes the other, and the walk ends.
    TessarityPrivate mutual(0);
    auto x = needing("x", "y"), y = needing("y", "x");
    ASSERT_TRUE(mutual.getProcessRegistry().add(x) && mutual.getProcessRegistry().add(y));
    EXPECT_FALSE(x->isZombie() || y->isZombie());
    mutual.getProcessRegistry().enableProcess("x");
    EXPECT_TRUE(y->isZombie() && !x->isZombie());
}

TEST(Scheduler, SleepLastsUntilTheNextProcessIsDue) {
    TessarityPrivate engine(0);
    EXPECT_EQ(engine.getProcessRegistry().getNextComputationTime().getTotalMicroseconds(), 100000);
    ASSERT_TRUE(copy(engine, "manual", "1", 0, 1000.0f) && copy(engine, "still", "1", 3, 0.0f));
    // Priority 0 never shortens the sleep; frequency 0 gives a far-off time to live.
    EXPECT_EQ(engine.getProcessRegistry().getNextComputationTime().getTotalMicroseconds(), 100000);
    EXPECT_EQ(engine.getProcessRegistry().getComputationMaxFrequency(), 0.0f);

    ASSERT_TRUE(copy(engine, "overdue", "1", 3, 50.0f));
    EXPECT_EQ(engine.getProcessRegistry().getNextComputationTime().getTotalMicroseconds(), 0);
    EXPECT_EQ(engine.getProcessRegistry().getComputationMaxFrequency(), 50.0f);
    engine.getProcessRegistry().getData(
        "overdue:out");  // ran just now: due within its 20 ms period
    const long long sleep =
        engine.getProcessRegistry().getNextComputationTime().getTotalMicroseconds();
    EXPECT_TRUE(sleep > 0 && sleep <= 20000) << sleep;
}

TEST(Scheduler, WorkersRunDueProcessesUnderTheirName) {
    // Declared before the engine: its workers call back into them until it is destroyed.
    std::atomic<int> runs(0), misnamed(0);
    TessarityPrivate engine(2);
    ASSERT_TRUE(engine.getSourceRegistry().createSource("camera"));
    engine.getSourceRegistry().setData("camera", boost::make_shared<Data>(1));
    ASSERT_TRUE(copy(engine, "camera_process_long_name", "camera", 3, 200.0f));
    ASSERT_TRUE(engine.getEventRegistry().createEvent(
        "camera_process_long_name:out", [&](boost::shared_ptr<Data>) {
            // The worker's name is cut to the 15 bytes a thread name keeps.
            misnamed += kelvo::os::getCurrentThreadName() != "TesWrk_camera_p";
            ++runs;
        }));
    EXPECT_TRUE(eventually([&] { return runs >= 5; }));
    EXPECT_EQ(misnamed, 0);
    // Stopped and started again, the same cycle goes on.
    engine.stopScheduler();
    const int stopped = runs;
    EXPECT_EQ(engine.getProcessRegistry().getScheduledJobs(), Names{"camera_process_long_name"});
    engine.startScheduler();
    EXPECT_TRUE(eventually([&] { return runs > stopped + 2; }));
}

TEST(Scheduler, SourceEventWakesItsProcessAtOnce) {
    std::atomic<int> results(0);
    TessarityPrivate engine(2);
    auto source = boost::make_shared<NodeSource>("trigger");
    auto process = makeProcess("triggered", source, 0, 1000000.0f);  // never scheduled
    process->getSinks().at("out")->addEvent(
        boost::make_shared<Event>([&](boost::shared_ptr<Data>) { ++results; }));
    source->addEvent(boost::make_shared<Event>(boost::weak_ptr<Process>(process),
                                               boost::weak_ptr<Scheduler>(engine.getScheduler())));
    ASSERT_TRUE(engine.getProcessRegistry().add(process));
    EXPECT_TRUE(engine.getProcessRegistry().getScheduledJobs().empty());
    // With nothing scheduled both workers sleep until a job comes: each event's job wakes
    // exactly one of them, which runs it.
    Scheduler& scheduler = *engine.getScheduler();
    for (int i = 1; i <= 3; ++i) {
        ASSERT_TRUE(eventually([&] { return scheduler.getSleepingWorkers() == 2; }));
        const unsigned long wakes = scheduler.getWakeCount();
        auto value = boost::make_shared<Data>(i);
        value->setTimestamp(Type::Time(Type::Time::now().getTotalMicroseconds() + i));
        source->setData(value);
        EXPECT_TRUE(eventually([&] { return results == i; }));
        EXPECT_EQ(scheduler.getWakeCount(), wakes + 1);
    }
    // An event does not keep a deleted process alive, and then does nothing.
    boost::weak_ptr<Process> gone(process);
    engine.getProcessRegistry().deleteProcess("triggered");
    process.reset();
    EXPECT_TRUE(eventually([&] { return gone.expired(); }));
    source->setData(boost::make_shared<Data>(4));
    EXPECT_EQ(results, 3);
}
