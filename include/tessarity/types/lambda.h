#ifndef TESSARITY_TYPES_LAMBDA_H
#define TESSARITY_TYPES_LAMBDA_H

#include <vector>

#include <boost/shared_ptr.hpp>

#include <tessarity/export.h>

namespace Tessarity {

class Data;
class Filter;
class UserFilter;

namespace Type {

class Lambda_p;

// A filter held as a value: it travels through a graph in a Data tagged Lambda, and can be
// applied to values, with some of its inputs bound ahead of time. It runs as a small private
// graph of its own, with its own memory: one lambda must not be applied from two threads at
// once; threads that share one work on clones.
class TESSARITY_EXPORT Lambda {
public:
    static boost::shared_ptr<Lambda> createLambda(boost::shared_ptr<Filter> filter);
    // The user filter must keep no local data: the lambda has no engine memory to hold it.
    static boost::shared_ptr<Lambda> createLambda(boost::shared_ptr<UserFilter> filter);

    explicit Lambda(boost::shared_ptr<Lambda_p> lambda);

    // Fills the unbound inputs, in order, with `values` (extra values are ignored; an input
    // left without one keeps the value of the last apply), runs the filter once, and returns
    // one entry per output, null where it gave nothing.
    std::vector<boost::shared_ptr<Data>> apply(const std::vector<boost::shared_ptr<Data>>& values);
    // Binds the first element of `values`, if it is not null, to the first unbound input, and
    // to every second unbound position after it. Changes this lambda: clone it first to keep it.
    void curry(const std::vector<boost::shared_ptr<Data>>& values);
    // The same filter and bindings, with a memory of its own that starts empty.
    boost::shared_ptr<Lambda> clone();

private:
    boost::shared_ptr<Lambda_p> _d;
};

}  // namespace Type
}  // namespace Tessarity

#endif
