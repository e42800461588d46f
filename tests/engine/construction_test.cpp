// The filter catalogue and building processes from names, literals, local sources and
// triggers through the facade.
#include <gtest/gtest.h>

#include "kits/engine_kit.h"

using namespace enginekit;

TEST(Catalogue, ListsFlowFiltersWithTheirPorts) {
    LogCapture log;
    Engine engine(0);
    EXPECT_EQ(joined(engine.getFilters()),
              "Accum Add Append Apply BoundingBox Curry Density Dilation Dispatch Draw Duplicate "
              "Erosion Extract Geodesic Gravity Head Histogram Hue Identity IfChanged "
              "ImprovedLabelize Invert Labelize Luminance Mandatory1 Mandatory2 Mandatory3 "
              "Mandatory4 Mandatory5 Mandatory6 Mandatory7 Mandatory8 Mask Max Min Multiplex "
              "Multiply Otsu Print Ratio SNN Saturation ScaleDown SlidingWindow Sub Threshold "
              "ToColorImage");
    EXPECT_TRUE(engine.isFilter("Mandatory8"));
    EXPECT_FALSE(engine.isFilter("Mandatory9") || engine.isFilter("Mandatory"));
    EXPECT_EQ(engine.getFilterInputs("Dispatch"), (Names{"optional in", "[Boolean] state"}));
    EXPECT_EQ(engine.getFilterOutputs("Dispatch"), (Names{"ontrue", "onfalse"}));
    EXPECT_EQ(engine.getFilterInputs("Head"), Names{"[Array] in"});
    EXPECT_EQ(engine.getFilterDescription("Identity"), "* no description *");
    EXPECT_TRUE(log.lines().empty());

    EXPECT_EQ(engine.getFilterDescription("Nope"), "");
    EXPECT_TRUE(engine.getFilterInputs("Nope").empty() && engine.getFilterOutputs("Nope").empty());
    EXPECT_TRUE(engine.deleteFilter("Identity"));
    EXPECT_FALSE(engine.deleteFilter("Identity"));  // silently
    EXPECT_FALSE(create(engine, "p", "Identity", {}, {}));
    EXPECT_EQ(messages(log, kelvo::log::Error),
              (Names{"getFilterDescription(\"Nope\"): filter not found.",
                     "getFilterInputs(\"Nope\"): filter not found.",
                     "getFilterOutputs(\"Nope\"): filter not found.",
                     "createProcess(\"p\", \"Identity\", inputs, outputs): the filter "
                     "\"Identity\" is not present in the filter library."}));
    EXPECT_EQ(log.lines().size(), 4u);
}

TEST(Construction, LiteralInputsAndTheirEdges) {
    LogCapture log;
    Engine engine(0);
    ASSERT_TRUE(engine.createSource("true"));  // a source hides the constant of its name
    engine.setData("true", boost::make_shared<Data>(std::string("from the source")));
    const std::pair<std::string, std::string> cases[] = {
        {"12", "12"},       {"-3", "-3"},          {"", "0"},
        {"1.5", "1.5f"},    {".5", "0.5f"},        {"infinity", "inff"},
        {"false", "False"}, {"\"a\\tb\"", "a\tb"}, {"true", "from the source"},
        {"null", "null"},   {"Head", "{void*}"}};
    for (const auto& c : cases) {
        ASSERT_TRUE(create(engine, "lit", "Identity", {{"in", c.first}}, {{"out", "out"}}));
        // "null" feeds no value: Identity's required input aborts the run.
        EXPECT_EQ(text(engine.getData("lit:out")), c.second) << c.first;
        EXPECT_EQ(engine.getProcessSources("lit"),
                  Names{c.first == "true" ? "true" : "___Anonymous0"});
        engine.deleteProcess("lit");
    }
    EXPECT_EQ(log.countAtMost(kelvo::log::Warning), 0u);
}

TEST(Construction, SinksUsedTwiceBecomeAggregations) {
    Engine engine(0);
    ASSERT_TRUE(create(engine, "dup", "Mandatory3", {{"in1", "1"}, {"in2", "2"}, {"in3", "3"}},
                       {{"out1", "all"}, {"out2", "all"}, {"out3", "all"}}));
    EXPECT_EQ(engine.getProcessSources("dup"),
              (Names{"___Anonymous0", "___Anonymous1", "___Anonymous2"}));
    EXPECT_EQ(engine.getProcessSinks("dup"),
              (Names{"___Anonymous3", "___Anonymous4", "___Anonymous5"}));
    EXPECT_EQ(engine.getProcessAggregatedSinks("dup"), Names{"all"});
    EXPECT_EQ(text(engine.getData("dup:all")), "{1;2;3}");
    EXPECT_EQ(text(engine.getLastData("dup:___Anonymous4")), "2");
}

TEST(Construction, LocalSourcesPulsesAndTriggers) {
    LogCapture log;
    Engine engine(0);
    ASSERT_TRUE(engine.createSource("camera"));
    // A pulse with a default: a value set on it serves one run, then the default returns.
    ASSERT_TRUE(create(engine, "gate", "Multiplex", {{"master", "this:kick"}, {"slave", "camera"}},
                       {{"out", "out"}}, {}, {{"pulse", "kick[7]"}, {"source", "unused"}}));
    EXPECT_EQ(engine.getProcessSources("gate"), (Names{"camera", "kick", "unused"}));
    EXPECT_EQ(text(engine.getData("gate:out", at(10))), "7");
    engine.setData("gate:kick", boost::make_shared<Data>(1));
    EXPECT_EQ(text(engine.getData("gate:out", at(20))), "1");
    EXPECT_EQ(text(engine.getData("gate:out", at(30))), "7");
    EXPECT_EQ(text(engine.getSourceData("gate:kick", kTolerance)), "7");

    // A sink of one process feeds another, and wakes it through a trigger.
    ASSERT_TRUE(create(engine, "next", "Identity", {{"in", "gate:out"}}, {{"out", "out"}},
                       {{"gate:out", "self"}}));
    EXPECT_EQ(engine.getProcessSources("next"), Names{"gate:out"});
    EXPECT_EQ(text(engine.getData("next:out", at(40))), "7");
    EXPECT_EQ(log.countAtMost(kelvo::log::Warning), 0u);

    // Each refusal logs one line, given here as "LEVEL CATEGORY: TEXT".
    auto refused = [&](const Pairs& inputs, const Pairs& outputs, const Pairs& triggers,
                       const Pairs& sources) -> std::string {
        log.clear();
        const bool made = engine.createProcess("bad", "Identity", inputs, outputs, triggers,
                                               sources, 0, 1.0f, kTolerance);
        const std::vector<LogCapture::Line> lines = log.lines();
        if (made || engine.isProcess("bad") || lines.size() != 1) return "not refused as said";
        return std::to_string(lines[0].level) + " " + lines[0].category + ": " + lines[0].message;
    };
    const std::string e2 = "2 tessarity.private: ", e3 = "3 tessarity.private: ";
    const std::string p1 = e2 + "createProcess(\"bad\", \"Identity\", ...): ";
    const std::string p2 = "createProcess(\"bad\", \"Identity\", inputs, outputs): ";
    // Hexadecimal is no integer; a string holding ":" names a process sink.
    EXPECT_EQ(refused({{"in", "0x10"}}, {}, {}, {}),
              p1 + "impossible to find the specified source \"0x10\".");
    EXPECT_EQ(refused({{"in", "\"a:b\""}}, {}, {}, {}),
              p1 + "impossible to find the specified process \"\"a\".");
    EXPECT_EQ(refused({{"nope", "1"}}, {}, {}, {}),
              e2 + p2 + "impossible to find the specified input \"nope\".");
    EXPECT_EQ(refused({}, {{"nope", "out"}}, {}, {}),
              e3 + p2 +
                  "impossible to find the specified output \"nope\".\n"
                  "  Please verify the output list.");
    EXPECT_EQ(refused({}, {}, {}, {{"pulse", "p[1][2]"}}),
              p1 + "Invalid default value declaration: \"pulse p[1][2]\".");
    EXPECT_EQ(refused({}, {}, {}, {{"pulse", "p[nope]"}}), p1 + "Invalid default value: nope");
    EXPECT_EQ(refused({}, {}, {}, {{"local", "p"}}),
              e2 + "Can't create process: invalid keyword \"local\".");
    EXPECT_EQ(refused({{"in", "this:p"}}, {}, {}, {}),
              e2 + p2 + "impossible to find the local source \"p\" in the current process.");
    EXPECT_EQ(refused({{"in", "gate:nope"}}, {}, {}, {}),
              e2 + p2 + "impossible to find the specified sink \"nope\" in the process \"gate\".");
    EXPECT_EQ(refused({}, {}, {{"gate:out", "gate"}}, {}),
              e2 + p2 + "\"self\" expected instead of \"gate\".");
    EXPECT_EQ(refused({}, {}, {{"this:p", "self"}}, {}),
              e2 + p2 + "The source \"p\" is not declared in the process.");
    EXPECT_EQ(refused({}, {}, {{"ghost:out", "self"}}, {}),
              e2 + p2 + "The process \"ghost\" is not declared.");
    EXPECT_EQ(refused({}, {}, {{"gate:all", "self"}}, {}),
              e2 + p2 + "The sink \"all\" is not declared in \"gate\".");
    // Without ":", "self" is looked up as a process name.
    EXPECT_EQ(refused({}, {{"out", "o"}}, {{"o", "self"}}, {}),
              e3 + p2 + "impossible to find the specified process \"self\".");
    EXPECT_EQ(refused({{"in", "camera"}}, {}, {{"camera", "ghost"}}, {}),
              e3 + p2 + "impossible to find the specified process \"ghost\".");
    EXPECT_EQ(refused({}, {}, {{"o", "self"}}, {}),
              e3 + p2 + "impossible to find the specified sink \"o\".");
}

TEST(Construction, RegistrationAndTheWorkers) {
    LogCapture log;
    Engine engine(2);
    ASSERT_TRUE(engine.createSource("camera"));
    engine.setData("camera", boost::make_shared<Data>(5));
    ASSERT_TRUE(engine.createProcess("copy", "Identity", {{"in", "camera"}}, {{"out", "out"}}, {},
                                     {}, 9, 50.0f, Tessarity::Type::Duration::Milliseconds(20)));
    EXPECT_EQ(engine.getProcessPriority("copy"), 8u);  // the process itself keeps at most 8
    bool found = false;
    for (const LogCapture::Line& line : log.lines())
        found = found || (line.level == kelvo::log::Verbose &&
                          line.message ==
                              "new tessarity process: \"copy\" priority: 8 "
                              "frequency: 50 tolerance: 20ms");
    EXPECT_TRUE(found);

    // A second process of that name is dropped, and the call still succeeds.
    EXPECT_TRUE(engine.createProcess("copy", "Duplicate", {}, {}, {}, {}, 1, 1.0f, kTolerance));
    EXPECT_EQ(engine.getProcessSinks("copy"), Names{"out"});
    // The workers run it by themselves.
    EXPECT_TRUE(eventually([&] { return engine.getLastData("copy:out") != nullptr; }));
    EXPECT_EQ(text(engine.getLastData("copy:out")), "5");
}
