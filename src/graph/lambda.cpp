#include <tessarity/types/lambda.h>

#include <boost/make_shared.hpp>

#include "graph/filter_adapter.h"
#include "graph/lambda_p.h"

namespace Tessarity {
namespace Type {

boost::shared_ptr<Lambda> Lambda::createLambda(boost::shared_ptr<Filter> filter) {
    return boost::make_shared<Lambda>(boost::make_shared<Lambda_p>(filter));
}

boost::shared_ptr<Lambda> Lambda::createLambda(boost::shared_ptr<UserFilter> filter) {
    return createLambda(boost::shared_ptr<Filter>(boost::make_shared<FilterAdapter>(filter)));
}

Lambda::Lambda(boost::shared_ptr<Lambda_p> lambda) : _d(lambda) {}

std::vector<boost::shared_ptr<Data>> Lambda::apply(
    const std::vector<boost::shared_ptr<Data>>& values) {
    return _d->apply(values);
}

void Lambda::curry(const std::vector<boost::shared_ptr<Data>>& values) { _d->curry(values); }

boost::shared_ptr<Lambda> Lambda::clone() { return boost::make_shared<Lambda>(_d->clone()); }

}  // namespace Type
}  // namespace Tessarity
