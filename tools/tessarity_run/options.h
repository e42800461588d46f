#ifndef TESSARITY_RUN_OPTIONS_H
#define TESSARITY_RUN_OPTIONS_H

#include <stdexcept>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include <tessarity/data.h>

namespace TessarityRun {

// A command line that cannot be obeyed; what() is the one line shown to the user.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// --set SOURCE=VALUE: a literal, or an image file when the value starts with "@".
struct SourceSetting {
    std::string source;
    std::string value;  // the literal as written, or the path behind the "@"
    bool isFile = false;
};

// --frames SOURCE=DIR.
struct FrameFeed {
    std::string source;
    std::string directory;
};

// --get PROCESS:SINK.
struct SinkName {
    std::string process;
    std::string sink;
    std::string text() const { return process + ":" + sink; }
};

// --dump FILTER[:DEPTH].
struct DumpRequest {
    std::string filter;
    int depth = 1;
};

struct Options {
    std::string program;  // empty when only --filters or --describe is asked
    std::vector<SourceSetting> settings;
    std::vector<FrameFeed> frames;
    std::vector<SinkName> sinks;
    std::vector<DumpRequest> dumps;
    std::string outputDirectory = "tessarity-out";
    bool listFilters = false;
    std::vector<std::string> describe;
    unsigned int threads = 0;  // filled with the number of cores when not given
    int verbosity = 3;         // warnings and errors
    bool help = false;

    // Whether the program is run: always, unless the command only looks at filters.
    bool runs() const;
};

// The arguments behind the program name. Throws UsageError for anything malformed: an
// unknown option, a missing value, a literal of no known form, several programs.
Options parseOptions(const std::vector<std::string>& arguments);

// The value of a literal of the program language: true or false, a whole number (an int),
// a decimal (a float) or a double-quoted text with the escapes \n \r \t \0, \\ and \".
// Null for a text of none of these forms.
boost::shared_ptr<Tessarity::Data> parseLiteral(const std::string& text);

std::string helpText();

}  // namespace TessarityRun

#endif
