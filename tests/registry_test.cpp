// Operations on existing processes, aliases and derived sources, and event registration,
// through the facade.
#include <atomic>
#include <chrono>
#include <functional>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>

#include <tessarity/tessarity.h>

#include "logcapture.h"

using Tessarity::Data;
typedef Tessarity::Tessarity::Pairs Pairs;

namespace {

const Tessarity::Type::Duration kTolerance = Tessarity::Type::Duration::Seconds(1);

bool copyProcess(Tessarity::Tessarity& engine, const std::string& name, const std::string& input,
                 float frequency = 1e7f) {
    return engine.createProcess(name, "Identity", {{"in", input}}, {{"out", "out"}}, {}, {}, 0,
                                frequency, kTolerance);
}

// A value as text, "null" for none, so that a missing value fails a test without a crash.
std::string text(const boost::shared_ptr<Data>& value) {
    return value ? value->toString() : "null";
}

// The text of the std::invalid_argument that `call` throws, or "" if it throws none.
std::string thrown(const std::function<void()>& call) {
    try {
        call();
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "";
}

}  // namespace

TEST(Registry, UnknownProcessNamesAreReportedAsDocumented) {
    LogCapture log;
    Tessarity::Tessarity engine(0);
    EXPECT_EQ(engine.getProcessDescription("p"), "");
    EXPECT_FALSE(engine.setProcessDescription("p", "d"));
    EXPECT_TRUE(engine.getProcessSources("p").empty());
    EXPECT_TRUE(engine.getProcessSinks("p").empty());
    EXPECT_TRUE(engine.getProcessAggregatedSinks("p").empty());
    EXPECT_EQ(engine.getProcessPriority("p"), 0u);
    EXPECT_EQ(engine.getProcessFrequency("p"), 0.0f);
    EXPECT_FALSE(engine.renameProcess("p", "q"));
    EXPECT_FALSE(engine.resetProcess("p"));
    EXPECT_FALSE(engine.isProcessEnable("p"));
    EXPECT_FALSE(engine.isProcessZombie("p"));
    EXPECT_FALSE(engine.enableProcess("p"));
    EXPECT_FALSE(engine.disableProcess("p"));
    EXPECT_FALSE(engine.deleteProcess("p"));
    EXPECT_EQ(thrown([&] { engine.getProcessTolerance("p"); }),
              "Can't set tolerance for the process \"p\": process unknown.");
    EXPECT_EQ(thrown([&] { engine.setProcessPriority("p", 1); }),
              "Can't set priority for the process \"p\": process unknown.");
    EXPECT_EQ(thrown([&] { engine.setProcessFrequency("p", 1); }),
              "Can't set frequency for the process \"p\": process unknown.");
    EXPECT_EQ(thrown([&] { engine.setProcessTolerance("p", kTolerance); }),
              "Can't set tolerance for the process \"p\": process unknown.");
    const std::string format =
        "Can't get last data(\"p\"): the sink is not correctly formated (\"process:sink\" "
        "expected).";
    EXPECT_EQ(thrown([&] { engine.getData("p"); }), format);
    EXPECT_EQ(thrown([&] { engine.getLastData("p"); }), format);
    EXPECT_EQ(thrown([&] { engine.getData("p:out"); }),
              "Can't get data(\"p:out\"): the process \"p\" does not exist.");
    EXPECT_EQ(thrown([&] { engine.getLastData("p:out"); }),
              "Can't get last data(\"p:out\"): the process \"p\" does not exist.");
    EXPECT_EQ(engine.getInstrumentationResult(), "");

    std::vector<std::string> messages;
    for (const LogCapture::Line& line : log.lines()) {
        EXPECT_EQ(line.level, kelvo::log::Error);
        messages.push_back(line.message);
    }
    ASSERT_EQ(messages.size(), 22u);
    EXPECT_EQ(messages[0], "Can't get description of the process \"p\": process unknown");
    EXPECT_EQ(messages[1], "Can't set description for the process \"p\": process unknown.");
    EXPECT_EQ(messages[4], "Can't get aggregated sinks of the process \"p\": process unknown.");
    EXPECT_EQ(messages[7], "Can't rename the process \"p\": process unknown.");
    EXPECT_EQ(messages[8], "Process \"p\" does not exist.");
    EXPECT_EQ(messages[9], "Can't test if process \"p\" is enable: process unknown.");
    EXPECT_EQ(messages[12], "Can't disable process \"p\": process unknown.");
    EXPECT_EQ(messages[13], "Can't delete process \"p\": process unknown.");
}

TEST(Registry, ParametersRenameResetAndMemory) {
    LogCapture log;
    Tessarity::Tessarity engine(0);
    ASSERT_TRUE(engine.createSource("camera"));
    ASSERT_TRUE(engine.createProcess("once", "IfChanged", {{"in", "camera"}}, {{"out", "out"}}, {},
                                     {}, 0, 1e7f, kTolerance));
    engine.setProcessPriority("once", 100);
    EXPECT_EQ(engine.getProcessPriority("once"), 8u);
    engine.setProcessFrequency("once", 1e7f);
    engine.setProcessDescription("once", "passes each value once");
    EXPECT_EQ(engine.getProcessDescription("once"), "passes each value once");

    // IfChanged remembers the last value in the filter memory, under the process and a
    // request that starts with the process's name: after a rename the filter starts afresh,
    // and a reset forgets what it remembered.
    engine.setData("camera", boost::make_shared<Data>(1));
    EXPECT_TRUE(engine.getData("once:out", Tessarity::Type::Time(1)));
    EXPECT_FALSE(engine.getData("once:out", Tessarity::Type::Time(2)));
    EXPECT_TRUE(engine.renameProcess("once", "twice"));
    EXPECT_EQ(engine.getProcesses(), (std::vector<std::string>{"twice"}));
    EXPECT_TRUE(engine.getData("twice:out", Tessarity::Type::Time(3)));
    EXPECT_FALSE(engine.getData("twice:out", Tessarity::Type::Time(4)));
    EXPECT_TRUE(engine.resetProcess("twice"));
    EXPECT_TRUE(engine.getData("twice:out", Tessarity::Type::Time(5)));

    // Disabled and not needed: no value and no exception; enabled again, it runs.
    EXPECT_TRUE(engine.disableProcess("twice"));
    EXPECT_FALSE(engine.isProcessEnable("twice"));
    EXPECT_FALSE(engine.getData("twice:out", Tessarity::Type::Time(6)));
    EXPECT_TRUE(engine.enableProcess("twice"));
    EXPECT_EQ(text(engine.getLastData("twice:out")), "1");
    EXPECT_EQ(thrown([&] { engine.getData("twice:nope"); }),
              "Can't get data(\"nope\"): the process twice doesn't own this sink node.");
    EXPECT_EQ(thrown([&] { engine.setProcessTolerance("twice", Tessarity::Type::Duration(-1)); }),
              "Can't set tolerance for process \"twice\":  tolerance must be positive.");

    // A rename onto an existing name replaces that process; a deleted name starts afresh.
    ASSERT_TRUE(copyProcess(engine, "other", "camera"));
    EXPECT_TRUE(engine.renameProcess("twice", "other"));
    EXPECT_EQ(engine.getProcesses(), (std::vector<std::string>{"other"}));
    EXPECT_EQ(engine.getProcessSinks("other"), (std::vector<std::string>{"out"}));
    EXPECT_TRUE(engine.deleteProcess("other"));
    EXPECT_TRUE(engine.getProcesses().empty());
}

TEST(Registry, AliasesAndDerivedSources) {
    LogCapture log;
    Tessarity::Tessarity engine(0);
    ASSERT_TRUE(engine.createSource("left"));
    ASSERT_TRUE(engine.createSource("right"));
    engine.setData("left", boost::make_shared<Data>(1));
    engine.setData("right", boost::make_shared<Data>(2));
    ASSERT_TRUE(engine.createSourceAlias("eye", "left"));
    EXPECT_FALSE(engine.createSourceAlias("eye", "right"));
    EXPECT_FALSE(engine.createSourceAlias("eye2", "eye"));  // no alias of an alias
    EXPECT_FALSE(engine.createSource("eye"));
    EXPECT_EQ(engine.getSources(), (std::vector<std::string>{"left", "right"}));
    EXPECT_EQ(text(engine.getSourceData("eye", kTolerance)), "1");
    EXPECT_EQ(thrown([&] { engine.setData("eye", boost::make_shared<Data>(3)); }),
              "Can't set data for source \"eye\": source unknown.");

    ASSERT_TRUE(copyProcess(engine, "look", "eye", 5.0f));
    ASSERT_TRUE(copyProcess(engine, "stare", "left", 30.0f));
    EXPECT_TRUE(engine.isSourceBound("left"));
    EXPECT_EQ(engine.getSourceFrequency("left"), 30.0f);
    EXPECT_FALSE(engine.isSourceBound("right"));
    EXPECT_EQ(engine.getSourceFrequency("nothing"), 0.0f);

    // Retargeted, the process reads the other source at its next run.
    EXPECT_EQ(text(engine.getData("look:out", Tessarity::Type::Time(1000000000LL))), "1");
    ASSERT_TRUE(engine.retargetSourceAlias("eye", "right"));
    EXPECT_EQ(text(engine.getData("look:out", Tessarity::Type::Time(2000000000LL))), "2");
    EXPECT_TRUE(engine.isSourceBound("right"));
    EXPECT_EQ(engine.getSourceFrequency("right"), 5.0f);
    ASSERT_TRUE(engine.renameSourceAlias("eye", "gaze"));
    EXPECT_FALSE(engine.renameSourceAlias("eye", "look2"));
    EXPECT_FALSE(engine.renameSourceAlias("gaze", "left"));
    EXPECT_TRUE(engine.isSourceBound("right"));  // through the alias "gaze"
    EXPECT_TRUE(engine.disableProcess("look"));
    EXPECT_FALSE(engine.isSourceBound("right"));
    EXPECT_FALSE(engine.retargetSourceAlias("gaze", "eye"));

    // A deleted source stays readable through its alias.
    EXPECT_TRUE(engine.deleteSource("right"));
    EXPECT_EQ(text(engine.getSourceData("gaze", kTolerance)), "2");
    EXPECT_TRUE(engine.retargetSourceAlias("gaze", "left"));

    // A sink published as a source, and a process's own source addressed as process:source.
    ASSERT_TRUE(engine.createSourceFromProcessSink("copied", "stare:out"));
    EXPECT_FALSE(engine.getSourceData("copied", kTolerance));  // its value lives in runs
    ASSERT_TRUE(copyProcess(engine, "follow", "copied"));
    EXPECT_EQ(text(engine.getData("follow:out", Tessarity::Type::Time(3000000000LL))), "1");
    engine.setData("stare:left", boost::make_shared<Data>(9));
    EXPECT_EQ(text(engine.getSourceData("left", kTolerance)), "9");
    EXPECT_FALSE(engine.createSourceFromProcessSink("copied", "stare:out"));
    EXPECT_FALSE(engine.createSourceFromProcessSink("c", "stare"));
    EXPECT_FALSE(engine.createSourceFromProcessSink("c", "ghost:out"));
    EXPECT_FALSE(engine.createSourceFromProcessSink("c", "stare:nope"));
    EXPECT_EQ(thrown([&] { engine.setData("ghost:x", nullptr); }),
              "Can't set data for source \"ghost:x\": process \"ghost\" not found.");
    EXPECT_EQ(thrown([&] { engine.setData("stare:x", nullptr); }),
              "Can't set data for source \"stare:x\": source \"x\" not found.");
    EXPECT_EQ(thrown([&] { engine.getSourceData("ghost:x", kTolerance); }),
              "Can't get data from source \"x\": process \"ghost\" unknown.");
    EXPECT_EQ(thrown([&] { engine.getSourceData("stare:x", kTolerance); }),
              "Can't get data from source \"x\": process \"stare\" don't own this source.");

    std::vector<std::string> messages;
    for (const LogCapture::Line& line : log.linesAtMost(kelvo::log::Error))
        messages.push_back(line.message);
    const std::vector<std::string> expected{
        "Can't create alias \"eye\": source or alias is already present.",
        "Can't create alias \"eye2\": source \"eye\" not found.",
        "createSource(\"eye\"): source already exists.",
        "Can't set data for source \"eye\": source unknown.",
        "Can't rename alias \"eye\": alias unknown.",
        "Can't rename alias \"gaze\": \"left\" is already in use.",
        "Can't retarget alias \"gaze\" to  \"eye\": alias or target unknown",
        "createSourceFromProcessSink(\"copied\"): source already exists.",
        "createSourceFromProcessSink(\"c\", \"stare\"): impossible to find the specified process "
        "sink. Please make sure to write the sink name as \"process_name:sink_name\".",
        "createSourceFromProcessSink(\"c\", \"ghost:out\"): impossible to find the specified "
        "process \"ghost\".",
        "createSourceFromProcessSink(\"c\", \"stare:nope\"): impossible to find the specified "
        "sink \"nope\" in the process \"stare\"."};
    ASSERT_GE(messages.size(), expected.size());
    EXPECT_EQ(std::vector<std::string>(messages.begin(), messages.begin() + expected.size()),
              expected);
}

TEST(Registry, EventsOnSinksAndSources) {
    LogCapture log;
    Tessarity::Tessarity engine(0);
    ASSERT_TRUE(engine.createSource("camera"));
    ASSERT_TRUE(engine.createProcess("pair", "Duplicate", {{"in", "camera"}},
                                     {{"left", "both"}, {"right", "both"}, {"left", "one"}}, {}, {},
                                     0, 1e7f, kTolerance));
    ASSERT_TRUE(copyProcess(engine, "woken", "camera"));
    std::vector<std::string> seen;
    // A callback may come back into the engine: no registry lock is held while it runs.
    ASSERT_TRUE(engine.createEvent("pair:both", [&](boost::shared_ptr<Data> value) {
        seen.push_back("both " + value->toString() + " " +
                       std::to_string(engine.getSources().size()));
    }));
    ASSERT_TRUE(engine.createEvent("pair:one", [&](boost::shared_ptr<Data> value) {
        seen.push_back("one " + value->toString());
        engine.getLastData("pair:both");
    }));
    ASSERT_TRUE(engine.createSourceEvent("camera", [&](boost::shared_ptr<Data> value) {
        seen.push_back("camera " + value->toString());
        engine.getData("pair:one", Tessarity::Type::Time(value->getTimestamp()));
    }));
    ASSERT_TRUE(engine.createSourceEvent("pair:camera", "woken"));
    ASSERT_TRUE(engine.createEvent("pair:one", "woken"));
    auto value = boost::make_shared<Data>(4);
    value->setTimestamp(Tessarity::Type::Time(7));
    engine.setData("camera", value);
    EXPECT_EQ(seen, (std::vector<std::string>{"camera 4", "one 4", "both {4;4} 1"}));

    EXPECT_FALSE(engine.createEvent("pair", [](boost::shared_ptr<Data>) {}));
    EXPECT_FALSE(engine.createEvent("a:b", "x"));
    EXPECT_FALSE(engine.createEvent("ghost:out", [](boost::shared_ptr<Data>) {}));
    EXPECT_FALSE(engine.createEvent("pair:nope", "woken"));
    EXPECT_EQ(thrown([&] { engine.createSourceEvent("lens", [](boost::shared_ptr<Data>) {}); }),
              "Can't retrieve source \"lens\": source unknown.");
    EXPECT_EQ(thrown([&] { engine.createSourceEvent("ghost:x", [](boost::shared_ptr<Data>) {}); }),
              "Can't retrieve source \"x\": process \"ghost\" unknown.");
    EXPECT_EQ(thrown([&] { engine.createSourceEvent("pair:x", [](boost::shared_ptr<Data>) {}); }),
              "Can't retrieve source \"x\": process \"pair\" don't own this source.");
    EXPECT_EQ(thrown([&] { engine.createSourceEvent("camera", "ghost"); }),
              "Can't get process \"ghost\": process unknown.");
    EXPECT_EQ(thrown([&] { engine.createSourceEvent("pair:x", "woken"); }),
              "Can't access source \"x\": process \"pair\" don't own this source.");
    EXPECT_EQ(thrown([&] { engine.createSourceEvent("lens", "woken"); }),
              "Can't get data from source \"lens\": source unknown.");
    std::vector<std::string> messages;
    for (const LogCapture::Line& line : log.linesAtMost(kelvo::log::Error))
        messages.push_back(line.message);
    ASSERT_GE(messages.size(), 4u);
    EXPECT_EQ(std::vector<std::string>(messages.begin(), messages.begin() + 4),
              (std::vector<std::string>{
                  "createEvent(\"pair\", callback): invalid sink format expected \"process:sink\".",
                  "createEvent(a:b, x): unknown target process.",
                  "createEvent(\"ghost:out\", callback): unknown process \"ghost\".",
                  "createEvent(\"pair:nope\", callback): unknown sink \"nope\"."}));
}

// Workers run processes while application threads create, rename and delete processes and
// aliases, set sources and pull sinks.
TEST(Registry, DeclarationsUnderLoad) {
    LogCapture log;
    {
        Tessarity::Tessarity engine(2);
        ASSERT_TRUE(engine.createSource("camera"));
        std::atomic<bool> stop(false);
        std::atomic<int> rounds(0);
        std::vector<std::thread> threads;
        threads.emplace_back([&] {
            for (int i = 0; !stop; ++i) engine.setData("camera", boost::make_shared<Data>(i));
        });
        for (int t = 0; t < 2; ++t)
            threads.emplace_back([&, t] {
                for (int i = 0; !stop; ++i) {
                    const std::string name = "p" + std::to_string(t) + "_" + std::to_string(i % 4);
                    engine.createProcess(name, "Identity", {{"in", "camera"}}, {{"out", "out"}},
                                         {{"camera", "self"}}, {}, 1 + i % 3, 200.0f, kTolerance);
                    engine.createSourceAlias("alias" + std::to_string(t), "camera");
                    try {
                        engine.getData(name + ":out");
                    } catch (const std::invalid_argument&) {
                    }
                    engine.renameProcess(name, name + "r");
                    engine.renameSourceAlias("alias" + std::to_string(t),
                                             "moved" + std::to_string(t));
                    engine.isSourceBound("camera");
                    engine.deleteProcess(name + "r");
                    engine.deleteSource("moved" + std::to_string(t));
                    ++rounds;
                }
            });
        for (int i = 0; i < 1000 && rounds < 300; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        stop = true;
        for (std::thread& thread : threads) thread.join();
        EXPECT_GE(rounds, 300);
    }
    EXPECT_EQ(log.countAtMost(kelvo::log::Fatal), 0u);
}
