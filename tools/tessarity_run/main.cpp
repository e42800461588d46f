// tessarity-run: loads a program, feeds its sources, runs it and shows its results.
#include <iostream>

#include <kelvo/log.h>
#include <tessarity/tessarity.h>

#include "failure.h"
#include "filter_info.h"
#include "image_files.h"
#include "options.h"
#include "replay.h"

namespace {

using namespace TessarityRun;

void loadProgram(Tessarity::Tessarity& engine, const Options& options) {
    // The engine would say only that the file did not load; a missing file is said here.
    checkReadable(options.program);
    if (!engine.loadProgramFromFile(options.program))
        throw Failure("'" + options.program + "' did not load: " +
                      (options.verbosity >= 2 ? "the log lines above say why"
                                              : "run with --verbosity 2 or more to see why"));
}

int run(const Options& options) {
    kelvo::log::setVerbosity(options.verbosity);
    Tessarity::Tessarity engine(options.threads);
    if (!options.program.empty()) loadProgram(engine, options);
    if (options.listFilters) listFilters(engine, std::cout);
    for (const std::string& name : options.describe)
        describeFilter(engine, name, options.outputDirectory, std::cout);
    for (const DumpRequest& dump : options.dumps)
        dumpFilter(engine, dump, options.outputDirectory, std::cout);
    if (options.runs()) replay(engine, options, std::cout, std::cerr);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const Options options = parseOptions(std::vector<std::string>(argv + 1, argv + argc));
        if (options.help) {
            std::cout << helpText();
            return 0;
        }
        return run(options);
    } catch (const UsageError& error) {
        std::cout << std::flush;
        std::cerr << "tessarity-run: " << error.what() << std::endl;
        return 2;
    } catch (const std::exception& error) {
        std::cout << std::flush;
        std::cerr << "tessarity-run: " << error.what() << std::endl;
        return 1;
    }
}
