// Operations on existing processes, aliases and derived sources, and event registration,
// through the facade.
#include <gtest/gtest.h>

#include "kits/engine_kit.h"

using namespace enginekit;

namespace {

// An engine without workers, the texts that refused calls on it throw, and a check that nothing
// logged a broken protocol.
struct Registry : testing::Test {
    void TearDown() override { EXPECT_EQ(log.countAtMost(kelvo::log::Fatal), 0u); }
    bool copy(const std::string& name, const std::string& input, float frequency = 1e7f) {
        return engine.createProcess(name, "Identity", {{"in", input}}, {{"out", "out"}}, {}, {}, 0,
                                    frequency, kTolerance);
    }
    std::string set(const char* s) {
        return thrown([&] { engine.setData(s, nullptr); });
    }
    std::string on(const char* s) {
        return thrown([&] { engine.createSourceEvent(s, [](boost::shared_ptr<Data>) {}); });
    }
    LogCapture log;
    Engine engine{0};
};

}  // namespace

TEST_F(Registry, UnknownProcessNamesAreReportedAsDocumented) {
    EXPECT_EQ(engine.getProcessDescription("p"), "");
    EXPECT_TRUE(engine.getProcessSources("p").empty() && engine.getProcessSinks("p").empty() &&
                engine.getProcessAggregatedSinks("p").empty());
    EXPECT_EQ(engine.getProcessPriority("p"), 0u);
    EXPECT_EQ(engine.getProcessFrequency("p"), 0.0f);
    EXPECT_FALSE(engine.setProcessDescription("p", "d") || engine.renameProcess("p", "q") ||
                 engine.resetProcess("p") || engine.isProcessEnable("p") ||
                 engine.isProcessZombie("p") || engine.enableProcess("p") ||
                 engine.disableProcess("p") || engine.deleteProcess("p"));
    const std::string unknown = "\"p\": process unknown.", exist = "\"p\" does not exist.";
    const std::pair<std::function<void()>, std::string> throwing[] = {
        {[&] { engine.getProcessTolerance("p"); }, "set tolerance for the process " + unknown},
        {[&] { engine.setProcessPriority("p", 1); }, "set priority for the process " + unknown},
        {[&] { engine.setProcessFrequency("p", 1); }, "set frequency for the process " + unknown},
        {[&] { engine.setProcessTolerance("p", {}); }, "set tolerance for the process " + unknown},
        {[&] { engine.getData("p"); },
         "get last data(\"p\"): the sink is not correctly formated (\"process:sink\" expected)."},
        {[&] { engine.getLastData("p"); },
         "get last data(\"p\"): the sink is not correctly formated (\"process:sink\" expected)."},
        {[&] { engine.getData("p:out"); }, "get data(\"p:out\"): the process " + exist},
        {[&] { engine.getLastData("p:out"); }, "get last data(\"p:out\"): the process " + exist}};
    Names expected{"Can't get description of the process \"p\": process unknown",
                   "Can't get sources of the process " + unknown,
                   "Can't get sinks of the process " + unknown,
                   "Can't get aggregated sinks of the process " + unknown,
                   "Can't get priority of the process " + unknown,
                   "Can't get frequency of the process " + unknown,
                   "Can't set description for the process " + unknown,
                   "Can't rename the process " + unknown,
                   "Process " + exist,
                   "Can't test if process \"p\" is enable: process unknown.",
                   "Can't test if process \"p\" is zombie: process unknown.",
                   "Can't enable process " + unknown,
                   "Can't disable process " + unknown,
                   "Can't delete process " + unknown};
    // The throwing group logs the text it throws.
    for (const auto& call : throwing) {
        expected.push_back("Can't " + call.second);
        EXPECT_EQ(thrown(call.first), expected.back());
    }
    EXPECT_EQ(engine.getInstrumentationResult(), "");

    for (const LogCapture::Line& line : log.lines()) EXPECT_EQ(line.level, kelvo::log::Error);
    EXPECT_EQ(messages(log, kelvo::log::Error), expected);
}

TEST_F(Registry, ParametersRenameResetAndMemory) {
    ASSERT_TRUE(engine.createSource("camera"));
    ASSERT_TRUE(create(engine, "once", "IfChanged", {{"in", "camera"}}, {{"out", "out"}}));
    engine.setProcessPriority("once", 100);
    EXPECT_EQ(engine.getProcessPriority("once"), 8u);  // clamped
    engine.setProcessFrequency("once", 2e7f);
    EXPECT_EQ(engine.getProcessFrequency("once"), 2e7f);
    EXPECT_TRUE(engine.setProcessDescription("once", "passes each value once"));
    EXPECT_EQ(engine.getProcessDescription("once"), "passes each value once");

    // IfChanged remembers the last value under the process and a request that starts with the
    // process's name: after a rename the filter starts afresh, and a reset forgets.
    engine.setData("camera", boost::make_shared<Data>(1));
    EXPECT_TRUE(engine.getData("once:out", at(1)) && !engine.getData("once:out", at(2)));
    EXPECT_TRUE(engine.renameProcess("once", "twice"));
    EXPECT_EQ(engine.getProcesses(), Names{"twice"});
    EXPECT_TRUE(engine.getData("twice:out", at(3)) && !engine.getData("twice:out", at(4)));
    EXPECT_TRUE(engine.resetProcess("twice") && engine.getData("twice:out", at(5)));

    // Disabled and not needed: no value and no exception; enabled again, it runs.
    EXPECT_TRUE(engine.disableProcess("twice") && !engine.isProcessEnable("twice"));
    EXPECT_FALSE(engine.getData("twice:out", at(6)));
    EXPECT_TRUE(engine.enableProcess("twice"));
    EXPECT_EQ(text(engine.getLastData("twice:out")), "1");
    EXPECT_EQ(thrown([&] { engine.getData("twice:nope"); }),
              "Can't get data(\"nope\"): the process twice doesn't own this sink node.");
    EXPECT_EQ(thrown([&] { engine.setProcessTolerance("twice", Tessarity::Type::Duration(-1)); }),
              "Can't set tolerance for process \"twice\":  tolerance must be positive.");

    // A rename onto an existing name replaces that process.
    EXPECT_TRUE(copy("other", "camera") && engine.renameProcess("twice", "other"));
    EXPECT_EQ(engine.getProcesses(), Names{"other"});
    EXPECT_EQ(engine.getProcessDescription("other"), "passes each value once");
}

TEST_F(Registry, AliasesAndDerivedSources) {
    ASSERT_TRUE(engine.loadProgram("source left { 1 } source right { 2 }"));
    ASSERT_TRUE(engine.createSourceAlias("eye", "left"));
    // Refused: a taken name, an alias of an alias, a source of an alias's name.
    EXPECT_FALSE(engine.createSourceAlias("eye", "right") ||
                 engine.createSourceAlias("eye2", "eye") || engine.createSource("eye"));
    EXPECT_EQ(engine.getSources(), (Names{"left", "right"}));
    EXPECT_EQ(text(engine.getSourceData("eye", kTolerance)), "1");

    ASSERT_TRUE(copy("look", "eye", 5.0f) && copy("stare", "left", 30.0f));
    EXPECT_TRUE(engine.isSourceBound("left") && !engine.isSourceBound("right"));
    EXPECT_EQ(engine.getSourceFrequency("left"), 30.0f);
    EXPECT_EQ(engine.getSourceFrequency("nothing"), 0.0f);

    // Retargeted, the process reads the other source at its next run.
    EXPECT_EQ(text(engine.getData("look:out", at(1000000000LL))), "1");
    ASSERT_TRUE(engine.retargetSourceAlias("eye", "right"));
    EXPECT_EQ(text(engine.getData("look:out", at(2000000000LL))), "2");
    EXPECT_TRUE(engine.isSourceBound("right"));
    EXPECT_EQ(engine.getSourceFrequency("right"), 5.0f);
    // A rename leaves the answer cached for "right" as it is; a disable empties the cache.
    ASSERT_TRUE(engine.renameSourceAlias("eye", "gaze"));
    EXPECT_FALSE(engine.renameSourceAlias("eye", "look2") ||
                 engine.renameSourceAlias("gaze", "left"));
    EXPECT_TRUE(engine.isSourceBound("right"));
    EXPECT_TRUE(engine.disableProcess("look") && !engine.isSourceBound("right"));
    EXPECT_FALSE(engine.retargetSourceAlias("gaze", "eye"));

    // A deleted source stays readable through its alias.
    EXPECT_TRUE(engine.deleteSource("right"));
    EXPECT_EQ(text(engine.getSourceData("gaze", kTolerance)), "2");
    EXPECT_TRUE(engine.retargetSourceAlias("gaze", "left"));

    // A sink published as a source, and a process's own source addressed as process:source.
    ASSERT_TRUE(engine.createSourceFromProcessSink("copied", "stare:out"));
    EXPECT_FALSE(engine.getSourceData("copied", kTolerance));  // its value lives in runs
    ASSERT_TRUE(copy("follow", "copied"));
    EXPECT_EQ(text(engine.getData("follow:out", at(3000000000LL))), "1");
    engine.setData("stare:left", boost::make_shared<Data>(9));
    EXPECT_EQ(text(engine.getSourceData("left", kTolerance)), "9");
    EXPECT_FALSE(engine.createSourceFromProcessSink("copied", "stare:out"));
    for (const char* sink : {"stare", "ghost:out", "stare:nope"})
        EXPECT_FALSE(engine.createSourceFromProcessSink("c", sink));
    const std::string derived = "createSourceFromProcessSink(\"c\", \"";
    EXPECT_EQ(messages(log, kelvo::log::Error),
              (Names{"Can't create alias \"eye\": source or alias is already present.",
                     "Can't create alias \"eye2\": source \"eye\" not found.",
                     "createSource(\"eye\"): source already exists.",
                     "Can't rename alias \"eye\": alias unknown.",
                     "Can't rename alias \"gaze\": \"left\" is already in use.",
                     "Can't retarget alias \"gaze\" to  \"eye\": alias or target unknown",
                     "createSourceFromProcessSink(\"copied\"): source already exists.",
                     derived + "stare\"): impossible to find the specified process sink. Please "
                               "make sure to write the sink name as \"process_name:sink_name\".",
                     derived + "ghost:out\"): impossible to find the specified process \"ghost\".",
                     derived + "stare:nope\"): impossible to find the specified sink \"nope\" in "
                               "the process \"stare\"."}));
    EXPECT_EQ(set("eye"), "Can't set data for source \"eye\": source unknown.");
    EXPECT_EQ(set("ghost:x"),
              "Can't set data for source \"ghost:x\": process \"ghost\" not found.");
    EXPECT_EQ(set("stare:x"), "Can't set data for source \"stare:x\": source \"x\" not found.");
    EXPECT_EQ(thrown([&] { engine.getSourceData("ghost:x", kTolerance); }),
              "Can't get data from source \"x\": process \"ghost\" unknown.");
    EXPECT_EQ(thrown([&] { engine.getSourceData("stare:x", kTolerance); }),
              "Can't get data from source \"x\": process \"stare\" don't own this source.");
}

TEST_F(Registry, EventsOnSinksAndSources) {
    ASSERT_TRUE(engine.createSource("camera") && copy("woken", "camera"));
    ASSERT_TRUE(create(engine, "pair", "Duplicate", {{"in", "camera"}},
                       {{"left", "both"}, {"right", "both"}, {"left", "one"}}));
    Names seen;
    // A callback may come back into the engine: no registry lock is held while it runs.
    ASSERT_TRUE(engine.createEvent("pair:both", [&](boost::shared_ptr<Data> value) {
        seen.push_back("both " + text(value) + " " + std::to_string(engine.getSources().size()));
    }));
    ASSERT_TRUE(engine.createEvent("pair:one", [&](boost::shared_ptr<Data> value) {
        seen.push_back("one " + text(value));
        engine.getLastData("pair:both");
    }));
    ASSERT_TRUE(engine.createSourceEvent("camera", [&](boost::shared_ptr<Data> value) {
        seen.push_back("camera " + text(value));
        engine.getData("pair:one", value->getTimestamp());
    }));
    ASSERT_TRUE(engine.createSourceEvent("pair:camera", "woken") &&
                engine.createEvent("pair:one", "woken"));
    engine.setData("camera", boost::make_shared<Data>(4));
    EXPECT_EQ(seen, (Names{"camera 4", "one 4", "both {4;4} 1"}));

    log.clear();
    EXPECT_FALSE(engine.createEvent("a:b", "x") ||
                 engine.createEvent("ghost:out", [](boost::shared_ptr<Data>) {}) ||
                 engine.createEvent("pair:nope", "woken"));
    EXPECT_EQ(messages(log, kelvo::log::Error),
              (Names{"createEvent(a:b, x): unknown target process.",
                     "createEvent(\"ghost:out\", callback): unknown process \"ghost\".",
                     "createEvent(\"pair:nope\", callback): unknown sink \"nope\"."}));
    EXPECT_EQ(on("lens"), "Can't retrieve source \"lens\": source unknown.");
    EXPECT_EQ(on("ghost:x"), "Can't retrieve source \"x\": process \"ghost\" unknown.");
    EXPECT_EQ(on("pair:x"), "Can't retrieve source \"x\": process \"pair\" don't own this source.");
    EXPECT_EQ(thrown([&] { engine.createSourceEvent("lens", "woken"); }),
              "Can't get data from source \"lens\": source unknown.");
}
