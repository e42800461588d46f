// Filters, their ports and the memory they keep between runs.
#include "filters/flow/mandatory.h"
#include "graph/memory_manager.h"
#include "kits/graph_kit.h"

using namespace graphkit;

namespace {

// Adds its input times its step to a running total kept per (process, request).
class Total : public FilterPrimitive {
public:
    Total() : FilterPrimitive("Total") {
        _addInput("in")->addType(Integer).addType(UnsignedInteger);
        _addInput("step")->addType(Integer).setDefaultData(integer(1));
        _addOutput("sum");
        _addOutput("count");
    }
    Values applyFilter(const Values& inputs, const StringHash& process, const StringHash& request,
                       long long) override {
        Ptr total = _getMemoryManager()->getData(process, request);
        int sum = (total ? int(*total) : 0) + int(*inputs[0]) * int(*inputs[1]);
        _getMemoryManager()->setData(process, request, integer(sum));
        return {integer(sum)};
    }
};

}  // namespace

TEST(FilterPrimitive, DeclaredPortsAndLookup) {
    Total total;
    Filters::Mandatory one("One", 1), none("None", 0);
    EXPECT_EQ(total.getName() + ": " + total.getDescription(), "Total: * no description *");
    boost::shared_ptr<Port> in = total.getInput("in"), step = total.getInput("step");
    EXPECT_EQ(step, total.getInputs()[1]);
    // Declarations reach the ports: "step" is optional through its default, "count" takes any type.
    EXPECT_TRUE(step->isOptional() && !in->isOptional() && in->isCompatible(UnsignedInteger) &&
                !in->isCompatible(Float) && total.getOutput("count")->isCompatible(Float));
    // The empty name finds a lone port; no other name falls back to it.
    EXPECT_EQ(one.getInput(""), one.getInputs()[0]);
    EXPECT_EQ(one.getOutput("")->getName(), "out1");
    EXPECT_FALSE(total.getInput("") || total.getInput("sum") || one.getInput("in") ||
                 none.getInput(""));
}

TEST(FilterPrimitive, StateIsKeptPerProcessAndRequest) {
    MemoryManager memory;
    Total total;
    total.bindMemoryManager(&memory);
    auto sum = [&](int in, int step, const StringHash& process, const StringHash& request) {
        return num(total.applyFilter({integer(in), integer(step)}, process, request, 0)[0]);
    };
    EXPECT_EQ((Ints{sum(2, 1, "p", "p/a"), sum(3, 2, "p", "p/a"), sum(5, 1, "p", "p/b"),
                    sum(1, 1, "q", "p/a")}),
              (Ints{2, 8, 5, 1}));
    total.abortFilter("p", "p/a", 0);  // a primitive has nothing to undo
    EXPECT_EQ(num(memory.getData("p", "p/a")), 8);
}

TEST(FilterPrimitive, DotText) {
    long id = 3;
    EXPECT_EQ(Total().dumpToDot(id, 5),
              "subgraph cluster_Total_3\n{\nlabel = \"Total (Primitive Filter)\";\n"
              "style=filled;\nfillcolor=white;\n\n"
              "node[shape=component, style=filled, fillcolor=white];\nTotal_3[label=Total];\n"
              "node[shape=circle, style=filled, fillcolor=black];\n"
              "Total_in_3 [label=\"\"];\nTotal_in_3 -> Total_3;\n"
              "Total_step_3 [label=\"\"];\nTotal_step_3 -> Total_3;\n"
              "Total_sum_3 [label=\"\"];\nTotal_3 -> Total_sum_3;\n"
              "Total_count_3 [label=\"\"];\nTotal_3 -> Total_count_3;\n}\n\n");
    EXPECT_EQ(id, 3);
}

TEST(MemoryManager, ReadsCreateEntriesAndRenamesMoveThem) {
    MemoryManager memory;
    StringHash a("a"), b("b"), c("c"), key("k"), other("other");
    EXPECT_EQ(num(memory.getData(a, key)), kNone);
    EXPECT_TRUE(memory.renameProcess(a, b));  // the read left an entry behind
    EXPECT_FALSE(memory.renameProcess(a, b));
    Ptr one = integer(1);
    memory.setData(b, key, one);
    EXPECT_FALSE(memory.renameProcess(c, b));  // nothing moves
    EXPECT_EQ(memory.getData(b, key), one);    // b keeps its data, shared and not copied

    memory.setData(b, other, integer(2));
    memory.setData(c, key, integer(3));
    EXPECT_TRUE(memory.renameProcess(b, b));  // equal names keep the data
    EXPECT_EQ(num(memory.getData(b, other)), 2);
    EXPECT_TRUE(memory.renameProcess(c, b));  // replaces what b held, wholly
    EXPECT_EQ((Ints{num(memory.getData(b, key)), num(memory.getData(b, other)),
                    num(memory.getData(c, key))}),
              (Ints{3, kNone, kNone}));

    memory.setData(a, key, integer(4));
    EXPECT_TRUE(memory.removeProcess(a) && memory.removeProcess(a));  // known or not
    EXPECT_EQ(num(memory.getData(a, key)), kNone);
}
