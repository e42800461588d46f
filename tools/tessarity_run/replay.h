#ifndef TESSARITY_RUN_REPLAY_H
#define TESSARITY_RUN_REPLAY_H

#include <ostream>
#include <string>
#include <vector>

#include <tessarity/tessarity.h>

#include "options.h"

namespace TessarityRun {

// The run of a loaded program. The replay has its own clock: frame i is stamped i/30 s after
// 2000-01-01 00:00:00 UTC, and every process runs for a frame's time only, when the replay
// pulls it or when an event of the program wakes it; the scheduler runs none by the wall
// clock, and the processes start from a reset. Per
// frame the fed sources are set, each process named by the sinks is pulled once (one run
// serves all its sinks), and then each sink is shown: images as PNG files, other values as
// their text, on `out`. Notes, the progress bar and the timing table go to `err`. A run is
// timed by its pull, nested pulls of other processes included; a run that an event of the
// program started on a worker, from the frame's values being set to its last result.
// Throws Failure for unknown names and unreadable files, before any run where it can.
void replay(Tessarity::Tessarity& engine, const Options& options, std::ostream& out,
            std::ostream& err);

// The runs of one process that gave a value, on any thread, and the times of those the
// replay could time, one a frame at most, in milliseconds.
struct ProcessTiming {
    std::string process;
    std::vector<double> milliseconds;
    unsigned long runs = 0;
};

// One row per process: runs, mean and 95th percentile (nearest rank) in milliseconds, and
// the runs per second that the mean allows; then the frames and the wall time of it all.
std::string timingTable(const std::vector<ProcessTiming>& timings, std::size_t frames,
                        double seconds);

}  // namespace TessarityRun

#endif
