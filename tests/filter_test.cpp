// Filters, their ports and the memory they keep between runs.
#include <gtest/gtest.h>
#include <boost/make_shared.hpp>

#include "filterprimitive.h"
#include "memorymanager.h"
#include "port.h"

using namespace Tessarity;

namespace {

// Sums its input into a running total kept per (process, request).
class Total : public FilterPrimitive {
public:
    Total() : FilterPrimitive("Total") {
        _addInput("in")->addType(Integer).addType(UnsignedInteger);
        _addInput("step")->addType(Integer).setDefaultData(boost::make_shared<Data>(1));
        _addOutput("sum");
        _addOutput("count");
    }
    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long) override {
        boost::shared_ptr<Data> total = _getMemoryManager()->getData(process, request);
        int sum = (total ? int(*total) : 0) + int(*inputs[0]) * int(*inputs[1]);
        _getMemoryManager()->setData(process, request, boost::make_shared<Data>(sum));
        return {boost::make_shared<Data>(sum)};  // "count" is left without a value
    }
};

// Ports named by a count, as filters with a variable number of ports do.
class Numbered : public FilterPrimitive {
public:
    explicit Numbered(int count) : FilterPrimitive("Numbered") {
        for (int i = 1; i <= count; ++i) {
            _addInput("in" + std::to_string(i));
            _addOutput("out" + std::to_string(i));
        }
    }
    std::vector<boost::shared_ptr<Data>> applyFilter(const std::vector<boost::shared_ptr<Data>>&,
                                                     const StringHash&, const StringHash&,
                                                     long long) override {
        return {};
    }
};

boost::shared_ptr<Data> integer(int value) { return boost::make_shared<Data>(value); }

}  // namespace

TEST(FilterPrimitive, DeclaredPortsAndLookup) {
    Total total;
    EXPECT_EQ(total.getName(), "Total");
    EXPECT_EQ(total.getDescription(), "* no description *");
    ASSERT_EQ(total.getInputs().size(), 2u);
    EXPECT_EQ(total.getInput("step"), total.getInputs()[1]);
    EXPECT_TRUE(total.getInput("step")->isOptional());
    EXPECT_FALSE(total.getInput("in")->isOptional());
    EXPECT_TRUE(total.getInput("in")->isCompatible(UnsignedInteger));
    EXPECT_FALSE(total.getInput("in")->isCompatible(Float));
    EXPECT_TRUE(total.getOutput("count")->isCompatible(Float));  // no type: any
    EXPECT_FALSE(total.getInput(""));                            // two inputs: no fallback
    EXPECT_FALSE(total.getInput("sum"));

    Numbered one(1), none(0), negative(-2);
    EXPECT_EQ(one.getInput(""), one.getInputs()[0]);
    EXPECT_EQ(one.getOutput("")->getName(), "out1");
    EXPECT_FALSE(one.getInput("in"));  // the fallback is for the empty name only
    EXPECT_FALSE(none.getInput(""));
    EXPECT_TRUE(negative.getInputs().empty() && negative.getOutputs().empty());

    Numbered three(3);
    std::vector<std::string> names;
    for (const auto& port : three.getInputs()) names.push_back(port->getName());
    EXPECT_EQ(names, (std::vector<std::string>{"in1", "in2", "in3"}));
}

TEST(FilterPrimitive, StateIsKeptPerProcessAndRequest) {
    MemoryManager memory;
    Total total;
    total.bindMemoryManager(&memory);
    StringHash process("p"), other("q");
    StringHash first("p/first"), second("p/second");

    std::vector<boost::shared_ptr<Data>> out =
        total.applyFilter({integer(2), integer(1)}, process, first, 0);
    ASSERT_EQ(out.size(), 1u);  // shorter than the outputs: "count" has no value
    EXPECT_EQ(int(*out[0]), 2);
    EXPECT_EQ(int(*total.applyFilter({integer(3), integer(2)}, process, first, 0)[0]), 8);
    EXPECT_EQ(int(*total.applyFilter({integer(5), integer(1)}, process, second, 0)[0]), 5);
    EXPECT_EQ(int(*total.applyFilter({integer(1), integer(1)}, other, first, 0)[0]), 1);
    total.abortFilter(process, first, 0);  // a primitive has nothing to undo
    EXPECT_EQ(int(*memory.getData(process, first)), 8);
}

TEST(FilterPrimitive, DotText) {
    Total total;
    long id = 3;
    EXPECT_EQ(total.dumpToDot(id, 5),
              "subgraph cluster_Total_3\n"
              "{\n"
              "label = \"Total (Primitive Filter)\";\n"
              "style=filled;\n"
              "fillcolor=white;\n"
              "\n"
              "node[shape=component, style=filled, fillcolor=white];\n"
              "Total_3[label=Total];\n"
              "node[shape=circle, style=filled, fillcolor=black];\n"
              "Total_in_3 [label=\"\"];\n"
              "Total_in_3 -> Total_3;\n"
              "Total_step_3 [label=\"\"];\n"
              "Total_step_3 -> Total_3;\n"
              "Total_sum_3 [label=\"\"];\n"
              "Total_3 -> Total_sum_3;\n"
              "Total_count_3 [label=\"\"];\n"
              "Total_3 -> Total_count_3;\n"
              "}\n"
              "\n");
    EXPECT_EQ(id, 3);
    id = 0;
    EXPECT_EQ(Numbered(0).dumpToDot(id, 0),
              "subgraph cluster_Numbered_0\n{\nlabel = \"Numbered (Primitive Filter)\";\n"
              "style=filled;\nfillcolor=white;\n\n"
              "node[shape=component, style=filled, fillcolor=white];\n"
              "Numbered_0[label=Numbered];\n"
              "node[shape=circle, style=filled, fillcolor=black];\n}\n\n");
}

TEST(MemoryManager, ReadsCreateEntriesAndRenamesMoveThem) {
    MemoryManager memory;
    StringHash a("a"), b("b"), c("c"), key("k"), other("other");

    EXPECT_FALSE(memory.getData(a, key));
    EXPECT_TRUE(memory.renameProcess(a, b));  // the read left an entry behind
    EXPECT_FALSE(memory.renameProcess(a, b));
    EXPECT_FALSE(memory.renameProcess(c, b));

    memory.setData(b, key, integer(1));
    memory.setData(b, other, integer(2));
    memory.setData(c, key, integer(3));
    EXPECT_TRUE(memory.renameProcess(b, b));  // equal names keep the data
    EXPECT_EQ(int(*memory.getData(b, other)), 2);

    EXPECT_TRUE(memory.renameProcess(c, b));  // replaces what b held, wholly
    EXPECT_EQ(int(*memory.getData(b, key)), 3);
    EXPECT_FALSE(memory.getData(b, other));
    EXPECT_FALSE(memory.getData(c, key));

    boost::shared_ptr<Data> stored = integer(4);
    memory.setData(a, key, stored);
    EXPECT_EQ(memory.getData(a, key), stored);  // shared, not copied
    EXPECT_TRUE(memory.removeProcess(a));
    EXPECT_TRUE(memory.removeProcess(a));
    EXPECT_FALSE(memory.getData(a, key));
}
