#ifndef TESSARITY_FILTERS_FILTER_FACTORIES_H
#define TESSARITY_FILTERS_FILTER_FACTORIES_H

#include <map>
#include <string>

#include <boost/function.hpp>
#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

namespace Tessarity {

class Filter;

namespace Filters {

// The built-in filters of a family by the name they register under. Each family folder fills
// this with its own filters; the catalogue decides the order in which an engine takes them.
typedef std::map<std::string, boost::function<boost::shared_ptr<Filter>()>> FilterFactories;

// The factory of a filter whose constructor takes no argument.
template <typename T>
boost::shared_ptr<Filter> makeFilter() {
    return boost::make_shared<T>();
}

}  // namespace Filters
}  // namespace Tessarity

#endif
