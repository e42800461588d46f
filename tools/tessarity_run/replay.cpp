#include "replay.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <deque>
#include <filesystem>
#include <iomanip>
#include <memory>
#include <sstream>

#include "failure.h"
#include "image_files.h"

namespace TessarityRun {

namespace {

using namespace Tessarity;
namespace fs = std::filesystem;

const long long kFramesPerSecond = 30;
// 2000-01-01 00:00:00 UTC in microseconds: where the replay's clock starts.
const long long kReplayEpoch = 946684800LL * 1000000;

std::string joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
    return text.empty() ? "none" : text;
}

bool contains(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

// Letters, digits, "-", "_" and "." as they are; anything else becomes "_".
std::string fileNamePart(const std::string& name) {
    std::string part = name;
    for (char& c : part)
        if (!std::isalnum(static_cast<unsigned char>(c)) && c != '-' && c != '_' && c != '.')
            c = '_';
    return part;
}

std::string frameNumber(std::size_t frame) {
    std::ostringstream text;
    text << std::setw(4) << std::setfill('0') << frame;
    return text.str();
}

// The sinks to read: those asked for, checked, or every sink of every process.
std::vector<SinkName> sinksToRead(const ::Tessarity::Tessarity& engine, const Options& options) {
    const std::vector<std::string> processes = engine.getProcesses();
    std::vector<SinkName> sinks = options.sinks;
    if (sinks.empty()) {
        for (const std::string& process : processes) {
            for (const std::string& sink : engine.getProcessSinks(process))
                sinks.push_back({process, sink});
            for (const std::string& sink : engine.getProcessAggregatedSinks(process))
                sinks.push_back({process, sink});
        }
    }
    for (const SinkName& sink : sinks) {
        if (!contains(processes, sink.process))
            throw Failure("--get " + sink.text() + ": no process '" + sink.process +
                          "' (processes: " + joined(processes) + ")");
        std::vector<std::string> names = engine.getProcessSinks(sink.process);
        for (const std::string& name : engine.getProcessAggregatedSinks(sink.process))
            names.push_back(name);
        if (!contains(names, sink.sink))
            throw Failure("--get " + sink.text() + ": process '" + sink.process +
                          "' has no sink '" + sink.sink + "' (sinks: " + joined(names) + ")");
    }
    return sinks;
}

// A name of --set or --frames must be a source of the program; a local source
// ("process:source") is left for setData to judge.
void checkSource(const std::vector<std::string>& sources, const std::string& option,
                 const std::string& source) {
    if (source.find(':') == std::string::npos && !contains(sources, source))
        throw Failure(option + " " + source + ": no source '" + source +
                      "' (sources: " + joined(sources) + ")");
}

void setSource(::Tessarity::Tessarity& engine, const std::string& source,
               const boost::shared_ptr<Data>& value) {
    try {
        engine.setData(source, value);
    } catch (const std::invalid_argument& error) {
        throw Failure(error.what());
    }
}

// A bar on stderr while frames go by, when stderr is a terminal.
class Progress {
public:
    Progress(std::ostream& err, std::size_t total)
        : _err(err), _total(total), _shown(total > 1 && isatty(STDERR_FILENO)) {}
    ~Progress() { clear(); }

    void show(std::size_t done) {
        if (!_shown) return;
        const std::size_t width = 30, filled = done * width / _total;
        _err << "\r[" << std::string(filled, '#') << std::string(width - filled, '.') << "] "
             << done << "/" << _total << " frames" << std::flush;
        _drawn = true;
    }
    void clear() {
        if (_drawn) _err << "\r\033[K" << std::flush;
        _drawn = false;
    }

private:
    std::ostream& _err;
    std::size_t _total;
    bool _shown;
    bool _drawn = false;
};

// A process that computes at most `frequency` times a second skips frames that come faster.
void noteSlowProcess(std::ostream& err, const std::string& process, float frequency) {
    if (frequency <= 0.0f) {
        err << "note: process '" << process
            << "' has frequency 0, so a pull never computes it; give it a frequency in its "
               "header\n";
    } else if (frequency < kFramesPerSecond) {
        err << "note: process '" << process << "' runs at " << frequency
            << " Hz: of frames 1/30 s apart it computes one in "
            << std::ceil(kFramesPerSecond / frequency) << " (give it 30 Hz in its header to "
            << "compute every frame)\n";
    }
}

// What the sinks of one process tell: how many values they got, and when the last came.
struct RunWatch {
    std::string process;
    std::string firstSink;
    std::atomic<unsigned long> values{0};            // at any sink: grows with a run's results
    std::deque<std::atomic<unsigned long>> perSink;  // a deque keeps its elements in place
    std::atomic<long long> lastResult{0};            // steady clock, nanoseconds

    // A run gives each sink one value at most, so the sink that got the most counts the runs
    // (exactly, when some sink gets a value from every run).
    unsigned long runs() const {
        unsigned long most = 0;
        for (const auto& count : perSink) most = std::max(most, count.load());
        return most;
    }
};

long long steadyNanoseconds() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

// The processes that the sinks name, in that order, each watched through an event on every
// one of its sinks.
std::vector<std::unique_ptr<RunWatch>> watchProcesses(::Tessarity::Tessarity& engine,
                                                      const std::vector<SinkName>& sinks) {
    std::vector<std::unique_ptr<RunWatch>> watches;
    for (const SinkName& sink : sinks) {
        bool known = false;
        for (const auto& watch : watches) known = known || watch->process == sink.process;
        if (known) continue;
        watches.push_back(std::make_unique<RunWatch>());
        RunWatch* watch = watches.back().get();
        watch->process = sink.process;
        watch->firstSink = sink.text();
        for (const std::string& name : engine.getProcessSinks(sink.process)) {
            std::atomic<unsigned long>* count = &watch->perSink.emplace_back(0);
            const ::Tessarity::Tessarity::Callback counted([watch, count](boost::shared_ptr<Data>) {
                watch->lastResult = steadyNanoseconds();
                count->fetch_add(1);
                watch->values.fetch_add(1);
            });
            engine.createEvent(sink.process + ":" + name, counted);
        }
    }
    return watches;
}

// One line per sink of the frame; images become files.
void showFrame(::Tessarity::Tessarity& engine, const Options& options,
               const std::vector<SinkName>& sinks, std::size_t frame, std::ostream& out) {
    std::size_t width = 0;
    for (const SinkName& sink : sinks) width = std::max(width, sink.text().size());
    for (const SinkName& sink : sinks) {
        if (!options.frames.empty()) out << frameNumber(frame) << "  ";
        out << std::left << std::setw(static_cast<int>(width)) << sink.text() << "  ";
        const boost::shared_ptr<Data> value = engine.getLastData(sink.text());
        const boost::shared_ptr<Type::ColorImage> picture =
            value ? pictureOf(*value) : boost::shared_ptr<Type::ColorImage>();
        if (!value) {
            out << "(no value)";
        } else if (picture) {
            std::error_code error;
            fs::create_directories(options.outputDirectory, error);
            const std::string path = (fs::path(options.outputDirectory) /
                                      (fileNamePart(sink.process) + "-" + fileNamePart(sink.sink) +
                                       "-" + frameNumber(frame) + ".png"))
                                         .string();
            writePng(path, *picture);
            out << Data::getTypeName(value->getType()) << " " << picture->getWidth() << "x"
                << picture->getHeight() << " -> " << path;
        } else {
            out << value->toString();
        }
        out << "\n";
    }
    out << std::flush;
}

}  // namespace

void replay(::Tessarity::Tessarity& engine, const Options& options, std::ostream& out,
            std::ostream& err) {
    const auto started = std::chrono::steady_clock::now();
    const std::vector<SinkName> sinks = sinksToRead(engine, options);
    if (sinks.empty()) {
        err << "note: the program has no process with a sink: nothing to run\n";
        return;
    }
    const std::vector<std::string> sources = engine.getSources();
    for (const SourceSetting& setting : options.settings)
        checkSource(sources, "--set", setting.source);
    for (const FrameFeed& feed : options.frames) checkSource(sources, "--frames", feed.source);

    std::vector<std::vector<std::string>> frameFiles;
    for (const FrameFeed& feed : options.frames) {
        frameFiles.push_back(listImageFiles(feed.directory));
        if (frameFiles.back().size() != frameFiles.front().size())
            throw Failure("--frames " + feed.source + "=" + feed.directory + " has " +
                          std::to_string(frameFiles.back().size()) + " images and --frames " +
                          options.frames.front().source + "=" + options.frames.front().directory +
                          " " + std::to_string(frameFiles.front().size()) +
                          ": the sequences must be as long");
    }
    const std::size_t frames = frameFiles.empty() ? 1 : frameFiles.front().size();

    // The replay's clock starts at a fixed time long past, so that the same command gives the
    // same runs, and no run for the wall clock's time (by a scheduled process before now, or
    // for a value stamped 0) passes for the run of a frame. From here on nothing runs by the
    // wall clock, and nothing is left of what ran by it before.
    const Type::Time start(kReplayEpoch);
    engine.stopScheduler();
    for (const std::string& process : engine.getProcesses()) {
        engine.setProcessPriority(process, 0);
        engine.resetProcess(process);
    }
    for (const SourceSetting& setting : options.settings) {
        boost::shared_ptr<Data> value =
            setting.isFile ? readImage(setting.value, start) : parseLiteral(setting.value);
        value->setTimestamp(start);
        setSource(engine, setting.source, value);
    }
    const std::vector<std::unique_ptr<RunWatch>> watches = watchProcesses(engine, sinks);
    std::vector<ProcessTiming> timings;
    for (const auto& watch : watches) {
        timings.push_back({watch->process, {}});
        if (frames > 1)
            noteSlowProcess(err, watch->process, engine.getProcessFrequency(watch->process));
    }
    engine.startScheduler();

    Progress progress(err, frames);
    for (std::size_t frame = 0; frame < frames; ++frame) {
        const Type::Time time =
            start + Type::Duration(static_cast<long long>(frame) * 1000000 / kFramesPerSecond);
        std::vector<boost::shared_ptr<Data>> images;
        for (const std::vector<std::string>& files : frameFiles)
            images.push_back(readImage(files[frame], time));
        std::vector<unsigned long> valuesBefore;
        for (const auto& watch : watches) valuesBefore.push_back(watch->values);
        const long long arrived = steadyNanoseconds();
        for (std::size_t feed = 0; feed < images.size(); ++feed)
            setSource(engine, options.frames[feed].source, images[feed]);
        for (std::size_t p = 0; p < watches.size(); ++p) {
            RunWatch& watch = *watches[p];
            const unsigned long before = watch.values;
            const long long pullStart = steadyNanoseconds();
            try {
                engine.getData(watch.firstSink, time);
            } catch (const std::exception& error) {
                throw Failure("frame " + std::to_string(frame) + ": process '" + watch.process +
                              "' failed: " + error.what());
            }
            // A pull that computed is timed from its start; a run that an event of the
            // program started on a worker, from the frame's arrival to its last result.
            if (watch.values != before)
                timings[p].milliseconds.push_back((steadyNanoseconds() - pullStart) / 1e6);
            else if (before != valuesBefore[p])
                timings[p].milliseconds.push_back((watch.lastResult - arrived) / 1e6);
        }
        progress.clear();
        showFrame(engine, options, sinks, frame, out);
        progress.show(frame + 1);
    }
    progress.clear();
    for (std::size_t p = 0; p < watches.size(); ++p) timings[p].runs = watches[p]->runs();
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - started;
    err << timingTable(timings, frames, seconds.count());
}

std::string timingTable(const std::vector<ProcessTiming>& timings, std::size_t frames,
                        double seconds) {
    std::size_t nameWidth = 7;  // "process"
    for (const ProcessTiming& timing : timings)
        nameWidth = std::max(nameWidth, timing.process.size());
    std::ostringstream table;
    table << std::left << std::setw(static_cast<int>(nameWidth)) << "process" << std::right
          << "  runs  mean ms   p95 ms  frames/s\n";
    table << std::fixed;
    for (const ProcessTiming& timing : timings) {
        table << std::left << std::setw(static_cast<int>(nameWidth)) << timing.process << std::right
              << std::setw(6) << timing.runs;
        if (timing.milliseconds.empty()) {
            table << std::setw(9) << "-" << std::setw(9) << "-" << std::setw(10) << "-"
                  << "\n";
            continue;
        }
        std::vector<double> sorted = timing.milliseconds;
        std::sort(sorted.begin(), sorted.end());
        double sum = 0.0;
        for (double value : sorted) sum += value;
        const double mean = sum / sorted.size();
        // Nearest rank: the smallest time that at least 95 % of the runs do not exceed.
        const std::size_t rank =
            static_cast<std::size_t>(std::ceil(0.95 * static_cast<double>(sorted.size())));
        const double p95 = sorted[std::max<std::size_t>(rank, 1) - 1];
        table << std::setprecision(3) << std::setw(9) << mean << std::setw(9) << p95
              << std::setprecision(1) << std::setw(10) << (mean > 0.0 ? 1000.0 / mean : 0.0)
              << "\n";
    }
    table << std::setprecision(1) << frames << (frames == 1 ? " frame" : " frames") << " in "
          << (seconds < 1.0 ? seconds * 1000.0 : seconds) << (seconds < 1.0 ? " ms" : " s") << " ("
          << frames / seconds << " frames/s, image files read and written)\n";
    return table.str();
}

}  // namespace TessarityRun
