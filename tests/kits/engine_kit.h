// Shared helpers of the facade tests: values and exceptions as text, log messages, one-filter
// processes and bounded polling.
#pragma once

#include <chrono>
#include <functional>
#include <stdexcept>
#include <thread>

#include <tessarity/tessarity.h>

#include "kits/log_capture.h"

namespace enginekit {

using Tessarity::Data;
typedef Tessarity::Tessarity Engine;
typedef Engine::Pairs Pairs;
typedef std::vector<std::string> Names;
const Tessarity::Type::Duration kTolerance = Tessarity::Type::Duration::Seconds(1);

inline Tessarity::Type::Time at(long long us) { return Tessarity::Type::Time(us); }
// A value as text, "null" for none, so that a missing value fails a check without a crash.
inline std::string text(const boost::shared_ptr<Data>& v) { return v ? v->toString() : "null"; }
// The names joined by blanks, so that a long list reads as a few lines.
inline std::string joined(const Names& names) {
    std::string out;
    for (std::size_t i = 0; i < names.size(); ++i) out += (i ? " " : "") + names[i];
    return out;
}
// The text of the std::invalid_argument that `call` throws, or "" if it throws none.
inline std::string thrown(const std::function<void()>& call) {
    try {
        call();
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "";
}
// The messages of the lines at `level` or worse, of one category if one is given.
inline Names messages(const LogCapture& log, int level, const char* category = nullptr) {
    Names kept;
    for (const LogCapture::Line& line : log.linesAtMost(level))
        if (!category || line.category == category) kept.push_back(line.message);
    return kept;
}
// A process of one filter, run by pulling, at a frequency high enough to run at every pull.
inline bool create(Engine& engine, const std::string& name, const std::string& filter,
                   const Pairs& inputs, const Pairs& outputs, const Pairs& triggers = Pairs(),
                   const Pairs& sources = Pairs()) {
    return engine.createProcess(name, filter, inputs, outputs, triggers, sources, 0, 1e7f,
                                kTolerance);
}
// Polls `done` every millisecond for at most five seconds.
template <typename Predicate>
bool eventually(Predicate done) {
    for (int i = 0; i < 5000 && !done(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return done();
}

}  // namespace enginekit
