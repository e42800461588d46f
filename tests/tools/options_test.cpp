// The command line of tessarity-run: what each accepted line means, the one line that each
// refused line gets, and the literal forms of --set.
#include <thread>

#include <gtest/gtest.h>

#include "options.h"

using namespace TessarityRun;

namespace {

// The options as one line, defaults left out.
std::string summary(const Options& o) {
    std::string text;
    auto add = [&text](const std::string& item) { text += (text.empty() ? "" : " ") + item; };
    if (!o.program.empty()) add("program=" + o.program);
    for (const SourceSetting& s : o.settings)
        add("set=" + s.source + "=" + (s.isFile ? "@" : "") + s.value);
    for (const FrameFeed& f : o.frames) add("frames=" + f.source + "=" + f.directory);
    for (const SinkName& s : o.sinks) add("get=" + s.process + "|" + s.sink);
    for (const DumpRequest& d : o.dumps) add("dump=" + d.filter + "|" + std::to_string(d.depth));
    for (const std::string& name : o.describe) add("describe=" + name);
    if (o.listFilters) add("filters");
    if (o.outputDirectory != "tessarity-out") add("out=" + o.outputDirectory);
    if (o.threads != std::max(1u, std::thread::hardware_concurrency()))
        add("threads=" + std::to_string(o.threads));
    if (o.verbosity != 3) add("verbosity=" + std::to_string(o.verbosity));
    if (o.help) add("help");
    if (o.runs()) add("runs");
    return text;
}

typedef std::vector<std::string> Line;

}  // namespace

TEST(RunOptions, AcceptedLinesAndTheirMeaning) {
    const struct {
        Line line;
        const char* meaning;
    } cases[] = {
        {{"p.tsp"}, "program=p.tsp runs"},
        {{"p.tsp", "--set", "camera=7", "--set=label=\"a b\"", "--get", "Main:mask"},
         "program=p.tsp set=camera=7 set=label=\"a b\" get=Main|mask runs"},
        // Options come before or after the program; a value may hold "=" and ":".
        {{"--set", "img=@shots/a=1.png", "p.tsp", "--frames=cam=dir/", "--out", "o"},
         "program=p.tsp set=img=@shots/a=1.png frames=cam=dir/ out=o runs"},
        {{"--get", "P:s:t", "p.tsp"}, "program=p.tsp get=P|s:t runs"},
        // Looking at filters needs no program and runs nothing ...
        {{"--filters"}, "filters"},
        {{"--describe", "Identity", "--dump", "Gate:2", "--dump=Identity"},
         "dump=Gate|2 dump=Identity|1 describe=Identity"},
        // ... unless something is fed or read as well.
        {{"p.tsp", "--dump", "Gate", "--get", "Main:mask"}, "program=p.tsp get=Main|mask dump=Gate|1 runs"},
        {{"--threads=0", "--verbosity", "6", "p.tsp"}, "program=p.tsp threads=0 verbosity=6 runs"},
        {{"-h"}, "help"},
        {{"--bogus", "--help"}, "help"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.line));
        EXPECT_EQ(summary(parseOptions(c.line)), c.meaning);
    }
}

TEST(RunOptions, RefusedLinesSayWhyInOneLine) {
    const struct {
        Line line;
        const char* message;
    } cases[] = {
        {{}, "no program given: tessarity-run PROGRAM.tsp [options] (see --help)"},
        {{"--set", "x=1"}, "no program given: tessarity-run PROGRAM.tsp [options] (see --help)"},
        {{"a.tsp", "b.tsp"}, "one program at a time: 'b.tsp' follows 'a.tsp'"},
        {{"p.tsp", "--frobnicate"}, "unknown option '--frobnicate' (see --help)"},
        {{"p.tsp", "--get"}, "--get needs a value (see --help)"},
        {{"p.tsp", "--get", "Main"}, "--get needs PROCESS:SINK, got 'Main'"},
        {{"p.tsp", "--set", "camera"}, "--set needs SOURCE=VALUE or SOURCE=@FILE, got 'camera'"},
        {{"p.tsp", "--set", "camera="}, "--set needs SOURCE=VALUE or SOURCE=@FILE, got 'camera='"},
        {{"p.tsp", "--set", "label=hello"},
         "--set label=hello: 'hello' is no literal (true, 3, 2.5 or \"text\"); a text keeps its "
         "quotes through the shell as in --set 'label=\"hello\"'"},
        {{"p.tsp", "--set", "n=99999999999"}, "--set n=99999999999: 99999999999 does not fit an int"},
        {{"p.tsp", "--set", "img=@"}, "--set img=@: a file name must follow the '@'"},
        {{"p.tsp", "--frames", "cam"}, "--frames needs SOURCE=DIR, got 'cam'"},
        {{"p.tsp", "--frames", "a=d1", "--frames", "a=d2"}, "--frames feeds 'a' twice"},
        {{"p.tsp", "--set", "a=1", "--frames", "a=d"}, "'a' is both set once (--set) and fed (--frames)"},
        {{"p.tsp", "--threads", "two"}, "--threads needs a whole number from 0 to 256, got 'two'"},
        {{"p.tsp", "--verbosity=7"}, "--verbosity needs a whole number from 0 to 6, got '7'"},
        {{"p.tsp", "--dump", "Gate:deep"},
         "--dump needs FILTER or FILTER:DEPTH with a whole depth, got 'Gate:deep'"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.line));
        try {
            parseOptions(c.line);
            ADD_FAILURE() << "accepted";
        } catch (const UsageError& error) {
            EXPECT_EQ(std::string(error.what()), c.message);
        }
    }
}

TEST(RunOptions, LiteralsTakeTheFormsOfTheLanguage) {
    const struct {
        const char* text;
        const char* type;  // empty: no literal
        const char* shown;
    } cases[] = {
        {"true", "Boolean", "True"},
        {"3", "Integer", "3"},
        {"-12", "Integer", "-12"},
        {"2147483648", "", ""},
        {"2.5", "Float", "2.5f"},
        {".5", "Float", "0.5f"},
        {"-1.", "Float", "-1f"},
        {"infinity", "Float", "inff"},
        {"\"a b\"", "String", "a b"},
        {"\"tab\\there\"", "String", "tab\there"},
        {"\"say \\\"hi\\\"\"", "String", "say \"hi\""},
        {"hello", "", ""},
        {"", "", ""},
        {"1.2.3", "", ""},
        {"0x10", "", ""},
        {"\"open", "", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        const boost::shared_ptr<Tessarity::Data> value = parseLiteral(c.text);
        if (*c.type == '\0') {
            EXPECT_FALSE(value);
            continue;
        }
        ASSERT_TRUE(value);
        EXPECT_EQ(Tessarity::Data::getTypeName(value->getType()), c.type);
        EXPECT_EQ(value->toString(), c.shown);
    }
}
