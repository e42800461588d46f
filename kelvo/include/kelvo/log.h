#ifndef KELVO_LOG_H
#define KELVO_LOG_H

#include <kelvo/export.h>

#include <string>

#include <boost/function.hpp>

namespace kelvo {
namespace log {

// Levels: 1 fatal, 2 error, 3 warning, 4 info, 5 verbose, 6 debug.
enum Level { Fatal = 1, Error = 2, Warning = 3, Info = 4, Verbose = 5, Debug = 6 };

// Receives every line of every level, synchronously, on the thread that logs.
typedef boost::function<void(int level, const std::string& category, const std::string& message)>
    Handler;

KELVO_EXPORT void log(int level, const std::string& category, const std::string& message, const char* file,
         const char* function, int line);

// Declares a category; lines may be logged in undeclared categories too.
KELVO_EXPORT void addCategory(const std::string& category);

// An empty handler restores the default writer (stderr).
KELVO_EXPORT void setHandler(Handler handler);

// Highest level the default writer prints; 4 (info) unless changed.
KELVO_EXPORT void setVerbosity(int level);
KELVO_EXPORT int getVerbosity();

}  // namespace log
}  // namespace kelvo

#endif
