#ifndef TESSARITY_LANGUAGE_PROGRAM_HOST_H
#define TESSARITY_LANGUAGE_PROGRAM_HOST_H

#include <list>
#include <string>
#include <utility>

#include <boost/shared_ptr.hpp>

#include <tessarity/data.h>
#include <tessarity/duration.h>
#include <tessarity/types/lambda.h>

namespace Tessarity {

// The operations of the engine that the statements of a program are carried out by. The
// parser only cuts text: every name is resolved behind these, by the same code that serves
// an application's calls, so the language and the calls accept the same things.
class ProgramHost {
public:
    typedef std::list<std::pair<std::string, std::string>> Pairs;
    typedef std::pair<std::string, std::string> PortName;  // (instance, port)
    typedef std::list<std::pair<PortName, PortName>> Links;
    typedef std::list<std::pair<PortName, std::string>> Exports;

    // `handle` is the application's Tessarity*, handed on to plug-in modules.
    virtual bool loadProgramFromFile(const std::string& path, void* handle) = 0;
    virtual bool createFilter(const std::string& name, const Pairs& filters, const Links& links,
                              const Exports& inputs, const Exports& outputs) = 0;
    virtual bool isFilter(const std::string& name) const = 0;
    // A lambda of a library filter, or null.
    virtual boost::shared_ptr<Type::Lambda> createLambda(const std::string& filter) const = 0;
    virtual bool deleteFilter(const std::string& name) = 0;
    virtual bool createSource(const std::string& name) = 0;
    // Throws std::invalid_argument, after logging it, for a name that is no source.
    virtual void setData(const std::string& source, boost::shared_ptr<Data> data) = 0;
    virtual bool deleteSource(const std::string& name) = 0;
    virtual bool createProcess(const std::string& name, const std::string& filter,
                               const Pairs& inputs, const Pairs& outputs, const Pairs& triggers,
                               const Pairs& sources, unsigned int priority, float frequency,
                               const Type::Duration& tolerance) = 0;
    virtual bool deleteProcess(const std::string& name) = 0;
    // The source form throws std::invalid_argument for an unknown source or process.
    virtual bool createEvent(const std::string& sink, const std::string& process) = 0;
    virtual bool createSourceEvent(const std::string& source, const std::string& process) = 0;

protected:
    ~ProgramHost() = default;
};

}  // namespace Tessarity

#endif
