#ifndef TESSARITY_TESTS_LOGCAPTURE_H
#define TESSARITY_TESTS_LOGCAPTURE_H

#include <string>
#include <vector>

#include <boost/thread/mutex.hpp>

#include <kelvo/log.h>

// Collects every log line while it lives, from any thread.
class LogCapture {
public:
    struct Line {
        int level;
        std::string category;
        std::string message;
    };

    LogCapture() {
        kelvo::log::setHandler(
            [this](int level, const std::string& category, const std::string& message) {
                boost::mutex::scoped_lock lock(_mutex);
                _lines.push_back(Line{level, category, message});
            });
    }
    ~LogCapture() { kelvo::log::setHandler(kelvo::log::Handler()); }

    std::vector<Line> lines() const {
        boost::mutex::scoped_lock lock(_mutex);
        return _lines;
    }
    // Lines at `level` or more severe (a lower number), in order.
    std::vector<Line> linesAtMost(int level) const {
        std::vector<Line> kept;
        for (const Line& line : lines())
            if (line.level <= level) kept.push_back(line);
        return kept;
    }
    void clear() {
        boost::mutex::scoped_lock lock(_mutex);
        _lines.clear();
    }
    std::size_t countAtMost(int level) const { return linesAtMost(level).size(); }

private:
    mutable boost::mutex _mutex;
    std::vector<Line> _lines;
};

#endif
