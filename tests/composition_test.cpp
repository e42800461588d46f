// Composite filters, user filters, the graph dump, program files and plug-in modules.
#include <atomic>
#include <fstream>
#include <thread>

#include <gtest/gtest.h>
#include <boost/filesystem.hpp>

#include <tessarity/tessarity.h>

#include "filtercomposite.h"
#include "logcapture.h"
#include "nodefilter.h"
#include "port.h"

using Tessarity::Data;
typedef Tessarity::Tessarity Engine;

namespace {

const Tessarity::Type::Duration kTolerance = Tessarity::Type::Duration::Seconds(1);

std::string text(const boost::shared_ptr<Data>& value) {
    return value ? value->toString() : "null";
}

std::vector<std::string> errors(const LogCapture& log) {
    std::vector<std::string> messages;
    for (const LogCapture::Line& line : log.linesAtMost(kelvo::log::Error))
        messages.push_back(line.message);
    return messages;
}

// x -> a (Identity) -> m:in1, y -> m:in2 with a default of 5; m (Mandatory2) -> first, second.
bool createPair(Engine& engine, const std::string& name = "Pair") {
    return engine.createFilter(name, {{"Identity", "a"}, {"Mandatory2", "m"}},
                               {{{"a", ""}, {"m", "in1"}}},
                               {{{"a", "in"}, "x"}, {{"m", "in2[5]"}, "y"}},
                               {{{"m", "out1"}, "first"}, {{"m", "out2"}, "second"}});
}

}  // namespace

TEST(Composite, ComposedFilterRunsInAProcess) {
    LogCapture log;
    Engine engine(0);
    ASSERT_TRUE(createPair(engine));
    EXPECT_EQ(engine.getFilterInputs("Pair"),
              (std::vector<std::string>{"optional x", "optional y"}));
    EXPECT_EQ(engine.getFilterOutputs("Pair"), (std::vector<std::string>{"first", "second"}));
    // A composite of a composite; the inner "y" is left unbound and takes its default.
    ASSERT_TRUE(engine.createFilter("Outer", {{"Pair", "p"}}, {}, {{{"p", "x"}, "in"}},
                                    {{{"p", "second"}, "out"}}));
    ASSERT_TRUE(engine.createSource("camera"));
    engine.setData("camera", boost::make_shared<Data>(1));
    ASSERT_TRUE(engine.createProcess("run", "Pair", {{"x", "camera"}},
                                     {{"first", "f"}, {"second", "s"}}, {}, {}, 0, 1e7f,
                                     kTolerance));
    ASSERT_TRUE(engine.createProcess("outer", "Outer", {{"in", "camera"}}, {{"out", "o"}}, {}, {},
                                     0, 1e7f, kTolerance));
    for (long long t = 1; t <= 2; ++t) {
        EXPECT_EQ(text(engine.getData("run:f", Tessarity::Type::Time(t))), "1");
        EXPECT_EQ(text(engine.getLastData("run:s")), "5");
        EXPECT_EQ(text(engine.getData("outer:o", Tessarity::Type::Time(t))), "5");
    }
    // Without "x", the inner Identity aborts, Mandatory2 gets nothing on in1 and aborts too.
    engine.setData("camera", boost::shared_ptr<Data>());
    EXPECT_EQ(text(engine.getData("run:f", Tessarity::Type::Time(3))), "null");
    EXPECT_TRUE(errors(log).empty());
    EXPECT_EQ(log.countAtMost(kelvo::log::Fatal), 0u);

    // A library filter deleted afterwards keeps working inside the composite.
    EXPECT_TRUE(engine.deleteFilter("Identity"));
    engine.setData("camera", boost::make_shared<Data>(2));
    EXPECT_EQ(text(engine.getData("run:f", Tessarity::Type::Time(4))), "2");
}

TEST(Composite, CompositionFailuresCreateNothing) {
    LogCapture log;
    Engine engine(0);
    ASSERT_TRUE(createPair(engine));
    const std::string prefix = "createFilter(\"C\", filters, links): ";
    struct Case {
        Engine::Pairs filters;
        Engine::Links links;
        Engine::Exports inputs, outputs;
        std::string message;
    } cases[] = {
        {{{"C", "c"}},
         {},
         {},
         {},
         "The filter \"c\" is declared as \"C\" but \"C\" has never been declared."},
        {{{"Identity", "a"}},
         {{{"z", ""}, {"a", ""}}},
         {},
         {},
         "The filter \"z\" is not declared."},
        {{{"Identity", "a"}},
         {{{"a", ""}, {"z", ""}}},
         {},
         {},
         "The filter \"z\" is not declared."},
        {{{"Identity", "a"}},
         {{{"a", "o"}, {"a", ""}}},
         {},
         {},
         "The port \"o\" is not declared in \"a\"."},
        {{{"Identity", "a"}},
         {{{"a", ""}, {"a", "i"}}},
         {},
         {},
         "The port \"i\" is not declared in \"a\""},
        {{{"Identity", "a"}},
         {},
         {{{"a", "in[1][2]"}, "x"}},
         {},
         "Invalid default value declaration \"a:in[1][2]\"."},
        {{{"Identity", "a"}},
         {},
         {{{"a", "nope"}, "x"}},
         {},
         "Invalid exported input: \"a:nope<=x\"."},
        {{{"Identity", "a"}},
         {},
         {{{"a", "in[null]"}, "x"}},
         {},
         "Invalid default value: \"null\"."},
        {{{"Identity", "a"}},
         {},
         {},
         {{{"a", "nope"}, "y"}},
         "Invalid exported output: \"a:a=>y\"."},
    };
    for (const Case& c : cases) {
        log.clear();
        EXPECT_FALSE(engine.createFilter("C", c.filters, c.links, c.inputs, c.outputs));
        std::vector<std::string> messages = errors(log);
        ASSERT_FALSE(messages.empty());
        EXPECT_EQ(messages.back(), prefix + c.message);
    }
    EXPECT_FALSE(engine.isFilter("C"));
    log.clear();
    EXPECT_FALSE(createPair(engine));
    EXPECT_EQ(errors(log), (std::vector<std::string>{
                               "createFilter(\"Pair\", filters, links): A filter with the name "
                               "\"Pair\" already exists."}));
}

TEST(Composite, CallersAreKeptApartByRequest) {
    LogCapture log;
    Engine engine(0);
    ASSERT_TRUE(createPair(engine));
    ASSERT_TRUE(engine.createFilter("Twice", {{"Pair", "p"}, {"Pair", "q"}}, {},
                                    {{{"p", "x"}, "a"}, {{"q", "x"}, "b"}},
                                    {{{"p", "first"}, "pa"}, {{"q", "first"}, "qb"}}));
    ASSERT_TRUE(engine.createProcess("both", "Twice", {{"a", "1"}, {"b", "2"}},
                                     {{"pa", "pa"}, {"qb", "qb"}}, {}, {}, 0, 1e7f, kTolerance));
    EXPECT_EQ(text(engine.getData("both:pa")), "1");
    EXPECT_EQ(text(engine.getLastData("both:qb")), "2");

    // One composite object, used by processes on two threads at once.
    std::atomic<int> wrong(0);
    std::vector<std::thread> threads;
    for (int t = 0; t < 2; ++t)
        threads.emplace_back([&, t] {
            const std::string name = "p" + std::to_string(t);
            engine.createProcess(name, "Pair", {{"x", std::to_string(t)}}, {{"first", "f"}}, {}, {},
                                 0, 1e7f, kTolerance);
            for (int i = 1; i < 300; ++i)
                if (text(engine.getData(name + ":f", Tessarity::Type::Time(i))) !=
                    std::to_string(t))
                    ++wrong;
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(log.countAtMost(kelvo::log::Error), 0u);

    // Called directly with the wrong count of values.
    Tessarity::FilterComposite composite("Bare");
    EXPECT_TRUE(composite.addNode(boost::make_shared<Tessarity::NodeFilter>("a", nullptr)));
    EXPECT_FALSE(composite.addNode(boost::make_shared<Tessarity::NodeFilter>("a", nullptr)));
    EXPECT_FALSE(composite.exportInput("nope", "", "x"));
    EXPECT_TRUE(composite
                    .applyFilter({boost::make_shared<Data>(1)}, Tessarity::StringHash("p"),
                                 Tessarity::StringHash("p"), 0)
                    .empty());
    std::vector<LogCapture::Line> lines = log.lines();
    ASSERT_GE(lines.size(), 3u);
    EXPECT_EQ(lines[lines.size() - 3].message, "Can't add node \"a\": node is already present.");
    EXPECT_EQ(lines[lines.size() - 2].message, "Can't retrieved node \"nope\": node unknown.");
    EXPECT_EQ(lines.back().message, "Bare->applyFilter(): missing input data");
    EXPECT_EQ(lines.back().category, "tessarity.Composite ");
    EXPECT_EQ(lines.back().level, kelvo::log::Fatal);
}
