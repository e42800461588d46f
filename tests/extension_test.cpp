// Extending the engine: user filters, program files and plug-in modules; and the graph dump.
#include <fstream>

#include <gtest/gtest.h>
#include <boost/filesystem.hpp>

#include <tessarity/tessarity.h>

#include "logcapture.h"

using Tessarity::Data;
typedef Tessarity::Tessarity Engine;
namespace fs = boost::filesystem;

namespace {

const Tessarity::Type::Duration kTolerance = Tessarity::Type::Duration::Seconds(1);

// Declares the given inputs; counts its calls in its local data when asked to keep some.
class Declared : public Tessarity::UserFilter {
public:
    Declared(const std::string& name, std::vector<std::string> inputs, bool local = false)
        : _name(name), _inputs(inputs), _local(local) {}
    std::string getName() override { return _name; }
    std::string getDescription() override { return "declared " + _name; }
    std::vector<std::string> getInputs() override { return _inputs; }
    std::vector<std::string> getOutputs() override { return {"out", "out [Integer]"}; }
    std::vector<boost::shared_ptr<Data>> apply(
        const std::vector<boost::shared_ptr<Data>>& inputs) override {
        if (!_local) return {inputs.empty() ? boost::shared_ptr<Data>() : inputs[0]};
        const int calls = getLocalData() ? int(*getLocalData()) + 1 : 1;
        setLocalData(boost::make_shared<Data>(calls));
        return {getLocalData()};
    }
    bool hasLocalData() override { return _local; }

private:
    std::string _name;
    std::vector<std::string> _inputs;
    bool _local;
};

std::string text(const boost::shared_ptr<Data>& value) {
    return value ? value->toString() : "null";
}

void write(const fs::path& path, const std::string& content) {
    fs::create_directories(path.parent_path());
    std::ofstream(path.string()) << content;
}

}  // namespace

TEST(UserFilter, PortDeclarationsAndLocalData) {
    LogCapture log;
    Engine engine(0);
    ASSERT_TRUE(engine.createFilter(boost::make_shared<Declared>(
        "Ports", std::vector<std::string>{
                     "img[ColorImage GrayscaleImage]", "img2 [ColorImage GrayscaleImage]",
                     "optional mask[BinaryImage]", "required mask[BinaryImage]", "a b c",
                     "pic[Picture ColorImage]", "any[Picture]", "empty[]", "[ColorImage]",
                     "both[ColorImage] [Float]", "plain"})));
    EXPECT_EQ(engine.getFilterInputs("Ports"),
              (std::vector<std::string>{"[ColorImage, GrayscaleImage] img",
                                        "[ColorImage, GrayscaleImage] img2",
                                        "optional [BinaryImage] mask", "[ColorImage] pic", "any",
                                        "empty", "ColorImage", "plain"}));
    EXPECT_EQ(engine.getFilterOutputs("Ports"), (std::vector<std::string>{"out"}));
    EXPECT_EQ(engine.getFilterDescription("Ports"), "declared Ports");
    std::vector<std::string> messages;
    for (const LogCapture::Line& line : log.lines()) {
        EXPECT_EQ(line.category, "tessarity.filterAdapter");
        messages.push_back(std::to_string(line.level) + " " + line.message);
    }
    EXPECT_EQ(messages, (std::vector<std::string>{
                            "2 Can't parse input declaration (required mask[BinaryImage])",
                            "5 Missing type declaration for input a b c of filter Ports",
                            "2 Can't parse input declaration (a b c)",
                            "2 Invalid input type Picture for port pic of filter Ports",
                            "2 Invalid input type Picture for port any of filter Ports",
                            "5 Missing type declaration for input ColorImage of filter Ports",
                            "2 Can't parse input declaration (both[ColorImage] [Float])",
                            "5 Missing type declaration for input plain of filter Ports",
                            "2 Can't parse output declaration (out [Integer])"}));

    // Local data is kept per process and place, and swapped in for each call.
    ASSERT_TRUE(engine.createFilter(
        boost::make_shared<Declared>("Count", std::vector<std::string>{}, true)));
    for (const char* name : {"a", "b"})
        ASSERT_TRUE(
            engine.createProcess(name, "Count", {}, {{"out", "out"}}, {}, {}, 0, 1e7f, kTolerance));
    EXPECT_EQ(text(engine.getData("a:out", Tessarity::Type::Time(1))), "1");
    EXPECT_EQ(text(engine.getData("b:out", Tessarity::Type::Time(1))), "1");
    EXPECT_EQ(text(engine.getData("a:out", Tessarity::Type::Time(2))), "2");
    // A second filter of the name replaces the first, for later declarations only.
    ASSERT_TRUE(
        engine.createFilter(boost::make_shared<Declared>("Count", std::vector<std::string>{"in"})));
    EXPECT_EQ(engine.getFilterInputs("Count"), (std::vector<std::string>{"in"}));
    EXPECT_EQ(text(engine.getData("a:out", Tessarity::Type::Time(3))), "3");
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
    EXPECT_EQ(engine.getSources(),
              (std::vector<std::string>{"first", std::string(600, 'l'), "second"}));
    EXPECT_TRUE(engine.loadProgramFromFile((base / "main.tsp").string()));  // taken already
    EXPECT_EQ(engine.getSources().size(), 3u);
    log.clear();
    EXPECT_FALSE(engine.loadProgramFromFile((base / "bad.Tsp").string()));
    EXPECT_FALSE(engine.loadProgramFromFile((base / "dir.tsp").string()));
    EXPECT_FALSE(engine.loadProgramFromFile((base / "none.tsp").string()));
    std::vector<std::string> messages;
    for (const LogCapture::Line& line : log.linesAtMost(kelvo::log::Error))
        messages.push_back(line.message);
    const std::string bad = "\"" + (base / "bad.Tsp").string() + "\"";
    const std::string dir = "\"" + (base / "dir.tsp").string() + "\"";
    const std::string none = "\"" + (base / "none.tsp").string() + "\"";
    EXPECT_EQ(messages, (std::vector<std::string>{
                            "loadProgramFromFile(\"" + bad + "\"): invalid file format.",
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
    EXPECT_EQ(engine.getSources(), (std::vector<std::string>{"scale_factor"}));
    // The filter's code outlives the loader's dlclose.
    ASSERT_TRUE(engine.createProcess("scale", "Scale", {{"in", "21"}}, {{"out", "out"}}, {}, {}, 0,
                                     1e7f, kTolerance));
    EXPECT_EQ(text(engine.getData("scale:out")), "42");
    EXPECT_EQ(log.countAtMost(kelvo::log::Error), 0u);
}

TEST(GraphDump, PrimitiveNodeAndCompositeAtEachDepth) {
    LogCapture log;
    Engine engine(0);
    ASSERT_TRUE(engine.createFilter("Wrap", {{"Identity", "a"}, {"Identity", "b"}},
                                    {{{"a", "out"}, {"b", "in"}}}, {{{"a", "in"}, "x"}},
                                    {{{"b", "out"}, "y"}}));
    EXPECT_EQ(engine.dumpFilter("Nope", 1), "");
    EXPECT_TRUE(log.lines().empty());

    const std::string head =
        "digraph Wrap{\nrankdir=LR;\n\nsubgraph cluster_Wrap_0\n{\n"
        "label=\"Wrap (Composite Filter)\";\nstyle=\"filled,dashed\";\n"
        "fillcolor=white;\ncolor=black;\n\n";
    const std::string ellipses = "node[shape=ellipse, style=filled, fillcolor=white];\n";
    EXPECT_EQ(engine.dumpFilter("Wrap", 0),
              head +
                  "node[shape=component, style=filled, fillcolor=white];\nWrap_0[label=Wrap];\n" +
                  ellipses +
                  "Wrap_x_0 [label=x];\nWrap_x_0 -> Wrap_0;\nWrap_y_0 [label=y];\n"
                  "Wrap_0 -> Wrap_y_0;\n}\n\n}\n");

    auto node = [&](const std::string& name, long id, const std::string& body) {
        return "subgraph cluster_" + name + "_" + std::to_string(id) + "\n{\nlabel=\"" + name +
               " (Filter Node)\";\nstyle=filled;\nfillcolor=lightblue;\n\n" + body + "}\n\n";
    };
    auto flat = [&](const std::string& n, long id) {
        const std::string s = "_" + std::to_string(id);
        return "node[shape=component, style=filled, fillcolor=white];\n" + n + s +
               "[label=Identity];\n" + ellipses + n + "_in" + s + " [label=in];\n" + n + "_in" + s +
               " -> " + n + s + ";\n" + n + "_out" + s + " [label=out];\n" + n + s + " -> " + n +
               "_out" + s + ";\n";
    };
    const std::string exports = ellipses +
                                "Wrap_x_0 [label=x];\nWrap_x_0 -> a_in_1;\n"
                                "Wrap_y_0 [label=y];\nb_out_2 -> Wrap_y_0;\n}\n\n}\n";
    EXPECT_EQ(engine.dumpFilter("Wrap", 1), head + node("a", 1, flat("a", 1)) +
                                                node("b", 2, flat("b", 2)) +
                                                "a_out_1 -> b_in_2;\n" + exports);

    auto primitive = [&](long id) {
        const std::string s = "_" + std::to_string(id);
        return "subgraph cluster_Identity" + s +
               "\n{\nlabel = \"Identity (Primitive Filter)\";\n"
               "style=filled;\nfillcolor=white;\n\n"
               "node[shape=component, style=filled, fillcolor=white];\nIdentity" +
               s +
               "[label=Identity];\nnode[shape=circle, style=filled, fillcolor=black];\n"
               "Identity_in" +
               s + " [label=\"\"];\nIdentity_in" + s + " -> Identity" + s + ";\nIdentity_out" + s +
               " [label=\"\"];\nIdentity" + s + " -> Identity_out" + s + ";\n}\n\n";
    };
    auto expanded = [&](const std::string& n, long id, long inner) {
        const std::string s = "_" + std::to_string(id), i = "_" + std::to_string(inner);
        return primitive(inner) + ellipses + n + "_in" + s + " [label=in];\n" + n + "_in" + s +
               " -> Identity_in" + i + ";\n" + n + "_out" + s + " [label=out];\nIdentity_out" + i +
               " -> " + n + "_out" + s + ";\n";
    };
    // Node a is 1 and its filter 2; node b is 3 and its filter 4: one count for the dump.
    EXPECT_EQ(engine.dumpFilter("Wrap", 2),
              head + node("a", 1, expanded("a", 1, 2)) + node("b", 3, expanded("b", 3, 4)) +
                  "a_out_1 -> b_in_3;\n" + ellipses +
                  "Wrap_x_0 [label=x];\nWrap_x_0 -> a_in_1;\n"
                  "Wrap_y_0 [label=y];\nb_out_3 -> Wrap_y_0;\n}\n\n}\n");
    EXPECT_EQ(engine.dumpFilter("Identity", 3),
              "digraph Identity{\nrankdir=LR;\n\n" + primitive(0) + "}\n");
}
