#include "graph/lambda_p.h"

#include <boost/make_shared.hpp>

#include "graph/filter.h"
#include "graph/node_filter.h"
#include "graph/node_source.h"
#include "graph/port.h"

namespace Tessarity {
namespace Type {

namespace {
// No real process has this name, so the snapshots of a lambda's sources never mix with a
// process's.
const StringHash kLambdaRun("___@LAMBDA@___");
const Duration kTolerance(1000000);
}  // namespace

Lambda_p::Lambda_p(boost::shared_ptr<Filter> filter)
    : _filter(filter), _node(boost::make_shared<NodeFilter>(filter->getName(), filter)) {
    for (const boost::shared_ptr<Port>& input : _node->getInputs()) {
        auto source = boost::make_shared<NodeSource>(input->getName());
        input->attach(source->getOutput("out"));
        _sources.push_back(source);
        _arguments.emplace_back(false, boost::shared_ptr<Data>());
    }
}

std::vector<boost::shared_ptr<Data>> Lambda_p::apply(
    const std::vector<boost::shared_ptr<Data>>& values) {
    // Free positions take the values in order; bound ones keep theirs.
    for (std::size_t i = 0, j = 0; i < _sources.size() && j < values.size(); ++i)
        if (!_arguments[i].first) _sources[i]->setData(values[j++]);

    const Time time = Time::now();
    const std::vector<boost::shared_ptr<Port>>& outputs = _node->getOutputs();
    // One count per output, as a graph has one per consumer: the node computes once and keeps
    // its results until the last of them is read.
    for (std::size_t i = 0; i < outputs.size(); ++i)
        _node->synchronize(time, kTolerance, kLambdaRun, kLambdaRun, 0);
    std::vector<boost::shared_ptr<Data>> results;
    results.reserve(outputs.size());
    for (const boost::shared_ptr<Port>& output : outputs)
        results.push_back(_node->requestData(kLambdaRun, kLambdaRun, 0, output));
    for (std::size_t i = 0; i < outputs.size(); ++i)
        _node->synchronizeRelease(kLambdaRun, kLambdaRun, 0);
    return results;
}

void Lambda_p::curry(const std::vector<boost::shared_ptr<Data>>& values) {
    if (values.empty()) return;
    const boost::shared_ptr<Data>& value = values.front();
    // A bound position is stepped over one at a time, a free one two at a time: with three
    // free inputs, the first and the third are bound.
    for (std::size_t i = 0; i < _sources.size();) {
        if (_arguments[i].first) {
            ++i;
            continue;
        }
        if (value) {
            _sources[i]->setData(value);
            _arguments[i] = std::make_pair(true, value);
        }
        i += 2;
    }
}

boost::shared_ptr<Lambda_p> Lambda_p::clone() const {
    auto copy = boost::make_shared<Lambda_p>(_filter);
    for (std::size_t i = 0; i < _arguments.size(); ++i) {
        if (_arguments[i].first) copy->_sources[i]->setData(_arguments[i].second);
        copy->_arguments[i] = _arguments[i];
    }
    return copy;
}

}  // namespace Type
}  // namespace Tessarity
