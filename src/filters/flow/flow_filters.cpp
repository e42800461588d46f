#include "filters/flow/flow_filters.h"

#include <string>

#include <boost/make_shared.hpp>

#include "filters/flow/dispatch.h"
#include "filters/flow/duplicate.h"
#include "filters/flow/head.h"
#include "filters/flow/identity.h"
#include "filters/flow/if_changed.h"
#include "filters/flow/mandatory.h"
#include "filters/flow/multiplex.h"
#include "filters/flow/print.h"

namespace Tessarity {
namespace Filters {

void addFlowFilters(FilterFactories& factories) {
    factories["Dispatch"] = makeFilter<Dispatch>;
    factories["Duplicate"] = makeFilter<Duplicate>;
    factories["Head"] = makeFilter<Head>;
    factories["Identity"] = makeFilter<Identity>;
    factories["IfChanged"] = makeFilter<IfChanged>;
    factories["Multiplex"] = makeFilter<Multiplex>;
    factories["Print"] = makeFilter<Print>;
    // The arity is the only constructor argument in the whole catalogue.
    for (int i = 1; i <= 8; ++i) {
        const std::string name = "Mandatory" + std::to_string(i);
        factories[name] = [name, i] { return boost::make_shared<Mandatory>(name, i); };
    }
}

}  // namespace Filters
}  // namespace Tessarity
