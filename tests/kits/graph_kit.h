// Small graphs for the runtime and source tests: a recording filter, a one-node process, sinks
// driven by hand, and a log check that runs when everything else is gone.
#pragma once

#include <climits>

#include <gtest/gtest.h>
#include <boost/make_shared.hpp>

#include "graph/aggregated_sink.h"
#include "graph/event.h"
#include "graph/filter_primitive.h"
#include "graph/node_filter.h"
#include "graph/node_sink.h"
#include "graph/node_source.h"
#include "graph/port.h"
#include "kits/log_capture.h"
#include "runtime/process.h"

namespace graphkit {

using namespace Tessarity;
typedef boost::shared_ptr<Data> Ptr;
typedef std::vector<Ptr> Values;
typedef std::vector<int> Ints;
typedef std::vector<std::string> Texts;
typedef std::function<Values(const Values&)> Body;

// kNone stands for no value both ways, so that a failed check reports instead of crashing.
const int kNone = INT_MIN;
const StringHash kProc("proc");
const Type::Duration kTolerance(0);
inline Ptr integer(int v) { return v == kNone ? nullptr : boost::make_shared<Data>(v); }
inline int num(const Ptr& data) { return data ? int(*data) : kNone; }
inline Ints nums(const Values& values) {
    Ints out;
    for (const Ptr& value : values) out.push_back(num(value));
    return out;
}
// The integers of an array value; kNone alone for anything else.
inline Ints items(const Ptr& a) { return a && a->getType() == Array ? nums(*a) : Ints{kNone}; }
inline Type::Time at(long long microseconds) { return Type::Time(microseconds); }
// An event that appends `tag` and the value (0 for an array) to `raised`.
inline boost::shared_ptr<Event> record(Texts& raised, const std::string& tag) {
    return boost::make_shared<Event>(
        [&raised, tag](Ptr d) { raised.push_back(tag + std::to_string(num(d))); });
}

// Declared first in a test, so it checks last: the log held exactly `expected`.
struct LogCheck {
    ~LogCheck() {
        Texts seen;
        for (const LogCapture::Line& l : log.lines())
            seen.push_back(std::to_string(l.level) + " " + l.category + "|" + l.message);
        EXPECT_EQ(seen, expected);
    }
    LogCapture log;
    Texts expected;
};

// Records what its node asks of it, and answers `body(inputs)`, by default the inputs.
struct Probe : FilterPrimitive {
    explicit Probe(int inputs = 1, int outputs = 1, Body body = nullptr)
        : FilterPrimitive("Probe"), body(body) {
        for (int i = 1; i <= inputs; ++i) _addInput("in" + std::to_string(i));
        for (int i = 1; i <= outputs; ++i) _addOutput("out" + std::to_string(i));
    }
    Values applyFilter(const Values& inputs, const StringHash&, const StringHash& request,
                       long long) override {
        ++applied;
        requests.push_back(request.getText());
        return body ? body(inputs) : inputs;
    }
    void abortFilter(const StringHash&, const StringHash&, long long) override { ++aborted; }
    void synchronize(const Type::Time& time, const Type::Duration&, const StringHash&,
                     const StringHash&, long long) override {
        times.push_back(time);
    }
    void synchronizeRelease(const StringHash&, const StringHash&, long long) override { ++closed; }
    Ints counts() const { return {applied, aborted, int(times.size()), closed}; }

    Body body;
    int applied = 0, aborted = 0, closed = 0;
    Texts requests;
    std::vector<Type::Time> times;  // one per opening synchronize
};

inline boost::shared_ptr<NodeSink> sinkOn(const boost::shared_ptr<Port>& from, std::string name) {
    auto sink = boost::make_shared<NodeSink>(name);
    sink->getInputs()[0]->attach(from);
    return sink;
}
// A run over two new sinks on `from`, as a process drives it: both synchronize, `between` is
// called, then both pull; process and request are both `p`.
inline Values run(const boost::shared_ptr<Node>& from, const StringHash& p = kProc,
                  long long time = 1, long long tol = 0, std::function<void()> between = nullptr) {
    std::vector<boost::shared_ptr<NodeSink>> sinks = {sinkOn(from->getOutput("out"), "a"),
                                                      sinkOn(from->getOutput("out"), "b")};
    for (const auto& sink : sinks) sink->synchronize(at(time), Type::Duration(tol), p, p, 0);
    if (between) between();
    return {sinks[0]->requestData(p, p, 0, nullptr), sinks[1]->requestData(p, p, 0, nullptr)};
}

// The process "proc": one node on `probe`, a source "srcN" on each of its first `bound`
// inputs (all if negative), and a sink "sinkN" on each output.
struct Graph {
    explicit Graph(boost::shared_ptr<Probe> probe, float frequency = 4.0f, int bound = -1)
        : probe(probe),
          node(boost::make_shared<NodeFilter>("node", probe)),
          process(boost::make_shared<Process>("proc", node, 3, frequency, kTolerance)) {
        for (int i = 0; i < (bound < 0 ? int(node->getInputs().size()) : bound); ++i) {
            sources.push_back(boost::make_shared<NodeSource>("src" + std::to_string(i + 1)));
            node->getInputs()[i]->attach(sources.back()->getOutput("out"));
        }
        for (std::size_t i = 0; i < node->getOutputs().size(); ++i)
            process->addSink(sinkOn(node->getOutputs()[i], "sink" + std::to_string(i + 1)));
    }
    boost::shared_ptr<NodeSink> sink(int i) const {
        return process->getSinks().at("sink" + std::to_string(i));
    }

    boost::shared_ptr<Probe> probe;
    boost::shared_ptr<NodeFilter> node;
    boost::shared_ptr<Process> process;
    std::vector<boost::shared_ptr<NodeSource>> sources;
};

}  // namespace graphkit
