#ifndef TESSARITY_FILTERS_CATALOGUE_H
#define TESSARITY_FILTERS_CATALOGUE_H

#include <vector>

#include <boost/shared_ptr.hpp>

namespace Tessarity {

class Filter;

namespace Filters {

// A new instance of every built-in filter, in the catalogue's order of registration.
std::vector<boost::shared_ptr<Filter>> createCatalogue();

}  // namespace Filters
}  // namespace Tessarity

#endif
