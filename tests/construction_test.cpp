// The filter catalogue and building processes from names, literals, local sources and
// triggers through the facade.
#include <chrono>
#include <thread>

#include <gtest/gtest.h>

#include <tessarity/tessarity.h>

#include "logcapture.h"

using Tessarity::Data;
typedef Tessarity::Tessarity::Pairs Pairs;

namespace {

const Tessarity::Type::Duration kTolerance = Tessarity::Type::Duration::Seconds(1);

// A process of one filter, run by pulling, at a frequency high enough to run at every pull.
bool create(Tessarity::Tessarity& engine, const std::string& name, const std::string& filter,
            const Pairs& inputs, const Pairs& outputs, const Pairs& triggers = Pairs(),
            const Pairs& sources = Pairs()) {
    return engine.createProcess(name, filter, inputs, outputs, triggers, sources, 0, 1e7f,
                                kTolerance);
}

}  // namespace

TEST(Catalogue, ListsFlowFiltersWithTheirPorts) {
    LogCapture log;
    Tessarity::Tessarity engine(0);
    const std::vector<std::string> filters = engine.getFilters();
    EXPECT_EQ(filters, (std::vector<std::string>{
                           "Dispatch", "Duplicate", "Head", "Identity", "IfChanged", "Mandatory1",
                           "Mandatory2", "Mandatory3", "Mandatory4", "Mandatory5", "Mandatory6",
                           "Mandatory7", "Mandatory8", "Multiplex", "Print"}));
    EXPECT_TRUE(engine.isFilter("Mandatory8"));
    EXPECT_FALSE(engine.isFilter("Mandatory9") || engine.isFilter("Mandatory"));
    EXPECT_EQ(engine.getFilterInputs("Dispatch"),
              (std::vector<std::string>{"optional in", "[Boolean] state"}));
    EXPECT_EQ(engine.getFilterOutputs("Dispatch"), (std::vector<std::string>{"ontrue", "onfalse"}));
    EXPECT_EQ(engine.getFilterInputs("Head"), (std::vector<std::string>{"[Array] in"}));
    EXPECT_EQ(engine.getFilterDescription("Identity"), "* no description *");
    EXPECT_TRUE(log.lines().empty());

    EXPECT_EQ(engine.getFilterDescription("Nope"), "");
    EXPECT_TRUE(engine.getFilterInputs("Nope").empty());
    EXPECT_TRUE(engine.getFilterOutputs("Nope").empty());
    EXPECT_TRUE(engine.deleteFilter("Identity"));
    EXPECT_FALSE(engine.deleteFilter("Identity"));  // silently
    EXPECT_FALSE(create(engine, "p", "Identity", {}, {}));
    std::vector<std::string> messages;
    for (const LogCapture::Line& line : log.lines()) messages.push_back(line.message);
    EXPECT_EQ(messages, (std::vector<std::string>{
                            "getFilterDescription(\"Nope\"): filter not found.",
                            "getFilterInputs(\"Nope\"): filter not found.",
                            "getFilterOutputs(\"Nope\"): filter not found.",
                            "createProcess(\"p\", \"Identity\", inputs, outputs): the filter "
                            "\"Identity\" is not present in the filter library."}));
}

TEST(Construction, LiteralInputsAndTheirEdges) {
    LogCapture log;
    Tessarity::Tessarity engine(0);
    ASSERT_TRUE(engine.createSource("true"));  // a source hides the constant of its name
    engine.setData("true", boost::make_shared<Data>(std::string("from the source")));
    struct Case {
        std::string value;
        std::string printed;
    } cases[] = {{"12", "12"},       {"-3", "-3"},          {"", "0"},
                 {"1.5", "1.5f"},    {".5", "0.5f"},        {"infinity", "inff"},
                 {"false", "False"}, {"\"a\\tb\"", "a\tb"}, {"true", "from the source"}};
    for (const Case& c : cases) {
        ASSERT_TRUE(create(engine, "lit", "Identity", {{"in", c.value}}, {{"out", "out"}}));
        boost::shared_ptr<Data> out = engine.getData("lit:out");
        ASSERT_TRUE(out) << c.value;
        EXPECT_EQ(out->toString(), c.printed) << c.value;
        EXPECT_EQ(engine.getProcessSources("lit").size(), 1u);
        engine.deleteProcess("lit");
    }
    // "null" feeds no value: Identity's required input aborts the run.
    ASSERT_TRUE(create(engine, "none", "Identity", {{"in", "null"}}, {{"out", "out"}}));
    EXPECT_FALSE(engine.getData("none:out"));
    EXPECT_EQ(engine.getProcessSources("none"), (std::vector<std::string>{"___Anonymous0"}));
    EXPECT_EQ(log.countAtMost(kelvo::log::Error), 0u);

    // Refused forms: hexadecimal, a string holding ":", a bare word, an unknown port.
    EXPECT_FALSE(create(engine, "x", "Identity", {{"in", "0x10"}}, {}));
    EXPECT_FALSE(create(engine, "x", "Identity", {{"in", "\"a:b\""}}, {}));
    EXPECT_FALSE(create(engine, "x", "Identity", {{"in", "camera"}}, {}));
    EXPECT_FALSE(create(engine, "x", "Identity", {{"nope", "1"}}, {}));
    EXPECT_FALSE(create(engine, "x", "Identity", {}, {{"nope", "out"}}));
    std::vector<LogCapture::Line> lines = log.linesAtMost(kelvo::log::Warning);
    ASSERT_EQ(lines.size(), 5u);
    const std::string p1 = "createProcess(\"x\", \"Identity\", ...): ";
    const std::string p2 = "createProcess(\"x\", \"Identity\", inputs, outputs): ";
    EXPECT_EQ(lines[0].message, p1 + "impossible to find the specified source \"0x10\".");
    EXPECT_EQ(lines[1].message, p1 + "impossible to find the specified process \"\"a\".");
    EXPECT_EQ(lines[2].message, p1 + "impossible to find the specified source \"camera\".");
    EXPECT_EQ(lines[3].message, p2 + "impossible to find the specified input \"nope\".");
    EXPECT_EQ(lines[4].message, p2 + "impossible to find the specified output \"nope\".\n"
                                     "  Please verify the output list.");
    EXPECT_EQ(lines[4].level, kelvo::log::Warning);
    EXPECT_EQ(lines[0].category, "tessarity.private");
    EXPECT_FALSE(engine.isProcess("x"));
}

TEST(Construction, SinksUsedTwiceBecomeAggregations) {
    Tessarity::Tessarity engine(0);
    ASSERT_TRUE(create(engine, "dup", "Mandatory3", {{"in1", "1"}, {"in2", "2"}, {"in3", "3"}},
                       {{"out1", "all"}, {"out2", "all"}, {"out3", "all"}}));
    EXPECT_EQ(engine.getProcessSources("dup"),
              (std::vector<std::string>{"___Anonymous0", "___Anonymous1", "___Anonymous2"}));
    EXPECT_EQ(engine.getProcessSinks("dup"),
              (std::vector<std::string>{"___Anonymous3", "___Anonymous4", "___Anonymous5"}));
    EXPECT_EQ(engine.getProcessAggregatedSinks("dup"), (std::vector<std::string>{"all"}));
    EXPECT_EQ(engine.getData("dup:all")->toString(), "{1;2;3}");
    EXPECT_EQ(engine.getLastData("dup:___Anonymous4")->toString(), "2");
}

TEST(Construction, LocalSourcesPulsesAndTriggers) {
    LogCapture log;
    Tessarity::Tessarity engine(0);
    ASSERT_TRUE(engine.createSource("camera"));
    // A pulse with a default: a value set on it serves one run, then the default returns.
    ASSERT_TRUE(create(engine, "gate", "Multiplex", {{"master", "this:kick"}, {"slave", "camera"}},
                       {{"out", "out"}}, {}, {{"pulse", "kick[7]"}, {"source", "unused"}}));
    EXPECT_EQ(engine.getProcessSources("gate"),
              (std::vector<std::string>{"camera", "kick", "unused"}));
    EXPECT_EQ(int(*engine.getData("gate:out", Tessarity::Type::Time(10))), 7);
    engine.setData("gate:kick", boost::make_shared<Data>(1));
    EXPECT_EQ(int(*engine.getData("gate:out", Tessarity::Type::Time(20))), 1);
    EXPECT_EQ(int(*engine.getData("gate:out", Tessarity::Type::Time(30))), 7);
    EXPECT_EQ(int(*engine.getSourceData("gate:kick", kTolerance)), 7);

    // A sink of one process feeds another, and wakes it through a trigger.
    ASSERT_TRUE(create(engine, "next", "Identity", {{"in", "gate:out"}}, {{"out", "out"}},
                       {{"gate:out", "self"}}));
    EXPECT_EQ(engine.getProcessSources("next"), (std::vector<std::string>{"gate:out"}));
    EXPECT_EQ(int(*engine.getData("next:out", Tessarity::Type::Time(40))), 7);
    EXPECT_EQ(log.countAtMost(kelvo::log::Warning), 0u);

    const std::string p1 = "createProcess(\"bad\", \"Identity\", ...): ";
    const std::string p2 = "createProcess(\"bad\", \"Identity\", inputs, outputs): ";
    struct Case {
        Pairs inputs, outputs, triggers, sources;
        std::string message;
    } cases[] = {
        {{},
         {},
         {},
         {{"pulse", "p[1][2]"}},
         p1 + "Invalid default value declaration: \"pulse p[1][2]\"."},
        {{}, {}, {}, {{"pulse", "p[nope]"}}, p1 + "Invalid default value: nope"},
        {{}, {}, {}, {{"local", "p"}}, "Can't create process: invalid keyword \"local\"."},
        {{{"in", "this:p"}},
         {},
         {},
         {},
         p2 + "impossible to find the local source \"p\" in the current process."},
        {{{"in", "gate:nope"}},
         {},
         {},
         {},
         p2 + "impossible to find the specified sink \"nope\" in the process \"gate\"."},
        {{}, {}, {{"gate:out", "gate"}}, {}, p2 + "\"self\" expected instead of \"gate\"."},
        {{}, {}, {{"this:p", "self"}}, {}, p2 + "The source \"p\" is not declared in the process."},
        {{}, {}, {{"ghost:out", "self"}}, {}, p2 + "The process \"ghost\" is not declared."},
        {{}, {}, {{"gate:all", "self"}}, {}, p2 + "The sink \"all\" is not declared in \"gate\"."},
        {{},
         {{"out", "o"}},
         {{"o", "self"}},
         {},
         p2 + "impossible to find the specified process \"self\"."},
        {{{"in", "camera"}},
         {},
         {{"camera", "ghost"}},
         {},
         p2 + "impossible to find the specified process \"ghost\"."},
        {{}, {}, {{"o", "self"}}, {}, p2 + "impossible to find the specified sink \"o\"."},
    };
    for (const Case& c : cases) {
        log.clear();
        EXPECT_FALSE(engine.createProcess("bad", "Identity", c.inputs, c.outputs, c.triggers,
                                          c.sources, 0, 1.0f, kTolerance));
        std::vector<LogCapture::Line> lines = log.lines();
        ASSERT_EQ(lines.size(), 1u) << c.message;
        EXPECT_EQ(lines[0].message, c.message);
    }
    EXPECT_FALSE(engine.isProcess("bad"));
}

TEST(Construction, RegistrationAndTheWorkers) {
    LogCapture log;
    Tessarity::Tessarity engine(2);
    ASSERT_TRUE(engine.createSource("camera"));
    engine.setData("camera", boost::make_shared<Data>(5));
    ASSERT_TRUE(engine.createProcess("copy", "Identity", {{"in", "camera"}}, {{"out", "out"}}, {},
                                     {}, 9, 50.0f, Tessarity::Type::Duration::Milliseconds(20)));
    // Not clamped here, unlike setProcessPriority.
    EXPECT_EQ(engine.getProcessPriority("copy"), 8u);
    bool found = false;
    for (const LogCapture::Line& line : log.lines())
        found = found || (line.level == kelvo::log::Verbose &&
                          line.message ==
                              "new tessarity process: \"copy\" priority: 8 "
                              "frequency: 50 tolerance: 20ms");
    EXPECT_TRUE(found);

    // A second process of that name is dropped, and the call still succeeds.
    EXPECT_TRUE(engine.createProcess("copy", "Duplicate", {}, {}, {}, {}, 1, 1.0f, kTolerance));
    EXPECT_EQ(engine.getProcessSinks("copy"), (std::vector<std::string>{"out"}));

    // The workers run it by themselves.
    boost::shared_ptr<Data> out;
    for (int i = 0; i < 500 && !out; ++i) {
        out = engine.getLastData("copy:out");
        if (!out) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    ASSERT_TRUE(out);
    EXPECT_EQ(int(*out), 5);
}
