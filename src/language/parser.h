#ifndef TESSARITY_LANGUAGE_PARSER_H
#define TESSARITY_LANGUAGE_PARSER_H

#include <list>
#include <string>

namespace Tessarity {

class ProgramHost;

// The one language of scripts: a script filter is parsed and checked, then refused.
enum Language { Lua };

// Reads the program language. It only cuts text and calls the operations that an
// application calls, so that the language and the calls accept the same things.
class Parser {
public:
    explicit Parser(ProgramHost* host);

    // `handle` is the application's Tessarity*, handed on to imports and plug-in modules;
    // `directory` is where the relative paths of imports start, empty for a text.
    bool loadProgram(const std::string& program, void* handle, const std::string& directory);

    bool createFilter(const std::string& name, const std::string& body);
    bool createFilter(const std::string& name, const std::list<std::string>& filters,
                      const std::list<std::string>& links, const std::list<std::string>& inputs,
                      const std::list<std::string>& outputs);
    bool createProcess(const std::string& header, const std::string& body);
    bool createProcess(const std::string& header, const std::list<std::string>& inputs,
                       const std::list<std::string>& outputs,
                       const std::list<std::string>& triggers,
                       const std::list<std::string>& sources);
    bool createEvent(const std::string& origin, const std::string& body);
    bool createFilterFromScript(const std::string& header, const std::string& body);
    bool createFilterFromScript(const std::string& name, const std::string& script,
                                Language language, const std::list<std::string>& inputs,
                                const std::list<std::string>& outputs);

private:
    // The source statement: creates the source, then sets the value its body spells.
    // `program` is the whole text, for the message of a refused body.
    bool _createSource(const std::string& name, const std::string& item,
                       const std::string& program);

    ProgramHost* _host;
};

}  // namespace Tessarity

#endif
