// The program language, through the facade's loadProgram.
#include <sstream>

#include <gtest/gtest.h>

#include <tessarity/types/image.h>

#include "kits/engine_kit.h"

using namespace enginekit;
using Tessarity::Type::Time;

namespace {

const char* const kParser = "tessarity.parser";
// Far enough from the start that a process of any frequency is due.
const long long kLater = 10000000;

std::string describe(const boost::shared_ptr<Data>& value) {
    return value ? Data::getTypeName(value->getType()) + " " + value->toString() : "null";
}

// The first row of a BinaryImage value, or the description of anything else.
std::string firstRow(const boost::shared_ptr<Data>& value) {
    const auto* image = value ? static_cast<Tessarity::Type::BinaryImage*>(*value) : nullptr;
    if (!image) return describe(value);
    std::string out = "BinaryImage";
    for (int x = 0; x < image->mat.cols; ++x) out += " " + std::to_string(image->pixel(x, 0));
    return out;
}

template <class C>
boost::shared_ptr<Data> picture(const std::vector<unsigned char>& samples) {
    return boost::make_shared<Data>(boost::make_shared<C>(
        samples.data(), static_cast<unsigned int>(samples.size()) / C::Channels, 1u));
}

}  // namespace

TEST(Program, WorkedExampleStatementByStatement) {
    LogCapture log;
    Engine engine(0);
    EXPECT_TRUE(engine.loadProgram("# a comment"));
    ASSERT_TRUE(engine.loadProgram(
        "filter Shade { Threshold t; Invert i; t:out -> i:in; t:in <= image;\n"
        "  t:ceil[128] <= limit; i:out => result }"));
    EXPECT_EQ(engine.getFilterInputs("Shade"),
              (Names{"optional [ColorImage, DepthImage, GrayscaleImage] image",
                     "optional [Integer] limit"}));

    ASSERT_TRUE(engine.loadProgram("source camera { } source limit { 100 }"));

    ASSERT_TRUE(engine.loadProgram(
        "process Main (Shade, 3, 30.0, 20000) { image <= camera; limit <= limit;\n"
        "  result => mask; camera ~> self }"));
    EXPECT_EQ(engine.getProcessSources("Main"), (Names{"camera", "limit"}));
    EXPECT_EQ(engine.getProcessFrequency("Main"), 30.0f);

    ASSERT_TRUE(engine.loadProgram(
        "process Watch (Identity) { in <= Main:mask; out => copy; this:tick ~> self;\n"
        "  pulse tick [true] }"));
    EXPECT_EQ(engine.getProcessSources("Watch"), (Names{"Main:mask", "tick"}));

    ASSERT_TRUE(engine.loadProgram("event Main:mask { Watch }") &&
                engine.loadProgram("delete source { limit }"));
    EXPECT_EQ(engine.getSources(), (Names{"camera"}));
    EXPECT_TRUE(messages(log, kelvo::log::Warning).empty());

    // The graph runs: camera through Shade into Main:mask, and on into Watch:copy. Main keeps
    // the limit 100 of the deleted source. Gray pixels above it come out as 255 and colour ones
    // as 1, and the inversion clears every set byte alike.
    using namespace Tessarity::Type;
    engine.setData("camera", picture<GrayscaleImage>({50, 100, 101, 255}));
    EXPECT_EQ(firstRow(engine.getData("Main:mask", Time(1000000))), "BinaryImage 255 255 0 0");
    EXPECT_EQ(firstRow(engine.getData("Watch:copy", Time(1000000))), "BinaryImage 255 255 0 0");
    engine.setData("camera", picture<ColorImage>({100, 100, 100, 100, 100, 101}));
    EXPECT_EQ(firstRow(engine.getData("Main:mask", Time(2000000))), "BinaryImage 255 0");
    // An input of no accepted class gives no value at all.
    engine.setData("camera", boost::make_shared<Data>(7));
    EXPECT_EQ(firstRow(engine.getData("Main:mask", Time(3000000))), "null");
}

TEST(Program, StatementsStopAtTheFirstFailure) {
    // What a program leaves: its result, the sources afterwards, and the last parser line of
    // level 3 or worse.
    const auto outcome = [](const std::string& program) {
        LogCapture log;
        Engine engine(0);
        std::string out = engine.loadProgram(program) ? "true |" : "false|";
        for (const std::string& source : engine.getSources()) out += source + ",";
        const Names lines = messages(log, kelvo::log::Warning, kParser);
        return out + "|" + (lines.empty() ? "" : lines.back());
    };
    const auto refused = [](const std::string& program, const std::string& body) {
        return "false|a,|loadProgram(" + program +
               ", tessarityHandle): The source a has an invalid body: " + body;
    };
    const std::pair<std::string, std::string> cases[] = {
        {"", "true ||"},
        {"source a { 1 } source b{2}source my cam {3}", "true |a,b,my cam,|"},
        // A tab does not end a keyword; an unknown header is skipped and its body read as one.
        {"source\ta { }", "true ||"},
        {"Filter x { source y } { }", "true |y,|"},
        {"import data { x } import file { /nonexistent/x.tsp } source a { }", "true |a,|"},
        {"delete thing {a} delete process {a} source a {}", "true |a,|Can't delete process: a"},
        {"delete filter { nothing }", "true ||Can't delete filter: nothing"},
        {"delete source { nothing }", "true ||Can't delete source: nothing"},
        {"source a { 1 } source a { 1 } source b { }", "false|a,|"},
        {"source a {0x10}", refused("source a {0x10}", "0x10")},
        // A filter's name is a value: the filter as a lambda.
        {"source a {Head}", "true |a,|"},
        {"delete filter {Head} source a {Head}", refused("delete filter {Head} source a {Head}", "Head")},
        // The comment cuts the literal and its closing quote; the rest is one unterminated body.
        {"source a {\"#\"}\nb", refused("source a {\"#\"}\nb", "\"b" + std::string(1, '\0'))},
        // setData reads the name as "process:source"; the load stops without throwing.
        {"source p:a { 1 } source b { }", "false|p:a,|"},
        {"event x { y } source b { }", "false||Can't get process \"y\": process unknown."}};
    for (const auto& c : cases) EXPECT_EQ(outcome(c.first), c.second) << c.first;
}

TEST(Program, SourceValuesByLiteralForm) {
    const std::pair<std::string, std::string> cases[] = {{"true", "Boolean True"},
                                                         {"-.5", "Float -0.5f"},
                                                         {"\"a;b\"", "String a;b"},
                                                         {"\"\"", "String "},
                                                         {"null", "null"},
                                                         {"Identity", "Lambda {void*}"}};
    for (const auto& c : cases) {
        Engine engine(0);
        EXPECT_TRUE(engine.loadProgram("source a {\n " + c.first + " \n}")) << c.first;
        EXPECT_EQ(describe(engine.getSourceData("a", kTolerance)), c.second) << c.first;
    }
}

TEST(Parser, ProcessHeaders) {
    // An accepted header gives its settings and the value run; a refused one its one line.
    const auto outcome = [](const std::string& header) {
        LogCapture log;
        Engine engine(0);
        std::ostringstream out;
        if (engine.loadProgram("process " + header + " { in<=4; => o }"))
            out << engine.getProcessPriority("p") << " " << engine.getProcessFrequency("p") << " "
                << engine.getProcessTolerance("p").getTotalMicroseconds() << " "
                << describe(engine.getData("p:o", Time(kLater)));
        for (const std::string& line : messages(log, kelvo::log::Warning)) out << "|" << line;
        return out.str();
    };
    const std::string settings = "\", priority, frequency, tolerance): ";
    const std::string invalid = "\", inputs, outputs): Invalid process declaration";
    // Accepted: header and settings. Refused: header, what the line names, and why.
    const std::string cases[][3] = {
        {"p(Identity)", "", "3 1 1000000 Integer 4"},
        {"p(Identity, , 5)", "", "0 5 1000000 Integer 4"},
        {"p(Identity,,5)", "", "5 1 1000000 Integer 4"},
        {"p(Identity, 3, infinity)", "", "3 inf 1000000 Integer 4"},
        {"p(Identity, 3, 10, 1, 2)", "", "3 10 1 Integer 4"},
        {"p(Identity, 2, 5., -7)", "", "2 5 -7 Integer 4"},
        {"p()", "p", settings + "expected at least a filter name."},
        {"(f)", "(f)", invalid},
        {"p(f)(g)", "p(f)(g)", invalid},
        {"p(f, 0x1)", "p(f, 0x1)", settings + "priority \"0x1\" is not a valid integer"},
        {"p(f,1,1e5)", "p(f,1,1e5)", settings + "frequency \"1e5\" is not a valid float."},
        {"p(f,1,2,20ms)", "p(f,1,2,20ms)",
         settings + "tolerance \"20ms\" is not a valid duration."},
        {"p(f,1,2,infinity)", "p(f,1,2,infinity)",
         settings + "tolerance \"infinity\" is not a valid duration."}};
    for (const auto& c : cases)
        EXPECT_EQ(outcome(c[0]), c[1].empty() ? c[2] : "|createProcess(\"" + c[1] + c[2]) << c[0];
}

TEST(Parser, ProcessBodyLinesOfNoKindAreDropped) {
    LogCapture log;
    Engine engine(0);
    // Input and output lines are told apart by their marks alone, wherever they stand.
    EXPECT_TRUE(
        engine.loadProgram("source camera { 2 } process p (Duplicate) { in <= camera; ; Identity "
                           "x; right=>r; camera~>self;\n"
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
    const std::string prefix = "createFilter(\"F\", filters, links): ";
    // A body, and the error that refuses it or "" when the filter is created.
    const std::pair<std::string, std::string> cases[] = {
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
    for (const auto& c : cases) {
        LogCapture log;
        Engine engine(0);
        const bool accepted = c.second.empty();
        EXPECT_EQ(engine.loadProgram("filter F { " + c.first + " }"), accepted) << c.first;
        EXPECT_EQ(engine.isFilter("F"), accepted) << c.first;
        const Names errors = messages(log, kelvo::log::Warning);
        EXPECT_EQ(errors.empty() ? "" : errors.back(), c.second) << c.first;
        if (!accepted) continue;
        ASSERT_TRUE(engine.loadProgram("process p (F) { x <= \"v\"; y => o }")) << c.first;
        EXPECT_EQ(describe(engine.getData("p:o", Time(kLater))), "String v") << c.first;
    }
    Engine engine(0);
    EXPECT_TRUE(engine.loadProgram("filter Empty { }") && engine.isFilter("Empty"));
}

TEST(Parser, EventsTrySinksThenSources) {
    LogCapture log;
    Engine engine(0);
    ASSERT_TRUE(
        engine.loadProgram("source camera { } process a (Identity) { in <= camera; out => o }\n"
                           "process b (Identity) { in <= a:o; out => o }"));
    EXPECT_TRUE(engine.loadProgram("event a:o { b }") && log.countAtMost(kelvo::log::Warning) == 0);
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
        EXPECT_TRUE(engine.getFilters().size() == filters && engine.getSources().empty());
    }
}
