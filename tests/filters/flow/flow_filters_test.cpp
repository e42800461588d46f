// The routing filters: what each passes on, and that it passes the very object it got.
#include <gtest/gtest.h>
#include <boost/make_shared.hpp>

#include "filters/flow/dispatch.h"
#include "filters/flow/duplicate.h"
#include "filters/flow/head.h"
#include "filters/flow/identity.h"
#include "filters/flow/if_changed.h"
#include "filters/flow/mandatory.h"
#include "filters/flow/multiplex.h"
#include "filters/flow/print.h"
#include "graph/memory_manager.h"
#include "graph/port.h"
#include "kits/log_capture.h"

using namespace Tessarity;

namespace {

typedef boost::shared_ptr<Data> DataPtr;
typedef std::vector<DataPtr> Values;

DataPtr box(const Data& data) { return boost::make_shared<Data>(data); }

// "A" equals "a" in value but is another object.
const DataPtr none, a = box(1), b = box(2), c = box(3), A = box(1), yes = box(true),
                    no = box(false);

// The outputs of each call in turn, each followed by "|": a value by its name above, "-" for
// null, and "?" for an object that was not handed in.
std::string results(Filter& filter, std::initializer_list<Values> calls,
                    const StringHash& process = "p", const StringHash& request = "r") {
    const std::pair<DataPtr, std::string> names[] = {{a, "a"}, {b, "b"}, {c, "c"}, {A, "A"}};
    std::string text;
    for (const Values& inputs : calls) {
        for (const DataPtr& out : filter.applyFilter(inputs, process, request, 0)) {
            std::string name = out ? "?" : "-";
            for (const auto& known : names) name = out == known.first ? known.second : name;
            text += name;
        }
        text += "|";
    }
    return text;
}

// "name:Type?" per port, where "?" marks an optional port; inputs, then "|", then outputs.
std::string ports(const Filter& filter) {
    std::string text = filter.getName();
    for (const auto* list : {&filter.getInputs(), &filter.getOutputs()}) {
        for (const auto& port : *list) {
            text += " " + port->getName();
            for (DataType type : port->getTypes()) text += ":" + Data::getTypeName(type);
            if (port->isOptional()) text += "?";
        }
        if (list == &filter.getInputs()) text += " |";
    }
    return text;
}

}  // namespace

TEST(FlowFilters, DeclaredPorts) {
    EXPECT_EQ(ports(Filters::Identity()), "Identity in | out");
    EXPECT_EQ(ports(Filters::Duplicate()), "Duplicate in | left right");
    EXPECT_EQ(ports(Filters::Multiplex()), "Multiplex master? slave? | out");
    EXPECT_EQ(ports(Filters::Dispatch()), "Dispatch in? state:Boolean | ontrue onfalse");
    EXPECT_EQ(ports(Filters::IfChanged()), "IfChanged in | out");
    EXPECT_EQ(ports(Filters::Head()), "Head in:Array | out");
    EXPECT_EQ(ports(Filters::Print()), "Print in? | out");
    EXPECT_EQ(ports(Filters::Mandatory("Join", 2)), "Join in1 in2 | out1 out2");
    EXPECT_EQ(ports(Filters::Mandatory("None", 0)) + ports(Filters::Mandatory("Neg", -3)),
              "None |Neg |");
    EXPECT_EQ(Filters::Print().getDescription(), "* no description *");
}

TEST(FlowFilters, StatelessRoutingAndJoining) {
    Filters::Identity identity;
    Filters::Duplicate duplicate;
    Filters::Multiplex multiplex;
    Filters::Dispatch dispatch;
    Filters::Head head;
    EXPECT_EQ(results(identity, {{a}, {none, b}}), "a|-b|");
    EXPECT_EQ(results(duplicate, {{a}, {}, {a, b}}), "aa|||");
    // "master" wins, "slave" fills in, and there is always one entry.
    EXPECT_EQ(results(multiplex, {{a, b}, {none, b}, {none, none}, {}}), "a|b|-|-|");
    EXPECT_EQ(results(dispatch, {{a, yes}, {a, no}, {none, yes}, {none, no}, {a}, {a, yes, no}}),
              "a-|-a|--|--|--|--|");
    // The first element, shared and not consumed; the empty vector for anything but an Array.
    const DataPtr ab = box(Data(Values{a, b})), empty = box(Data(Values{}));
    EXPECT_EQ(results(head, {{ab}, {ab}, {empty}, {a}, {none}, {ab, ab}}), "a|a|-||||");
    // Mandatory passes all of its inputs or none of them.
    Filters::Mandatory two("Join", 2), three("Join3", 3), zero("None", 0);
    EXPECT_EQ(results(two, {{a, b}, {a, none}, {none, b}, {a}}), "ab|--|--|--|");
    EXPECT_EQ(results(three, {{a, b, c}, {a, b, none}}), "abc|---|");
    EXPECT_EQ(results(zero, {{a}}), "|");
}

TEST(FlowFilters, IfChangedPassesAnotherObjectOnly) {
    MemoryManager memory;
    Filters::IfChanged filter;
    filter.bindMemoryManager(&memory);
    // The same object again is no change, an equal one is; only the latest is remembered.
    EXPECT_EQ(results(filter, {{a}, {a}, {A}, {b}, {a}, {a}}), "a||A|b|a||");
    // Each request and each process remembers on its own; a refused call leaves it alone.
    EXPECT_EQ(results(filter, {{a}}, "p", "r2") + results(filter, {{a}}, "q", "r"), "a|a|");
    EXPECT_EQ(results(filter, {{a, b}, {}, {a}}), "|||");
}

TEST(FlowFilters, PrintLogsEachValue) {
    LogCapture capture;
    Filters::Print print;
    EXPECT_EQ(results(print, {{none}, {a, none, b}, {}}), "-|a-b||");
    std::string logged;
    for (const LogCapture::Line& line : capture.lines())
        logged += std::to_string(line.level) + " " + line.category + ": " + line.message + "\n";
    EXPECT_EQ(logged, "4 Tessarity: 1\n4 Tessarity: 2\n");  // the text alone, none for null
}
