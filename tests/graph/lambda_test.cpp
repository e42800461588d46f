// Filters held as values: applying, currying, cloning, and the memory each lambda keeps.
#include <set>

#include <gtest/gtest.h>

#include <tessarity/types/lambda.h>

#include "engine/tessarity_private.h"
#include "kits/graph_kit.h"

using namespace graphkit;

namespace {

// A lambda of a probe with `inputs` inputs that answers its inputs (or `body`), and the probe.
struct Fixture {
    explicit Fixture(int inputs, int outputs = 1, Body body = nullptr)
        : probe(boost::make_shared<Probe>(inputs, outputs, body)),
          lambda(Type::Lambda::createLambda(boost::shared_ptr<Filter>(probe))) {}
    Ints apply(const Ints& values) {
        Values in;
        for (int v : values) in.push_back(integer(v));
        return nums(lambda->apply(in));
    }
    void curry(const Ints& values) {
        Values in;
        for (int v : values) in.push_back(integer(v));
        lambda->curry(in);
    }
    boost::shared_ptr<Probe> probe;
    boost::shared_ptr<Type::Lambda> lambda;
};

// The inputs of a three-input probe, as one output each.
const Ints kAll = {1, 2, 3};

}  // namespace

TEST(Lambda, ApplyFillsTheFreeInputsInOrder) {
    LogCheck check;  // no line at all: every count is balanced
    Fixture f(3, 3);
    EXPECT_EQ(f.apply({1, 2, 3, 4}), kAll);    // extra values are ignored
    EXPECT_EQ(f.apply({7}), (Ints{7, 2, 3}));  // the others keep the last apply's values
    EXPECT_EQ(f.probe->requests, (Texts(2, f.probe->requests[0])));
    EXPECT_EQ(f.probe->counts(), (Ints{2, 0, 2, 2}));  // three outputs, one computation a run

    // Currying binds the first free input and steps two positions: the first and the third.
    Fixture three(3, 3);
    three.curry({5, 6});  // only the first value is read
    EXPECT_EQ(three.apply({8, 9}), (Ints{5, 8, 5}));
    three.curry({kNone});                         // a null binds nothing
    three.curry({4});                             // the one free position left
    EXPECT_EQ(three.apply({}), (Ints{5, 4, 5}));  // all bound: runs with no value at all

    // Never set, a required input aborts the run: every output is null.
    Fixture unset(2, 2);
    EXPECT_EQ(unset.apply({1}), (Ints{kNone, kNone}));
    EXPECT_EQ(unset.probe->counts(), (Ints{0, 1, 1, 1}));

    // A filter without outputs is not run at all.
    Fixture none(1, 0);
    EXPECT_TRUE(none.apply({1}).empty());
    EXPECT_EQ(none.probe->counts(), (Ints{0, 0, 0, 0}));
}

TEST(Lambda, ClonesKeepBindingsNotValues) {
    LogCheck check;
    Fixture f(2, 2);
    f.curry({1});
    EXPECT_EQ(f.apply({2}), (Ints{1, 2}));
    boost::shared_ptr<Type::Lambda> copy = f.lambda->clone();
    // The bound value follows; the value only applied does not, and the run aborts.
    EXPECT_EQ(nums(copy->apply({})), (Ints{kNone, kNone}));
    copy->curry({integer(3)});  // binds the clone's free input; the original stays as it was
    EXPECT_EQ(nums(copy->apply({})), (Ints{1, 3}));
    EXPECT_EQ(f.apply({4}), (Ints{1, 4}));
    // Each lambda has a node of its own, so the filter sees another request.
    EXPECT_EQ(std::set<std::string>(f.probe->requests.begin(), f.probe->requests.end()).size(), 2u);

    const Data value(f.lambda);
    EXPECT_EQ(value.getType(), Tessarity::Lambda);
    EXPECT_EQ(value.toString(), "{void*}");
    EXPECT_EQ(static_cast<Type::Lambda*>(value), f.lambda.get());
    EXPECT_EQ(static_cast<Type::Time*>(value), nullptr);
}

TEST(Lambda, EngineLambdasKeepTheirOwnMemory) {
    LogCheck check;
    check.expected = {
        "2 tessarity.private|createLambda(\"Nope\"): The filter \"Nope\" has not "
        "been found."};
    TessarityPrivate engine(0);
    EXPECT_FALSE(engine.getFilterLibrary().createLambda("Nope"));
    // IfChanged remembers the last value it passed (by address), in the memory of the
    // lambda's node.
    const Ptr one = integer(1);
    boost::shared_ptr<Type::Lambda> a = engine.getFilterLibrary().createLambda("IfChanged");
    ASSERT_TRUE(a);
    boost::shared_ptr<Type::Lambda> b = engine.getFilterLibrary().createLambda("IfChanged");
    EXPECT_EQ(nums(a->apply({one})), Ints{1});
    EXPECT_EQ(nums(a->apply({one})), Ints{kNone});  // unchanged
    EXPECT_EQ(nums(b->apply({one})), Ints{1});      // b remembers nothing of a
    EXPECT_EQ(nums(a->clone()->apply({one})), Ints{1});
}
