// The routing filters: what each passes on, and that it passes the very object it got.
#include <gtest/gtest.h>
#include <boost/make_shared.hpp>

#include "filters/dispatch.h"
#include "filters/duplicate.h"
#include "filters/head.h"
#include "filters/identity.h"
#include "filters/ifchanged.h"
#include "filters/mandatory.h"
#include "filters/multiplex.h"
#include "filters/print.h"
#include "logcapture.h"
#include "memorymanager.h"
#include "port.h"

using namespace Tessarity;

namespace {

typedef boost::shared_ptr<Data> DataPtr;
typedef std::vector<DataPtr> Values;

const DataPtr none;

DataPtr value(int v) { return boost::make_shared<Data>(v); }

Values apply(Filter& filter, const Values& inputs, const StringHash& process = "p",
             const StringHash& request = "r") {
    return filter.applyFilter(inputs, process, request, 0);
}

// "name:Type?" per port, where "?" marks an optional port; inputs, then "|", then outputs.
std::string ports(const Filter& filter) {
    std::string text;
    auto list = [&text](const std::vector<boost::shared_ptr<Port>>& ports) {
        for (const auto& port : ports) {
            text += " " + port->getName();
            for (DataType type : port->getTypes()) text += ":" + Data::getTypeName(type);
            if (port->isOptional()) text += "?";
        }
    };
    list(filter.getInputs());
    text += " |";
    list(filter.getOutputs());
    return filter.getName() + text;
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
    EXPECT_EQ(ports(Filters::Mandatory("None", 0)), "None |");
    EXPECT_EQ(ports(Filters::Mandatory("None", -3)), "None |");
    EXPECT_EQ(Filters::Print().getDescription(), "* no description *");
}

TEST(FlowFilters, PassThrough) {
    const DataPtr a = value(1), b = value(2);
    Filters::Identity identity;
    EXPECT_EQ(apply(identity, {a}), Values{a});
    EXPECT_EQ(apply(identity, {none, b}), (Values{none, b}));  // nulls kept in place

    Filters::Duplicate duplicate;
    EXPECT_EQ(apply(duplicate, {a}), (Values{a, a}));
    EXPECT_TRUE(apply(duplicate, {}).empty());
    EXPECT_TRUE(apply(duplicate, {a, b}).empty());

    Filters::Multiplex multiplex;
    EXPECT_EQ(apply(multiplex, {a, b}), Values{a});  // master wins
    EXPECT_EQ(apply(multiplex, {none, b}), Values{b});
    EXPECT_EQ(apply(multiplex, {none, none}), Values{none});
    EXPECT_EQ(apply(multiplex, {}), Values{none});  // never the empty vector
}

TEST(FlowFilters, Dispatch) {
    const DataPtr in = value(7);
    const DataPtr yes = boost::make_shared<Data>(true), no = boost::make_shared<Data>(false);
    Filters::Dispatch dispatch;
    EXPECT_EQ(apply(dispatch, {in, yes}), (Values{in, none}));
    EXPECT_EQ(apply(dispatch, {in, no}), (Values{none, in}));
    EXPECT_EQ(apply(dispatch, {none, yes}), (Values{none, none}));
    EXPECT_EQ(apply(dispatch, {none, no}), (Values{none, none}));
    EXPECT_EQ(apply(dispatch, {in}), (Values{none, none}));
    EXPECT_EQ(apply(dispatch, {in, yes, no}), (Values{none, none}));
}

TEST(FlowFilters, IfChanged) {
    MemoryManager memory;
    Filters::IfChanged filter;
    filter.bindMemoryManager(&memory);
    const DataPtr a = value(1), b = value(2), equalToA = value(1);

    // Each call in turn, on one key: the same object again is no change, equal content is.
    const struct {
        DataPtr in;
        bool passes;
    } sequence[] = {{a, true}, {a, false}, {equalToA, true}, {b, true}, {a, true}, {a, false}};
    for (const auto& step : sequence)
        EXPECT_EQ(apply(filter, {step.in}), step.passes ? Values{step.in} : Values{});

    // Another request or another process remembers on its own; a refused call leaves it alone.
    EXPECT_EQ(apply(filter, {a}, "p", "r2"), Values{a});
    EXPECT_EQ(apply(filter, {a}, "q", "r"), Values{a});
    EXPECT_TRUE(apply(filter, {a, b}).empty());
    EXPECT_TRUE(apply(filter, {}).empty());
    EXPECT_EQ(memory.getData("p", "r"), a);
    EXPECT_TRUE(apply(filter, {a}).empty());
}

TEST(FlowFilters, Mandatory) {
    const DataPtr a = value(1), b = value(2), c = value(3);
    Filters::Mandatory two("Join", 2);
    EXPECT_EQ(apply(two, {a, b}), (Values{a, b}));
    EXPECT_EQ(apply(two, {a, none}), (Values{none, none}));  // the present one is dropped too
    EXPECT_EQ(apply(two, {none, b}), (Values{none, none}));
    EXPECT_EQ(apply(two, {a}), (Values{none, none}));

    Filters::Mandatory three("Join3", 3);
    EXPECT_EQ(apply(three, {a, b, c}), (Values{a, b, c}));
    EXPECT_EQ(apply(three, {a, b, none}), (Values{none, none, none}));

    Filters::Mandatory empty("None", 0);
    EXPECT_TRUE(apply(empty, {a}).empty());
}

TEST(FlowFilters, Head) {
    const DataPtr first = value(1), second = value(2);
    const DataPtr array = boost::make_shared<Data>(Values{first, second});
    Filters::Head head;
    EXPECT_EQ(apply(head, {array}), Values{first});  // shared, not copied
    EXPECT_EQ(apply(head, {array}), Values{first});  // the array is not consumed
    EXPECT_EQ(apply(head, {boost::make_shared<Data>(Values{})}), Values{none});
    EXPECT_TRUE(apply(head, {first}).empty());
    EXPECT_TRUE(apply(head, {none}).empty());
    EXPECT_TRUE(apply(head, {array, array}).empty());
}

TEST(FlowFilters, Print) {
    LogCapture capture;
    const DataPtr text = boost::make_shared<Data>("hello"), number = value(42);
    Filters::Print print;
    EXPECT_EQ(apply(print, {none}), Values{none});
    EXPECT_TRUE(capture.lines().empty());  // nothing to write for an unbound input

    EXPECT_EQ(apply(print, {text, none, number}), (Values{text, none, number}));
    const auto lines = capture.lines();
    ASSERT_EQ(lines.size(), 2u);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        EXPECT_EQ(lines[i].level, kelvo::log::Info);
        EXPECT_EQ(lines[i].category, "Tessarity");
    }
    EXPECT_EQ(lines[0].message, "hello");
    EXPECT_EQ(lines[1].message, "42");
    EXPECT_TRUE(apply(print, {}).empty());
}
