// Composite filters: building them from library filters, running them in processes, and the
// declarations that are refused.
#include <atomic>

#include <gtest/gtest.h>

#include "graph/filter_composite.h"
#include "graph/node_filter.h"
#include "graph/port.h"
#include "kits/engine_kit.h"

using namespace enginekit;

namespace {

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
    EXPECT_EQ(engine.getFilterInputs("Pair"), (Names{"optional x", "optional y"}));
    EXPECT_EQ(engine.getFilterOutputs("Pair"), (Names{"first", "second"}));
    // A composite of a composite; the inner "y" is left unbound and takes its default.
    ASSERT_TRUE(engine.createFilter("Outer", {{"Pair", "p"}}, {}, {{{"p", "x"}, "in"}},
                                    {{{"p", "second"}, "out"}}));
    ASSERT_TRUE(engine.createSource("camera"));
    engine.setData("camera", boost::make_shared<Data>(1));
    ASSERT_TRUE(
        create(engine, "run", "Pair", {{"x", "camera"}}, {{"first", "f"}, {"second", "s"}}));
    ASSERT_TRUE(create(engine, "outer", "Outer", {{"in", "camera"}}, {{"out", "o"}}));
    for (long long t = 1; t <= 2; ++t) {
        EXPECT_EQ(text(engine.getData("run:f", at(t))), "1");
        EXPECT_EQ(text(engine.getLastData("run:s")), "5");
        EXPECT_EQ(text(engine.getData("outer:o", at(t))), "5");
    }
    // Without "x", the inner Identity aborts, Mandatory2 gets nothing on in1 and aborts too.
    engine.setData("camera", boost::shared_ptr<Data>());
    EXPECT_EQ(text(engine.getData("run:f", at(3))), "null");
    EXPECT_EQ(log.countAtMost(kelvo::log::Error), 0u);

    // A library filter deleted afterwards keeps working inside the composite.
    EXPECT_TRUE(engine.deleteFilter("Identity"));
    engine.setData("camera", boost::make_shared<Data>(2));
    EXPECT_EQ(text(engine.getData("run:f", at(4))), "2");
}

TEST(Composite, CompositionFailuresCreateNothing) {
    LogCapture log;
    Engine engine(0);
    ASSERT_TRUE(createPair(engine));
    // A composite "C" of one Identity "a" (or of `filters`), refused with its last error line.
    auto refused = [&](const Engine::Links& links, const Engine::Exports& inputs,
                       const Engine::Exports& outputs,
                       const Pairs& filters = {{"Identity", "a"}}) -> std::string {
        log.clear();
        if (engine.createFilter("C", filters, links, inputs, outputs) || engine.isFilter("C"))
            return "created";
        const Names lines = messages(log, kelvo::log::Error);
        return lines.empty() ? "no error" : lines.back();
    };
    const std::string prefix = "createFilter(\"C\", filters, links): ";
    EXPECT_EQ(refused({}, {}, {}, {{"C", "c"}}),
              prefix + "The filter \"c\" is declared as \"C\" but \"C\" has never been declared.");
    EXPECT_EQ(refused({{{"z", ""}, {"a", ""}}}, {}, {}),
              prefix + "The filter \"z\" is not declared.");
    EXPECT_EQ(refused({{{"a", ""}, {"z", ""}}}, {}, {}),
              prefix + "The filter \"z\" is not declared.");
    EXPECT_EQ(refused({{{"a", "o"}, {"a", ""}}}, {}, {}),
              prefix + "The port \"o\" is not declared in \"a\".");
    EXPECT_EQ(refused({{{"a", ""}, {"a", "i"}}}, {}, {}),
              prefix + "The port \"i\" is not declared in \"a\"");
    EXPECT_EQ(refused({}, {{{"a", "nope"}, "x"}}, {}),
              prefix + "Invalid exported input: \"a:nope<=x\".");
    EXPECT_EQ(refused({}, {{{"a", "in[null]"}, "x"}}, {}),
              prefix + "Invalid default value: \"null\".");
    EXPECT_EQ(refused({}, {}, {{{"a", "nope"}, "y"}}),
              prefix + "Invalid exported output: \"a:a=>y\".");
    log.clear();
    EXPECT_FALSE(createPair(engine));
    EXPECT_EQ(messages(log, kelvo::log::Error),
              Names{"createFilter(\"Pair\", filters, links): A filter with the name \"Pair\" "
                    "already exists."});
}

TEST(Composite, CallersAreKeptApartByRequest) {
    LogCapture log;
    Engine engine(0);
    ASSERT_TRUE(createPair(engine));
    ASSERT_TRUE(engine.createFilter("Twice", {{"Pair", "p"}, {"Pair", "q"}}, {},
                                    {{{"p", "x"}, "a"}, {{"q", "x"}, "b"}},
                                    {{{"p", "first"}, "pa"}, {{"q", "first"}, "qb"}}));
    ASSERT_TRUE(
        create(engine, "both", "Twice", {{"a", "1"}, {"b", "2"}}, {{"pa", "pa"}, {"qb", "qb"}}));
    EXPECT_EQ(text(engine.getData("both:pa")), "1");
    EXPECT_EQ(text(engine.getLastData("both:qb")), "2");

    // One composite object, used by processes on two threads at once.
    std::atomic<int> wrong(0);
    auto pull = [&](int t) {
        const std::string name = "p" + std::to_string(t);
        create(engine, name, "Pair", {{"x", std::to_string(t)}}, {{"first", "f"}});
        for (int i = 1; i < 300; ++i)
            wrong += text(engine.getData(name + ":f", at(i))) != std::to_string(t);
    };
    std::thread other(pull, 1);
    pull(0);
    other.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(log.countAtMost(kelvo::log::Error), 0u);

    // Called directly with the wrong count of values.
    log.clear();
    Tessarity::FilterComposite composite("Bare");
    EXPECT_TRUE(composite.addNode(boost::make_shared<Tessarity::NodeFilter>("a", nullptr)));
    EXPECT_FALSE(composite.addNode(boost::make_shared<Tessarity::NodeFilter>("a", nullptr)));
    EXPECT_FALSE(composite.exportInput("nope", "", "x"));
    const Tessarity::StringHash p("p");
    EXPECT_TRUE(composite.applyFilter({boost::make_shared<Data>(1)}, p, p, 0).empty());
    EXPECT_EQ(messages(log, kelvo::log::Debug),
              (Names{"Can't add node \"a\": node is already present.",
                     "Can't retrieved node \"nope\": node unknown.",
                     "Bare->applyFilter(): missing input data"}));
    EXPECT_TRUE(log.lines().back().category == "tessarity.Composite " &&
                log.lines().back().level == kelvo::log::Fatal);
}

// One composite object shared by processes that the workers run and by processes that
// application threads pull, all at once: no value crosses from one process to another, and a
// node shared inside the composite gives both of its consumers the same value.
TEST(Composite, SharedByWorkersAndApplicationThreads) {
    LogCapture log;
    std::atomic<int> wrong(0), workerRuns(0);
    {
        Engine engine(2);
        // in -> fork -> left, right -> both (Mandatory2) -> a, b
        ASSERT_TRUE(engine.createFilter("Diamond",
                                        {{"Identity", "fork"},
                                         {"Identity", "left"},
                                         {"Identity", "right"},
                                         {"Mandatory2", "both"}},
                                        {{{"fork", ""}, {"left", ""}},
                                         {{"fork", ""}, {"right", ""}},
                                         {{"left", ""}, {"both", "in1"}},
                                         {{"right", ""}, {"both", "in2"}}},
                                        {{{"fork", "in"}, "in"}},
                                        {{{"both", "out1"}, "a"}, {{"both", "out2"}, "b"}}));
        // Process `name` on its own source: run by the workers at 1 kHz with priority 1, at
        // every pull with priority 0.
        auto declare = [&](const std::string& name, unsigned int priority) {
            return engine.createSource(name) &&
                   engine.createProcess(name, "Diamond", {{"in", name}}, {{"a", "a"}, {"b", "b"}},
                                        {}, {}, priority, priority ? 1000.0f : 1e7f, kTolerance);
        };
        for (int w = 1; w <= 2; ++w) {
            const std::string name = "w" + std::to_string(w);
            ASSERT_TRUE(declare(name, 1));
            // A worker's values of process wN are N * 100000 and more.
            ASSERT_TRUE(engine.createEvent(name + ":a", [&, w](boost::shared_ptr<Data> value) {
                wrong += int(*value) / 100000 != w;
                ++workerRuns;
            }));
        }
        auto pull = [&](int t) {
            const std::string name = "p" + std::to_string(t);
            if (!declare(name, 0)) ++wrong;
            for (int i = 1; i <= 1000; ++i) {
                engine.setData("w" + std::to_string(1 + t % 2),
                               boost::make_shared<Data>((1 + t % 2) * 100000 + i));
                const std::string value = std::to_string(t * 1000 + i);
                engine.setData(name, boost::make_shared<Data>(t * 1000 + i));
                wrong += text(engine.getData(name + ":a", at(i))) != value;
                wrong += text(engine.getLastData(name + ":b")) != value;
            }
        };
        std::thread first(pull, 1), second(pull, 2);
        pull(0);
        first.join();
        second.join();
        EXPECT_TRUE(eventually([&] { return workerRuns > 10; }));
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(log.countAtMost(kelvo::log::Warning), 0u);
}

// A composite may link a node back into itself: the run gives no value there, says so, and
// leaves no count behind.
TEST(Composite, ACycleGivesNoValue) {
    LogCapture log;
    {
        Engine engine(0);
        ASSERT_TRUE(engine.createFilter("Loop", {{"Identity", "i"}, {"Mandatory2", "m"}},
                                        {{{"i", ""}, {"m", "in1"}}, {{"m", "out1"}, {"i", ""}}},
                                        {{{"m", "in2"}, "x"}}, {{{"m", "out2"}, "y"}}));
        ASSERT_TRUE(create(engine, "loop", "Loop", {{"x", "1"}}, {{"y", "y"}}));
        EXPECT_EQ(text(engine.getData("loop:y")), "null");
    }
    EXPECT_EQ(messages(log, kelvo::log::Warning),
              Names{"m->requestData(loop): the node depends on its own output."});
}
