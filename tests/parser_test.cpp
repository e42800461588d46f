// The program language, through the facade's loadProgram.
#include <limits>

#include <gtest/gtest.h>

#include <tessarity/tessarity.h>

#include "logcapture.h"

using Tessarity::Data;
using Tessarity::Type::Duration;
using Tessarity::Type::Time;
typedef Tessarity::Tessarity Engine;
typedef std::vector<std::string> Names;

namespace {

const char* const kParser = "tessarity.parser";
// Far enough from the start that a process of any frequency is due.
const long long kLater = 10000000;

std::string describe(const boost::shared_ptr<Data>& value) {
    return value ? Data::getTypeName(value->getType()) + " " + value->toString() : "null";
}

// The messages of the lines at level `level` or worse, optionally of one category only.
Names messages(const LogCapture& log, int level, const char* category = nullptr) {
    Names kept;
    for (const LogCapture::Line& line : log.linesAtMost(level))
        if (!category || line.category == category) kept.push_back(line.message);
    return kept;
}

}  // namespace

TEST(Program, WorkedExampleStatementByStatement) {
    LogCapture log;
    Engine engine(0);
    EXPECT_TRUE(engine.loadProgram("# a comment"));
    ASSERT_TRUE(engine.loadProgram(
        "filter Shade { Identity t; Mandatory2 i; t:out -> i:in1; t:in <= image;\n"
        "  i:in2[128] <= limit; i:out1 => result }"));
    EXPECT_EQ(engine.getFilterInputs("Shade"), (Names{"optional image", "optional limit"}));

    ASSERT_TRUE(engine.loadProgram("source camera { }"));
    ASSERT_TRUE(engine.loadProgram("source limit { 100 }"));
    EXPECT_EQ(engine.getSources(), (Names{"camera", "limit"}));

    ASSERT_TRUE(engine.loadProgram(
        "process Main (Shade, 3, 30.0, 20000) { image <= camera; limit <= limit;\n"
        "  result => mask; camera ~> self }"));
    EXPECT_EQ(engine.getProcessSources("Main"), (Names{"camera", "limit"}));
    EXPECT_EQ(engine.getProcessPriority("Main"), 3u);
    EXPECT_EQ(engine.getProcessFrequency("Main"), 30.0f);
    EXPECT_EQ(engine.getProcessTolerance("Main"), Duration(20000));

    ASSERT_TRUE(engine.loadProgram(
        "process Watch (Identity) { in <= Main:mask; out => copy; this:tick ~> self;\n"
        "  pulse tick [true] }"));
    EXPECT_EQ(engine.getProcessSources("Watch"), (Names{"Main:mask", "tick"}));

    ASSERT_TRUE(engine.loadProgram("event Main:mask { Watch }"));
    ASSERT_TRUE(engine.loadProgram("delete source { limit }"));
    EXPECT_EQ(engine.getSources(), (Names{"camera"}));
    EXPECT_TRUE(messages(log, kelvo::log::Warning).empty());

    // The graph runs: camera through Shade into Main:mask, and on into Watch:copy.
    engine.setData("camera", boost::make_shared<Data>(7));
    EXPECT_EQ(describe(engine.getData("Main:mask", Time(1000000))), "Integer 7");
    EXPECT_EQ(describe(engine.getData("Watch:copy", Time(1000000))), "Integer 7");
}

TEST(Program, StatementsStopAtTheFirstFailure) {
    const auto refused = [](const std::string& program, const std::string& body) {
        return "loadProgram(" + program +
               ", tessarityHandle): The source a has an invalid body: " + body;
    };
    struct Case {
        std::string program;
        bool result;
        Names sources;     // the sources afterwards
        std::string line;  // a parser line of level 3 or worse, or "" for none
    };
    const Case cases[] = {
        {"", true, {}, ""},
        {"source a { 1 } source b{2}source my cam {3}", true, {"a", "b", "my cam"}, ""},
        // A tab does not end a keyword; an unknown header is skipped and its body read as one.
        {"source\ta { }", true, {}, ""},
        {"Filter x { source y } { }", true, {"y"}, ""},
        {"import data { x } import file { /nonexistent/x.tsp } source a { }", true, {"a"}, ""},
        {"delete thing {a} delete process {a} source a {}", true, {"a"}, "Can't delete process: a"},
        {"delete filter { nothing }", true, {}, "Can't delete filter: nothing"},
        {"delete source { nothing }", true, {}, "Can't delete source: nothing"},
        {"source a { 1 } source a { 1 } source b { }", false, {"a"}, ""},
        {"source a {0x10}", false, {"a"}, refused("source a {0x10}", "0x10")},
        // No lambda value can be made yet: a filter name is refused like any other text.
        {"source a {Head}", false, {"a"}, refused("source a {Head}", "Head")},
        // The comment cuts the literal and its closing quote; the rest is one unterminated body.
        {"source a {\"#\"}\nb",
         false,
         {"a"},
         refused("source a {\"#\"}\nb", "\"b" + std::string(1, '\0'))},
        // setData reads the name as "process:source"; the load stops without throwing.
        {"source p:a { 1 } source b { }", false, {"p:a"}, ""},
        {"event x { y } source b { }", false, {}, "Can't get process \"y\": process unknown."},
    };
    for (const Case& c : cases) {
        LogCapture log;
        Engine engine(0);
        EXPECT_EQ(engine.loadProgram(c.program), c.result) << c.program;
        EXPECT_EQ(engine.getSources(), c.sources) << c.program;
        const Names lines = messages(log, kelvo::log::Warning, kParser);
        EXPECT_EQ(lines.empty() ? "" : lines.back(), c.line) << c.program;
    }
}

TEST(Program, SourceValuesByLiteralForm) {
    const std::pair<std::string, std::string> cases[] = {
        {"true", "Boolean True"}, {"12", "Integer 12"},   {"-3", "Integer -3"},
        {"1.5", "Float 1.5f"},    {"-.5", "Float -0.5f"}, {"\"a;b\"", "String a;b"},
        {"\"\"", "String "},      {"null", "null"},       {"infinity", "Float inff"},
    };
    for (const auto& c : cases) {
        Engine engine(0);
        EXPECT_TRUE(engine.loadProgram("source a {\n " + c.first + " \n}")) << c.first;
        EXPECT_EQ(describe(engine.getSourceData("a", Duration::Seconds(60))), c.second) << c.first;
    }
}

TEST(Parser, ProcessHeaders) {
    struct Case {
        std::string header;
        unsigned int priority;
        float frequency;
        long long tolerance;
    };
    const Case accepted[] = {
        {"p(Identity)", 3, 1.0f, 1000000},
        {"p(Identity, , 5)", 0, 5.0f, 1000000},
        {"p(Identity,,5)", 5, 1.0f, 1000000},
        {"p(Identity, 3, infinity)", 3, std::numeric_limits<float>::infinity(), 1000000},
        {"p(Identity, 3, 10, 1, 2)", 3, 10.0f, 1},
        {"p(Identity, 2, 5., -7)", 2, 5.0f, -7},
    };
    for (const Case& c : accepted) {
        LogCapture log;
        Engine engine(0);
        EXPECT_TRUE(engine.loadProgram("process " + c.header + " { in<=4; => o }")) << c.header;
        EXPECT_EQ(log.countAtMost(kelvo::log::Warning), 0u) << c.header;
        EXPECT_EQ(engine.getProcessPriority("p"), c.priority) << c.header;
        EXPECT_EQ(engine.getProcessFrequency("p"), c.frequency) << c.header;
        EXPECT_EQ(engine.getProcessTolerance("p"), Duration(c.tolerance)) << c.header;
        EXPECT_EQ(describe(engine.getData("p:o", Time(kLater))), "Integer 4") << c.header;
    }
    const std::string settings = "\", priority, frequency, tolerance): ";
    const std::string invalid = "\", inputs, outputs): Invalid process declaration";
    // Each refusal logs one line: what it names (the header, or the process name), then why.
    const std::string refused[][3] = {
        {"p()", "p", settings + "expected at least a filter name."},
        {"(f)", "(f)", invalid},
        {"p(f)(g)", "p(f)(g)", invalid},
        {"p(f, 0x1)", "p(f, 0x1)", settings + "priority \"0x1\" is not a valid integer"},
        {"p(f,1,1e5)", "p(f,1,1e5)", settings + "frequency \"1e5\" is not a valid float."},
        {"p(f,1,2,20ms)", "p(f,1,2,20ms)",
         settings + "tolerance \"20ms\" is not a valid duration."},
        {"p(f,1,2,infinity)", "p(f,1,2,infinity)",
         settings + "tolerance \"infinity\" is not a valid duration."},
    };
    for (const auto& c : refused) {
        LogCapture log;
        Engine engine(0);
        EXPECT_FALSE(engine.loadProgram("process " + c[0] + " { in<=4; => o }")) << c[0];
        EXPECT_EQ(messages(log, kelvo::log::Warning), Names{"createProcess(\"" + c[1] + c[2]});
    }
}

TEST(Parser, ProcessBodyLinesOfNoKindAreDropped) {
    LogCapture log;
    Engine engine(0);
    ASSERT_TRUE(engine.loadProgram("source camera { 2 }"));
    // Input and output lines are told apart by their marks alone, wherever they stand.
    EXPECT_TRUE(engine.loadProgram(
        "process p (Duplicate) { in <= camera; ; Identity x; right=>r; camera~>self;\n"
        "  left =>l; source s; pulse q [1] }"));
    const std::string prefix = "createProcess(\"p (Duplicate), body): invalid declaration \"";
    EXPECT_EQ(messages(log, kelvo::log::Warning, kParser),
              (Names{prefix + "\"", prefix + "Identity x\""}));
    EXPECT_EQ(engine.getProcessSources("p"), (Names{"camera", "q", "s"}));
    EXPECT_EQ(engine.getProcessSinks("p"), (Names{"l", "r"}));
    EXPECT_EQ(describe(engine.getData("p:r", Time(kLater))), "Integer 2");

    // A local source line passes by its word anywhere, and the engine refuses the keyword.
    log.clear();
    EXPECT_FALSE(engine.loadProgram("process q (Identity) { in <= 1; mysource x }"));
    EXPECT_EQ(messages(log, kelvo::log::Warning),
              (Names{"Can't create process: invalid keyword \"mysource\"."}));
    EXPECT_FALSE(engine.isProcess("q"));
}

TEST(Parser, FilterBodies) {
    struct Case {
        std::string body;
        std::string error;  // "" when the filter is created
    };
    const std::string prefix = "createFilter(\"F\", filters, links): ";
    const Case cases[] = {
        {"Identity a; Identity b; Identity c; a -> b -> c; a:in <= x; c:out => y", ""},
        {"Identity a; Identity b; a:out->b:in; a:in<=x; b:out=>y", ""},
        {"Identity a; Identity b; a->b; a <= x; b => y", ""},
        {"Mandatory1 m; Identity a; a -> m; a:in <= x; m:out1 => y", ""},
        {"a:out -> b -> c", "Chain filter can't contain a port."},
        {"Identity a; a -> b -> c:in", "Chain filter can't contain a port."},
        // A node of one word has an empty instance name, which no link finds.
        {"Identity; Identity b; b -> Identity",
         prefix + "The filter \"Identity\" is not declared."},
        {"Identity a; Identity b; a -> b ->", prefix + "The filter \"\" is not declared."},
        {"Identity a; ; a:in <= x",
         prefix + "The filter \"\" is declared as \"\" but \"\" has never been declared."},
        {"Identity a; a:in[1][2] <= x",
         prefix + "Invalid default value declaration \"a:in[1][2]\"."},
    };
    for (const Case& c : cases) {
        LogCapture log;
        Engine engine(0);
        const bool accepted = c.error.empty();
        EXPECT_EQ(engine.loadProgram("filter F { " + c.body + " }"), accepted) << c.body;
        EXPECT_EQ(engine.isFilter("F"), accepted) << c.body;
        const Names errors = messages(log, kelvo::log::Warning);
        EXPECT_EQ(errors.empty() ? "" : errors.back(), c.error) << c.body;
        if (!accepted) continue;
        ASSERT_TRUE(engine.loadProgram("process p (F) { x <= \"v\"; y => o }")) << c.body;
        EXPECT_EQ(describe(engine.getData("p:o", Time(kLater))), "String v") << c.body;
    }
    Engine engine(0);
    EXPECT_TRUE(engine.loadProgram("filter Empty { }"));
    EXPECT_TRUE(engine.isFilter("Empty"));
}

TEST(Parser, EventsTrySinksThenSources) {
    LogCapture log;
    Engine engine(0);
    ASSERT_TRUE(
        engine.loadProgram("source camera { } process a (Identity) { in <= camera; out => o }\n"
                           "process b (Identity) { in <= a:o; out => o }"));
    EXPECT_TRUE(engine.loadProgram("event a:o { b }"));
    EXPECT_TRUE(messages(log, kelvo::log::Warning).empty());
    // A source event passes, after the failed sink attempt has logged its own line.
    EXPECT_TRUE(engine.loadProgram("event camera { b }"));
    EXPECT_EQ(messages(log, kelvo::log::Warning),
              (Names{"createEvent(\"camera\", callback): invalid sink format expected "
                     "\"process:sink\"."}));
    log.clear();
    EXPECT_FALSE(engine.loadProgram("event a:nothing { b }"));
    EXPECT_EQ(messages(log, kelvo::log::Warning, kParser),
              (Names{"Can't access source \"nothing\": process \"a\" don't own this source."}));
}

TEST(Parser, ScriptsAreCheckedThenRefused) {
    const std::string inputs = "\", inputs, outputs): ";
    const std::pair<std::string, std::string> cases[] = {
        {"s (lua, a b, c)",
         "createFilterFromScript(s, script, language): The language is not supported by "
         "tessarity."},
        {"Identity (lua, a, b)",
         "createFilterFromScript(Identity, script, language): The filter Identity already exist."},
        {"s (other, a, b)", "createFilterFromScript(\"s (other, a, b)" + inputs +
                                "the language other is not supported."},
        {"s (lua)", "createFilterFromScript(\"s (lua)" + inputs + "expected inputs got nothing."},
        {"s (lua, a)",
         "createFilterFromScript(\"s (lua, a)" + inputs + "expected outputs got nothing."},
        {"s ()", "createFilterFromScript(\"s ()" + inputs + "expected language name got nothing."},
        {"s", "createFilterFromScript(\"s\", body): Invalid filter declaration"},
    };
    for (const auto& c : cases) {
        LogCapture log;
        Engine engine(0);
        const std::size_t filters = engine.getFilters().size();
        EXPECT_FALSE(engine.loadProgram("script " + c.first + " { x } source b { }")) << c.first;
        EXPECT_EQ(messages(log, kelvo::log::Warning), (Names{c.second}));
        EXPECT_EQ(engine.getFilters().size(), filters);
        EXPECT_TRUE(engine.getSources().empty());
    }
}
