// The engine facade: its workers and the round trip of values through global sources.
#include <dirent.h>
#include <atomic>
#include <chrono>
#include <fstream>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>
#include <boost/make_shared.hpp>

#include <tessarity/tessarity.h>

#include "logcapture.h"

using Tessarity::Data;
using Tessarity::Type::Duration;

namespace {

// Threads of this process whose name is `name`.
int threadsNamed(const std::string& name) {
    int count = 0;
    DIR* tasks = opendir("/proc/self/task");
    if (!tasks) return -1;
    while (dirent* entry = readdir(tasks)) {
        if (entry->d_name[0] == '.') continue;
        std::ifstream comm(std::string("/proc/self/task/") + entry->d_name + "/comm");
        std::string line;
        if (std::getline(comm, line) && line == name) ++count;
    }
    closedir(tasks);
    return count;
}

// Polls until the count of idle workers is `expected`, for at most five seconds.
bool waitForWorkers(int expected) {
    for (int i = 0; i < 500; ++i) {
        if (threadsNamed("TesWrk_idle") == expected) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

const Duration kTolerance = Duration::Seconds(1);

}  // namespace

TEST(Engine, WorkersLiveFromConstructionToStop) {
    {
        Tessarity::Tessarity engine(2);
        EXPECT_TRUE(waitForWorkers(2));
        engine.stopScheduler();
        EXPECT_EQ(threadsNamed("TesWrk_idle"), 0);  // stop joins them
        engine.stopScheduler();
        engine.startScheduler();
        EXPECT_TRUE(waitForWorkers(2));
        engine.startScheduler();  // a second start adds none
        EXPECT_TRUE(waitForWorkers(2));
    }
    EXPECT_EQ(threadsNamed("TesWrk_idle"), 0);  // the last handle stops them

    Tessarity::Tessarity manual(0);
    EXPECT_EQ(threadsNamed("TesWrk_idle"), 0);
}

TEST(Engine, SourceRoundTrip) {
    LogCapture log;
    Tessarity::Tessarity engine(0);
    EXPECT_TRUE(engine.getSources().empty());
    ASSERT_TRUE(engine.createSource("zoom"));
    ASSERT_TRUE(engine.createSource("camera"));
    EXPECT_EQ(engine.getSources(), (std::vector<std::string>{"camera", "zoom"}));

    EXPECT_FALSE(engine.getSourceData("camera", kTolerance));
    auto value = boost::make_shared<Data>(std::string("frame"));
    value->setTimestamp(Tessarity::Type::Time(42));
    engine.setData("camera", value);
    EXPECT_EQ(engine.getSourceData("camera", kTolerance), value);
    EXPECT_EQ(engine.getSourceData("camera", Tessarity::Type::Time(1), kTolerance), value);

    // A copy of the handle is the same engine.
    Tessarity::Tessarity copy = engine;
    EXPECT_EQ(copy.getSourceData("camera", kTolerance), value);
    copy.setData("camera", boost::shared_ptr<Data>());
    EXPECT_FALSE(engine.getSourceData("camera", kTolerance));
    EXPECT_TRUE(log.lines().empty());
}

TEST(Engine, SourceFailures) {
    LogCapture log;
    Tessarity::Tessarity engine(0);
    ASSERT_TRUE(engine.createSource("camera"));
    engine.setData("camera", boost::make_shared<Data>(1));

    EXPECT_FALSE(engine.createSource("camera"));
    EXPECT_EQ(int(*engine.getSourceData("camera", kTolerance)), 1);  // untouched

    try {
        engine.setData("lens", boost::make_shared<Data>(2));
        ADD_FAILURE() << "setData on an unknown source did not throw";
    } catch (const std::invalid_argument& error) {
        EXPECT_STREQ(error.what(), "Can't set data for source \"lens\": source unknown.");
    }
    try {
        engine.getSourceData("lens", kTolerance);
        ADD_FAILURE() << "getSourceData on an unknown source did not throw";
    } catch (const std::invalid_argument& error) {
        EXPECT_STREQ(error.what(), "Can't get data from source \"lens\": source unknown.");
    }
    EXPECT_FALSE(engine.deleteSource("lens"));

    std::vector<LogCapture::Line> lines = log.lines();
    ASSERT_EQ(lines.size(), 4u);
    for (const LogCapture::Line& line : lines) {
        EXPECT_EQ(line.level, kelvo::log::Error);
        EXPECT_EQ(line.category, "tessarity.private");
    }
    EXPECT_EQ(lines[0].message, "createSource(\"camera\"): source already exists.");
    EXPECT_EQ(lines[1].message, "Can't set data for source \"lens\": source unknown.");
    EXPECT_EQ(lines[2].message, "Can't get data from source \"lens\": source unknown.");
    EXPECT_EQ(lines[3].message, "Can't delete source \"lens\": source unknown.");
}

TEST(Engine, DeletedSourceNameCanBeCreatedAgainEmpty) {
    Tessarity::Tessarity engine(0);
    ASSERT_TRUE(engine.createSource("camera"));
    engine.setData("camera", boost::make_shared<Data>(1));
    EXPECT_TRUE(engine.deleteSource("camera"));
    EXPECT_TRUE(engine.getSources().empty());
    EXPECT_THROW(engine.setData("camera", boost::make_shared<Data>(2)), std::invalid_argument);
    ASSERT_TRUE(engine.createSource("camera"));
    EXPECT_FALSE(engine.getSourceData("camera", kTolerance));
}

// Setters and readers race creators and deleters over a few names, with workers running.
// Every call either succeeds or reports the unknown name; nothing else may happen.
TEST(Engine, SourcesFromManyThreads) {
    LogCapture log;  // keeps the expected error lines off stderr
    Tessarity::Tessarity engine(2);
    const int names = 4, rounds = 3000;
    std::atomic<int> unexpected(0), setsDone(0);
    std::vector<std::thread> threads;
    for (int t = 0; t < 2; ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < rounds; ++i) {
                const std::string name = "s" + std::to_string((i + t) % names);
                try {
                    engine.setData(name, boost::make_shared<Data>(i));
                    ++setsDone;
                    boost::shared_ptr<Data> back = engine.getSourceData(name, kTolerance);
                    if (back && back->getType() != Tessarity::Integer) ++unexpected;
                } catch (const std::invalid_argument&) {
                    // deleted meanwhile
                } catch (...) {
                    ++unexpected;
                }
            }
        });
    for (int t = 0; t < 2; ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < rounds; ++i) {
                const std::string name = "s" + std::to_string((i * 3 + t) % names);
                if (i % 2)
                    engine.deleteSource(name);
                else
                    engine.createSource(name);
                engine.getSources();
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(unexpected, 0);
    EXPECT_GT(setsDone, 0);
    for (const LogCapture::Line& line : log.lines()) EXPECT_EQ(line.level, kelvo::log::Error);
}
