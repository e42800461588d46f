#include "filters/catalogue.h"

#include "filters/flow/flow_filters.h"
#include "graph/filter.h"

namespace Tessarity {
namespace Filters {

namespace {

// The order in which a new engine registers the built-in filters.
const char* const kCatalogueOrder[] = {"Dispatch",   "Duplicate",  "Head",       "Identity",
                                       "IfChanged",  "Multiplex",  "Print",      "Mandatory1",
                                       "Mandatory2", "Mandatory3", "Mandatory4", "Mandatory5",
                                       "Mandatory6", "Mandatory7", "Mandatory8"};

}  // namespace

std::vector<boost::shared_ptr<Filter>> createCatalogue() {
    FilterFactories factories;
    addFlowFilters(factories);
    std::vector<boost::shared_ptr<Filter>> catalogue;
    for (const char* name : kCatalogueOrder) catalogue.push_back(factories.at(name)());
    return catalogue;
}

}  // namespace Filters
}  // namespace Tessarity
