#include "kelvo/log.h"

#include <atomic>
#include <cstdio>
#include <set>

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/thread/mutex.hpp>

namespace kelvo {
namespace log {

namespace {

struct State {
    boost::mutex mutex;
    // Swapped whole, so a logging thread copies the pointer under the mutex and calls the
    // handler without it: a handler may log in turn.
    boost::shared_ptr<const Handler> handler;
    std::set<std::string> categories;
    std::atomic<int> verbosity{Info};
};

State& state() {
    static State* s = new State;  // never destroyed: threads may log during static teardown
    return *s;
}

const char* levelName(int level) {
    switch (level) {
        case Fatal:
            return "fatal";
        case Error:
            return "error";
        case Warning:
            return "warning";
        case Info:
            return "info";
        case Verbose:
            return "verbose";
        case Debug:
            return "debug";
        default:
            return "log";
    }
}

}  // namespace

void log(int level, const std::string& category, const std::string& message, const char*,
         const char*, int) {
    State& s = state();
    boost::shared_ptr<const Handler> handler;
    {
        boost::mutex::scoped_lock lock(s.mutex);
        handler = s.handler;
    }
    if (handler) {
        (*handler)(level, category, message);
        return;
    }
    if (level > s.verbosity.load(std::memory_order_relaxed)) return;
    std::string line =
        std::string("[") + levelName(level) + "] " + category + ": " + message + "\n";
    std::fputs(line.c_str(), stderr);  // one call, so lines of two threads do not interleave
}

void addCategory(const std::string& category) {
    State& s = state();
    boost::mutex::scoped_lock lock(s.mutex);
    s.categories.insert(category);
}

void setHandler(Handler handler) {
    State& s = state();
    boost::shared_ptr<const Handler> next;
    if (!handler.empty()) next = boost::make_shared<const Handler>(handler);
    boost::mutex::scoped_lock lock(s.mutex);
    s.handler.swap(next);
}

void setVerbosity(int level) { state().verbosity.store(level, std::memory_order_relaxed); }

int getVerbosity() { return state().verbosity.load(std::memory_order_relaxed); }

}  // namespace log
}  // namespace kelvo
