// The scheduler's cycle, dependency marking, and processes run by the workers themselves.
#include <atomic>
#include <chrono>
#include <thread>

#include <gtest/gtest.h>
#include <boost/make_shared.hpp>

#include <kelvo/os.h>

#include "event.h"
#include "filterprimitive.h"
#include "logcapture.h"
#include "nodefilter.h"
#include "nodesink.h"
#include "nodesource.h"
#include "port.h"
#include "process.h"
#include "scheduler.h"
#include "tessarity_p.h"

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

// source -> PassThrough -> sink "out", the way the engine wires a one-filter process.
boost::shared_ptr<Process> makeProcess(const std::string& name,
                                       const boost::shared_ptr<NodeSource>& source,
                                       unsigned int priority, float frequency) {
    static const boost::shared_ptr<Filter> filter = boost::make_shared<PassThrough>();
    auto node = boost::make_shared<NodeFilter>(name + "_node", filter);
    node->getInput("in")->attach(source->getOutput("out"));
    auto sink = boost::make_shared<NodeSink>("out");
    sink->getInput("in")->attach(node->getOutput("out"));
    auto process = boost::make_shared<Process>(name, node, priority, frequency, Type::Duration());
    process->addSource(source);
    process->addSink(sink);
    return process;
}

boost::shared_ptr<Process> makeProcess(const std::string& name, unsigned int priority,
                                       float frequency = 1.0f) {
    return makeProcess(name, boost::make_shared<NodeSource>(name + "_in"), priority, frequency);
}

// Polls `done` every millisecond for at most five seconds.
template <typename Predicate>
bool eventually(Predicate done) {
    for (int i = 0; i < 5000; ++i) {
        if (done()) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return done();
}

}  // namespace

TEST(Scheduler, CycleSpreadsProcessesByPriority) {
    TessarityPrivate engine(0);
    ASSERT_TRUE(engine._addProcess(makeProcess("a", 1)));
    ASSERT_TRUE(engine._addProcess(makeProcess("b", 2)));
    ASSERT_TRUE(engine._addProcess(makeProcess("c", 3)));
    ASSERT_FALSE(engine._addProcess(makeProcess("c", 3)));
    EXPECT_EQ(engine.getScheduledJobs(),
              (std::vector<std::string>{"c", "b", "c", "a", "c", "b", "c"}));

    // Only the ratio of priorities counts; priority 0 and disabled processes stay out.
    TessarityPrivate ratio(0);
    ratio._addProcess(makeProcess("h", 3));
    ratio._addProcess(makeProcess("l", 1));
    ratio._addProcess(makeProcess("manual", 0));
    ratio._addProcess(makeProcess("off", 8));
    ratio.disableProcess("off");
    EXPECT_EQ(ratio.getScheduledJobs(), (std::vector<std::string>{"h", "h", "l", "h", "h"}));
    ratio.deleteProcess("l");
    EXPECT_EQ(ratio.getScheduledJobs(), (std::vector<std::string>{"h"}));
    ratio.deleteProcess("h");
    EXPECT_TRUE(ratio.getScheduledJobs().empty());
}

TEST(Scheduler, NeededDisabledProcessesBecomeZombies) {
    TessarityPrivate engine(0);
    auto source = [](const std::string& needs) {
        auto node = boost::make_shared<NodeSource>("from_" + needs);
        node->addDependency(needs);
        return node;
    };
    auto p = makeProcess("p", source("q"), 1, 1.0f);
    auto q = makeProcess("q", source("r"), 1, 1.0f);
    auto r = makeProcess("r", source("nothing"), 1, 1.0f);  // an unknown name is ignored
    q->disable();
    r->disable();
    // Added in an order where the needed processes come last.
    engine._addProcess(r);
    engine._addProcess(q);
    engine._addProcess(p);
    EXPECT_TRUE(q->isZombie() && r->isZombie());
    EXPECT_EQ(engine.getScheduledJobs().size(), 3u);

    engine.disableProcess("p");
    EXPECT_FALSE(q->isZombie() || r->isZombie() || p->isZombie());
    EXPECT_TRUE(engine.getScheduledJobs().empty());

    // Mutual needs: enabling one wakes the other, and the walk ends.
    TessarityPrivate mutual(0);
    auto x = makeProcess("x", source("y"), 1, 1.0f);
    auto y = makeProcess("y", source("x"), 1, 1.0f);
    x->disable();
    y->disable();
    mutual._addProcess(x);
    mutual._addProcess(y);
    EXPECT_FALSE(x->isZombie() || y->isZombie());
    mutual.enableProcess("x");
    EXPECT_TRUE(y->isZombie());
    EXPECT_FALSE(x->isZombie());
}

TEST(Scheduler, SleepLastsUntilTheNextProcessIsDue) {
    TessarityPrivate engine(0);
    EXPECT_EQ(engine._getNextComputationTime().getTotalMicroseconds(), 100000);
    auto manual = makeProcess("manual", 0, 1000.0f);
    auto still = makeProcess("still", 3, 0.0f);
    engine._addProcess(manual);
    engine._addProcess(still);
    // Priority 0 never shortens the sleep; frequency 0 gives a far-off time to live.
    EXPECT_EQ(engine._getNextComputationTime().getTotalMicroseconds(), 100000);
    EXPECT_EQ(engine._getComputationMaxFrequency(), 0.0f);

    auto overdue = makeProcess("overdue", 3, 50.0f);
    engine._addProcess(overdue);
    EXPECT_EQ(engine._getNextComputationTime().getTotalMicroseconds(), 0);
    EXPECT_EQ(engine._getComputationMaxFrequency(), 50.0f);
    overdue->update(Type::Time::now());  // ran just now: due within its 20 ms period
    long long sleep = engine._getNextComputationTime().getTotalMicroseconds();
    EXPECT_GT(sleep, 0);
    EXPECT_LE(sleep, 20000);
}

TEST(Scheduler, WorkersRunDueProcessesUnderTheirName) {
    // Declared before the engine: its workers call back into them until it is destroyed.
    std::atomic<int> runs(0);
    std::string threadName;
    boost::mutex nameMutex;
    TessarityPrivate engine(2);
    auto source = boost::make_shared<NodeSource>("camera");
    source->setData(boost::make_shared<Data>(1));
    auto process = makeProcess("camera_process_long_name", source, 3, 200.0f);
    process->getSinks().at("out")->addEvent(boost::make_shared<Event>([&](boost::shared_ptr<Data>) {
        boost::mutex::scoped_lock lock(nameMutex);
        threadName = kelvo::os::getCurrentThreadName();
        ++runs;
    }));
    ASSERT_TRUE(engine._addProcess(process));
    EXPECT_TRUE(eventually([&] { return runs >= 5; }));
    {
        boost::mutex::scoped_lock lock(nameMutex);
        EXPECT_EQ(threadName, "TesWrk_camera_p");  // cut to the 15 bytes a thread name keeps
    }

    // Stopped, nothing runs; started again, the same cycle goes on.
    engine.stopScheduler();
    const int stopped = runs;
    EXPECT_EQ(engine.getScheduledJobs(), (std::vector<std::string>{"camera_process_long_name"}));
    engine.startScheduler();
    EXPECT_TRUE(eventually([&] { return runs > stopped + 2; }));
}

TEST(Scheduler, SourceEventWakesItsProcessAtOnce) {
    std::vector<long long> seen;
    boost::mutex seenMutex;
    TessarityPrivate engine(2);
    auto source = boost::make_shared<NodeSource>("trigger");
    auto process = makeProcess("triggered", source, 0, 1000000.0f);  // never scheduled
    process->getSinks().at("out")->addEvent(
        boost::make_shared<Event>([&](boost::shared_ptr<Data> d) {
            boost::mutex::scoped_lock lock(seenMutex);
            seen.push_back(d->getTimestamp().getTotalMicroseconds());
        }));
    source->addEvent(boost::make_shared<Event>(boost::weak_ptr<Process>(process),
                                               boost::weak_ptr<Scheduler>(engine._getScheduler())));
    ASSERT_TRUE(engine._addProcess(process));
    EXPECT_TRUE(engine.getScheduledJobs().empty());

    for (int i = 1; i <= 3; ++i) {
        auto value = boost::make_shared<Data>(i);
        value->setTimestamp(Type::Time(Type::Time::now().getTotalMicroseconds() + i));
        source->setData(value);
        EXPECT_TRUE(eventually([&] {
            boost::mutex::scoped_lock lock(seenMutex);
            return seen.size() == static_cast<std::size_t>(i);
        }));
    }
    // An event does not keep a deleted process alive, and then does nothing.
    boost::weak_ptr<Process> gone(process);
    engine.deleteProcess("triggered");
    process.reset();
    EXPECT_TRUE(eventually([&] { return gone.expired(); }));
    source->setData(boost::make_shared<Data>(4));
    boost::mutex::scoped_lock lock(seenMutex);
    EXPECT_EQ(seen.size(), 3u);
}

// Workers run processes while application threads set sources, pull sinks, and enable,
// disable and delete processes. Nothing may crash, deadlock or leave a count behind.
TEST(Scheduler, ProcessesUnderLoadFromApplicationThreads) {
    LogCapture log;
    const int processes = 6;
    {
        TessarityPrivate engine(2);
        ASSERT_TRUE(engine.createSource("camera"));
        std::vector<boost::shared_ptr<NodeSource>> sources;
        for (int i = 0; i < processes; ++i) {
            auto source = boost::make_shared<NodeSource>("s" + std::to_string(i));
            sources.push_back(source);
            auto process = makeProcess("p" + std::to_string(i), source, 1 + i % 3, 500.0f);
            process->watchSource(source);
            source->addEvent(
                boost::make_shared<Event>(boost::weak_ptr<Process>(process),
                                          boost::weak_ptr<Scheduler>(engine._getScheduler())));
            engine._addProcess(process);
        }
        std::atomic<bool> stop(false);
        std::atomic<int> pulled(0);
        std::vector<std::thread> threads;
        threads.emplace_back([&] {
            for (int i = 0; !stop; ++i) {
                auto value = boost::make_shared<Data>(i);
                sources[i % processes]->setData(value);
                engine.setData("camera", value);
            }
        });
        threads.emplace_back([&] {
            for (int i = 0; !stop; ++i) {
                try {
                    if (engine.getData("p" + std::to_string(i % processes) + ":out")) ++pulled;
                } catch (const std::invalid_argument&) {
                    // deleted meanwhile
                }
            }
        });
        threads.emplace_back([&] {
            for (int i = 0; !stop; ++i) {
                const std::string name = "p" + std::to_string(i % processes);
                if (i % 3 == 0) engine.disableProcess(name);
                if (i % 3 == 1) engine.enableProcess(name);
                engine.getScheduledJobs();
            }
        });
        EXPECT_TRUE(eventually([&] { return pulled > 200; }));
        engine.deleteProcess("p0");
        engine.deleteProcess("p1");
        const int before = pulled;
        EXPECT_TRUE(eventually([&] { return pulled > before + 200; }));
        stop = true;
        for (std::thread& thread : threads) thread.join();
    }
    EXPECT_EQ(log.countAtMost(kelvo::log::Fatal), 0u);
}
