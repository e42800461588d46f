#ifndef TESSARITY_ENGINE_PROCESS_BUILDER_H
#define TESSARITY_ENGINE_PROCESS_BUILDER_H

#include <string>

#include <tessarity/duration.h>

#include "engine/process_registry.h"
#include "language/program_host.h"

namespace Tessarity {

class FilterLibrary;
class SourceRegistry;

// Builds a process from names and literal values: one node around a library filter, its
// inputs wired to sources, sinks of other processes, constants or local sources, its outputs
// to sinks and aggregations, and its triggers; then registers it. Nothing of a process is
// visible to anyone before it is registered, so a failure leaves no trace.
class ProcessBuilder {
public:
    typedef ProgramHost::Pairs Pairs;

    ProcessBuilder(FilterLibrary& filters, SourceRegistry& sources, ProcessRegistry& processes);

    // inputs: (port, value); outputs: (port, sink); triggers: (origin, target); sources:
    // ("source" or "pulse", name), a pulse with a default as "name[value]".
    bool createProcess(const std::string& name, const std::string& filter, const Pairs& inputs,
                       const Pairs& outputs, const Pairs& triggers, const Pairs& sources,
                       unsigned int priority, float frequency, const Type::Duration& tolerance);

private:
    struct Failure;
    struct ProcessDraft;

    // The steps that run under the process registry's lock.
    bool _wireInputs(const ProcessRegistry::Lock& processes, ProcessDraft& draft,
                     const Pairs& inputs, const std::string& p1, const std::string& p2,
                     Failure& failure);
    bool _wireOutputs(ProcessDraft& draft, const Pairs& outputs, const std::string& p2,
                      Failure& failure);
    bool _wireTriggers(const ProcessRegistry::Lock& processes, ProcessDraft& draft,
                       const Pairs& triggers, const std::string& p2, Failure& failure);

    FilterLibrary& _filters;
    SourceRegistry& _sources;
    ProcessRegistry& _processes;
};

}  // namespace Tessarity

#endif
