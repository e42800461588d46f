// The engine facade: its workers, the round trip of values through global sources, and
// declarations from several threads while the workers run.
#include <atomic>
#include <fstream>

#include <gtest/gtest.h>
#include <boost/filesystem.hpp>

#include "kits/engine_kit.h"

using namespace enginekit;

// Threads of this process whose name is "TesWrk_idle".
static int idleWorkers() {
    int count = 0;
    for (const auto& task : boost::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream comm((task.path() / "comm").string());
        std::string name;
        count += std::getline(comm, name) && name == "TesWrk_idle";
    }
    return count;
}

TEST(Engine, WorkersLiveFromConstructionToStop) {
    {
        Engine engine(2);
        EXPECT_TRUE(eventually([] { return idleWorkers() == 2; }));
        engine.stopScheduler();
        EXPECT_EQ(idleWorkers(), 0);  // stop joins them
        engine.stopScheduler();
        engine.startScheduler();
        engine.startScheduler();  // a second start adds none
        EXPECT_TRUE(eventually([] { return idleWorkers() == 2; }));
    }
    EXPECT_EQ(idleWorkers(), 0);  // the last handle stops them
    Engine manual(0);
    EXPECT_EQ(idleWorkers(), 0);
}

TEST(Engine, SourceRoundTripAndFailures) {
    LogCapture log;
    Engine engine(0);
    EXPECT_TRUE(engine.getSources().empty());
    ASSERT_TRUE(engine.createSource("zoom") && engine.createSource("camera"));
    EXPECT_EQ(engine.getSources(), (Names{"camera", "zoom"}));
    EXPECT_FALSE(engine.getSourceData("camera", kTolerance));
    auto value = boost::make_shared<Data>(std::string("frame"));
    value->setTimestamp(at(42));
    engine.setData("camera", value);
    EXPECT_EQ(engine.getSourceData("camera", kTolerance), value);
    EXPECT_EQ(engine.getSourceData("camera", at(1), kTolerance), value);

    // A copy of the handle is the same engine.
    Engine copy = engine;
    EXPECT_EQ(copy.getSourceData("camera", kTolerance), value);
    copy.setData("camera", boost::shared_ptr<Data>());
    EXPECT_FALSE(engine.getSourceData("camera", kTolerance));
    EXPECT_TRUE(log.lines().empty());

    // Failures leave the sources as they were.
    engine.setData("camera", value);
    EXPECT_FALSE(engine.createSource("camera"));
    EXPECT_EQ(engine.getSourceData("camera", kTolerance), value);
    const std::string setError = "Can't set data for source \"lens\": source unknown.";
    const std::string getError = "Can't get data from source \"lens\": source unknown.";
    EXPECT_EQ(thrown([&] { engine.setData("lens", value); }), setError);
    EXPECT_EQ(thrown([&] { engine.getSourceData("lens", kTolerance); }), getError);
    EXPECT_FALSE(engine.deleteSource("lens"));
    for (const LogCapture::Line& line : log.lines())
        EXPECT_TRUE(line.level == kelvo::log::Error && line.category == "tessarity.private");
    EXPECT_EQ(messages(log, kelvo::log::Debug),
              (Names{"createSource(\"camera\"): source already exists.", setError, getError,
                     "Can't delete source \"lens\": source unknown."}));

    // A deleted name can be created again, empty.
    EXPECT_TRUE(engine.deleteSource("camera"));
    EXPECT_EQ(engine.getSources(), Names{"zoom"});
    EXPECT_NE(thrown([&] { engine.setData("camera", value); }), "");
    ASSERT_TRUE(engine.createSource("camera"));
    EXPECT_FALSE(engine.getSourceData("camera", kTolerance));
}

// Application threads create and delete sources, processes and aliases, rename, disable and
// enable them, set sources and pull sinks, while the workers run the processes. A refused call
// reports the unknown name, by std::invalid_argument or a false result; nothing else may
// happen, and nothing may deadlock or leave a count behind.
TEST(Engine, DeclarationsUnderLoad) {
    LogCapture log;  // keeps the expected error lines off stderr
    {
        Engine engine(2);
        ASSERT_TRUE(engine.createSource("camera"));
        std::atomic<int> unexpected(0);
        auto declare = [&](int t) {
            const std::string alias = "alias" + std::to_string(t);
            for (int i = 0; i < 300; ++i) {
                const std::string source = "s" + std::to_string((i + t) % 3);  // shared
                i % 2 ? engine.deleteSource(source) : engine.createSource(source);
                thrown([&] {
                    engine.setData(source, boost::make_shared<Data>(i));
                    boost::shared_ptr<Data> back = engine.getSourceData(source, kTolerance);
                    unexpected += back && back->getType() != Tessarity::Integer;
                });
                const std::string name = "p" + std::to_string(t) + "_" + std::to_string(i % 4);
                engine.createProcess(name, "Identity", {{"in", "camera"}}, {{"out", "out"}},
                                     {{"camera", "self"}}, {}, 1 + i % 3, 200.0f, kTolerance);
                engine.createSourceAlias(alias, "camera");
                engine.setData("camera", boost::make_shared<Data>(i));
                thrown([&] { engine.getData(name + ":out"); });
                engine.disableProcess(name);
                engine.enableProcess(name);
                engine.renameProcess(name, name + "r");
                engine.renameSourceAlias(alias, alias + "m");
                engine.isSourceBound("camera");
                engine.deleteProcess(name + "r");
                engine.deleteSource(alias + "m");
            }
        };
        std::thread other(declare, 1);
        declare(0);
        other.join();
        EXPECT_EQ(unexpected, 0);
    }
    EXPECT_EQ(log.countAtMost(kelvo::log::Fatal), 0u);
}
