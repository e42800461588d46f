#include "filters/catalogue.h"

#include "filters/arithmetic/arithmetic_filters.h"
#include "filters/colour/colour_filters.h"
#include "filters/flow/flow_filters.h"
#include "filters/functional/functional_filters.h"
#include "filters/measures/measures_filters.h"
#include "filters/morphology/morphology_filters.h"
#include "filters/windows/windows_filters.h"
#include "graph/filter.h"

namespace Tessarity {
namespace Filters {

namespace {

// The order in which a new engine registers the built-in filters.
const char* const kCatalogueOrder[] = {
    "Accum",      "SlidingWindow", "Add",          "Append",     "Apply",      "BoundingBox",
    "Curry",      "Density",       "Dilation",     "Dispatch",   "Draw",       "Duplicate",
    "Erosion",    "Extract",       "Geodesic",     "Gravity",    "Head",       "Histogram",
    "Hue",        "Identity",      "IfChanged",    "Invert",     "Labelize",   "ImprovedLabelize",
    "Luminance",  "Mask",          "Max",          "Min",        "Multiplex",  "Multiply",
    "Otsu",       "Print",         "Ratio",        "Saturation", "ScaleDown",  "SNN",
    "Sub",        "Threshold",     "ToColorImage", "Mandatory1", "Mandatory2", "Mandatory3",
    "Mandatory4", "Mandatory5",    "Mandatory6",   "Mandatory7", "Mandatory8"};

}  // namespace

std::vector<boost::shared_ptr<Filter>> createCatalogue() {
    FilterFactories factories;
    addArithmeticFilters(factories);
    addColourFilters(factories);
    addFlowFilters(factories);
    addFunctionalFilters(factories);
    addMeasuresFilters(factories);
    addMorphologyFilters(factories);
    addWindowsFilters(factories);
    std::vector<boost::shared_ptr<Filter>> catalogue;
    for (const char* name : kCatalogueOrder) catalogue.push_back(factories.at(name)());
    return catalogue;
}

}  // namespace Filters
}  // namespace Tessarity
