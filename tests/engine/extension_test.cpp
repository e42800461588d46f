// Extending the engine: user filters, program files and plug-in modules; and the graph dump.
#include <fstream>

#include <gtest/gtest.h>
#include <boost/filesystem.hpp>

#include "kits/engine_kit.h"

using namespace enginekit;
namespace fs = boost::filesystem;

namespace {

// Declares the given inputs, and counts its calls in its local data.
struct Declared : Tessarity::UserFilter {
    Declared(const std::string& name, const Names& inputs, bool local = false)
        : name(name), inputs(inputs), local(local) {}
    std::string getName() override { return name; }
    std::string getDescription() override { return "declared " + name; }
    Names getInputs() override { return inputs; }
    Names getOutputs() override { return {"out", "out [Integer]"}; }
    std::vector<boost::shared_ptr<Data>> apply(
        const std::vector<boost::shared_ptr<Data>>&) override {
        setLocalData(boost::make_shared<Data>(getLocalData() ? int(*getLocalData()) + 1 : 1));
        return {getLocalData()};
    }
    bool hasLocalData() override { return local; }
    std::string name;
    Names inputs;
    bool local;
};

void write(const fs::path& path, const std::string& content) {
    fs::create_directories(path.parent_path());
    std::ofstream(path.string()) << content;
}

}  // namespace

TEST(UserFilter, PortDeclarationsAndLocalData) {
    LogCapture log;
    Engine engine(0);
    ASSERT_TRUE(engine.createFilter(boost::make_shared<Declared>(
        "Ports", Names{"img[ColorImage GrayscaleImage]", "img2 [ColorImage GrayscaleImage]",
                       "optional mask[BinaryImage]", "required mask[BinaryImage]", "a b c",
                       "pic[Picture ColorImage]", "any[Picture]", "empty[]", "[ColorImage]",
                       "both[ColorImage] [Float]", "plain"})));
    EXPECT_EQ(engine.getFilterInputs("Ports"),
              (Names{"[ColorImage, GrayscaleImage] img", "[ColorImage, GrayscaleImage] img2",
                     "optional [BinaryImage] mask", "[ColorImage] pic", "any", "empty",
                     "ColorImage", "plain"}));
    EXPECT_EQ(engine.getFilterOutputs("Ports"), (Names{"out"}));
    EXPECT_EQ(engine.getFilterDescription("Ports"), "declared Ports");
    Names logged;
    for (const LogCapture::Line& line : log.lines()) {
        EXPECT_EQ(line.category, "tessarity.filterAdapter");
        logged.push_back(std::to_string(line.level) + " " + line.message);
    }
    EXPECT_EQ(logged, (Names{"2 Can't parse input declaration (required mask[BinaryImage])",
                             "5 Missing type declaration for input a b c of filter Ports",
                             "2 Can't parse input declaration (a b c)",
                             "2 Invalid input type Picture for port pic of filter Ports",
                             "2 Invalid input type Picture for port any of filter Ports",
                             "5 Missing type declaration for input ColorImage of filter Ports",
                             "2 Can't parse input declaration (both[ColorImage] [Float])",
                             "5 Missing type declaration for input plain of filter Ports",
                             "2 Can't parse output declaration (out [Integer])"}));

    // Local data is kept per process and place, and swapped in for each call.
    ASSERT_TRUE(engine.createFilter(boost::make_shared<Declared>("Count", Names{}, true)));
    ASSERT_TRUE(create(engine, "a", "Count", {}, {{"out", "out"}}) &&
                create(engine, "b", "Count", {}, {{"out", "out"}}));
    EXPECT_EQ(text(engine.getData("a:out", at(1))), "1");
    EXPECT_EQ(text(engine.getData("b:out", at(1))), "1");
    EXPECT_EQ(text(engine.getData("a:out", at(2))), "2");
    // A second filter of the name replaces the first, for later declarations only.
    ASSERT_TRUE(engine.createFilter(boost::make_shared<Declared>("Count", Names{"in"})));
    EXPECT_EQ(engine.getFilterInputs("Count"), (Names{"in"}));
    EXPECT_EQ(text(engine.getData("a:out", at(3))), "3");
}

TEST(ProgramFile, ImportsOncePerPathAndRefusesOtherKinds) {
    LogCapture log;
    Engine engine(0);
    const fs::path base = fs::temp_directory_path() / fs::unique_path("tessarity-%%%%%%%%");
    write(base / "main.tsp",
          "source first { 1 }\nimport file { sub/x.TSP }\nimport file { main.tsp }\n");
    write(base / "sub" / "x.TSP", "source " + std::string(600, 'l') + " { 2 } source second { 3 }");
    write(base / "bad.Tsp", "source bad { }");
    fs::create_directories(base / "dir.tsp");

    EXPECT_TRUE(engine.loadProgramFromFile((base / "main.tsp").string()));
    EXPECT_EQ(engine.getSources(), (Names{"first", std::string(600, 'l'), "second"}));
    EXPECT_TRUE(engine.loadProgramFromFile((base / "main.tsp").string()));  // taken already
    EXPECT_EQ(engine.getSources().size(), 3u);
    log.clear();
    EXPECT_FALSE(engine.loadProgramFromFile((base / "bad.Tsp").string()));
    EXPECT_FALSE(engine.loadProgramFromFile((base / "dir.tsp").string()));
    EXPECT_FALSE(engine.loadProgramFromFile((base / "none.tsp").string()));
    const std::string bad = "\"" + (base / "bad.Tsp").string() + "\"";
    const std::string dir = "\"" + (base / "dir.tsp").string() + "\"";
    const std::string none = "\"" + (base / "none.tsp").string() + "\"";
    EXPECT_EQ(messages(log, kelvo::log::Error),
              (Names{"loadProgramFromFile(\"" + bad + "\"): invalid file format.",
                     "loadProgramFromFile(\"" + dir + "\"): \"" + dir + "\" is a directory.",
                     "loadProgramFromFile(\"" + none + "\"): \"" + none + "\" not found."}));
    fs::remove_all(base);
}

TEST(ProgramFile, ModuleRegistersThroughItsEntry) {
    LogCapture log;
    Engine engine(0);
    // A module's load answers false; its second load is a path taken already.
    EXPECT_FALSE(engine.loadProgramFromFile(TESSARITY_EXAMPLE_MODULE));
    EXPECT_TRUE(engine.loadProgramFromFile(TESSARITY_EXAMPLE_MODULE));
    EXPECT_TRUE(engine.isFilter("Scale"));
    EXPECT_EQ(engine.getSources(), (Names{"scale_factor"}));
    // The filter's code outlives the loader's dlclose.
    ASSERT_TRUE(create(engine, "scale", "Scale", {{"in", "21"}}, {{"out", "out"}}));
    EXPECT_EQ(text(engine.getData("scale:out")), "42");
    EXPECT_EQ(log.countAtMost(kelvo::log::Error), 0u);
}

TEST(ProgramFile, ReadmeExampleRuns) {
    LogCapture log;
    Engine engine(0);
    ASSERT_TRUE(engine.loadProgramFromFile(TESSARITY_EXAMPLES_DIR "/gate.tsp"));
    EXPECT_EQ(engine.getSources(), (Names{"camera", "lens", "limit"}));  // lens is imported
    EXPECT_EQ(engine.getProcesses(), (Names{"Main", "Watch"}));
    auto value = boost::make_shared<Data>(7);
    value->setTimestamp(at(1000000));
    engine.setData("camera", value);
    EXPECT_EQ(text(engine.getData("Watch:copy", at(1000000))), "7");
    EXPECT_EQ(text(engine.getLastData("Main:mask")), "7");
    EXPECT_EQ(log.countAtMost(kelvo::log::Warning), 0u);
}

TEST(GraphDump, PrimitiveNodeAndCompositeAtEachDepth) {
    LogCapture log;
    Engine engine(0);
    ASSERT_TRUE(engine.createFilter("Wrap", {{"Identity", "a"}, {"Identity", "b"}},
                                    {{{"a", "out"}, {"b", "in"}}}, {{{"a", "in"}, "x"}},
                                    {{{"b", "out"}, "y"}}));
    EXPECT_EQ(engine.dumpFilter("Nope", 1), "");
    EXPECT_TRUE(log.lines().empty());

    const std::string component = "node[shape=component, style=filled, fillcolor=white];\n";
    const std::string ellipse = "node[shape=ellipse, style=filled, fillcolor=white];\n";
    const std::string head =
        "digraph Wrap{\nrankdir=LR;\n\nsubgraph cluster_Wrap_0\n{\nlabel=\"Wrap (Composite "
        "Filter)\";\nstyle=\"filled,dashed\";\nfillcolor=white;\ncolor=black;\n\n";
    // Wrap's exported ports "x", into `in`, and "y", out of `out`, and the end of the text.
    auto exports = [&](const std::string& in, const std::string& out) {
        return ellipse + "Wrap_x_0 [label=x];\nWrap_x_0 -> " + in + ";\nWrap_y_0 [label=y];\n" +
               out + " -> Wrap_y_0;\n}\n\n}\n";
    };
    EXPECT_EQ(engine.dumpFilter("Wrap", 0),
              head + component + "Wrap_0[label=Wrap];\n" + exports("Wrap_0", "Wrap_0"));

    // The node `n` numbered `id`, showing `inside`, its ports wired into `in` and out of `out`.
    auto node = [&](const std::string& n, int id, const std::string& inside, const std::string& in,
                    const std::string& out) {
        const std::string s = "_" + std::to_string(id);
        return "subgraph cluster_" + n + s + "\n{\nlabel=\"" + n +
               " (Filter Node)\";\nstyle=filled;\nfillcolor=lightblue;\n\n" + inside + ellipse + n +
               "_in" + s + " [label=in];\n" + n + "_in" + s + " -> " + in + ";\n" + n + "_out" + s +
               " [label=out];\n" + out + " -> " + n + "_out" + s + ";\n}\n\n";
    };
    EXPECT_EQ(engine.dumpFilter("Wrap", 1),
              head + node("a", 1, component + "a_1[label=Identity];\n", "a_1", "a_1") +
                  node("b", 2, component + "b_2[label=Identity];\n", "b_2", "b_2") +
                  "a_out_1 -> b_in_2;\n" + exports("a_in_1", "b_out_2"));

    auto primitive = [&](int id) {
        const std::string s = "_" + std::to_string(id);
        return "subgraph cluster_Identity" + s +
               "\n{\nlabel = \"Identity (Primitive "
               "Filter)\";\nstyle=filled;\nfillcolor=white;\n\n" +
               component + "Identity" + s +
               "[label=Identity];\nnode[shape=circle, style=filled, "
               "fillcolor=black];\nIdentity_in" +
               s + " [label=\"\"];\nIdentity_in" + s + " -> Identity" + s + ";\nIdentity_out" + s +
               " [label=\"\"];\nIdentity" + s + " -> Identity_out" + s + ";\n}\n\n";
    };
    // Node a is 1 and its filter 2; node b is 3 and its filter 4: one count for the dump.
    EXPECT_EQ(engine.dumpFilter("Wrap", 2),
              head + node("a", 1, primitive(2), "Identity_in_2", "Identity_out_2") +
                  node("b", 3, primitive(4), "Identity_in_4", "Identity_out_4") +
                  "a_out_1 -> b_in_3;\n" + exports("a_in_1", "b_out_3"));
    EXPECT_EQ(engine.dumpFilter("Identity", 3),
              "digraph Identity{\nrankdir=LR;\n\n" + primitive(0) + "}\n");
}
