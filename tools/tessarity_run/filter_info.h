#ifndef TESSARITY_RUN_FILTER_INFO_H
#define TESSARITY_RUN_FILTER_INFO_H

#include <ostream>
#include <string>

#include <tessarity/tessarity.h>

#include "options.h"

namespace TessarityRun {

// What --filters, --describe and --dump show of the engine's filter library: the catalogue
// and whatever the loaded program declared.

// One line per filter, name and description, then its ports indented.
void listFilters(const Tessarity::Tessarity& engine, std::ostream& out);

// One filter in full; with Graphviz's dot installed, also its picture in `directory`.
// An unknown name throws Failure.
void describeFilter(const Tessarity::Tessarity& engine, const std::string& name,
                    const std::string& directory, std::ostream& out);

// Writes FILTER.dot into `directory`, and FILTER.png and FILTER.svg when dot is installed;
// says on `out` which files it wrote. An unknown name throws Failure.
void dumpFilter(const Tessarity::Tessarity& engine, const DumpRequest& request,
                const std::string& directory, std::ostream& out);

// Whether Graphviz's dot is on the PATH, asked each time.
bool haveDot();

}  // namespace TessarityRun

#endif
