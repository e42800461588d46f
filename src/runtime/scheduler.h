#ifndef TESSARITY_RUNTIME_SCHEDULER_H
#define TESSARITY_RUNTIME_SCHEDULER_H

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <set>
#include <utility>
#include <vector>

#include <boost/shared_ptr.hpp>
#include <boost/thread/mutex.hpp>
#include <boost/thread/thread.hpp>

#include <tessarity/time.h>

#include "graph/job_queue.h"

namespace Tessarity {

class Process;
class SchedulerHost;

// The pool of workers that runs processes without being asked. One cycle of the schedule
// holds a process of priority p 2^(p-1) times; workers take jobs from a copy of it, from its
// back, and the worker that finds the copy empty refills it and sleeps until the next process
// is due. Events put a job at the back, so it is the next one taken, and wake one sleeping
// worker, which takes it at once. With nothing scheduled, workers sleep until a job comes or
// the schedule changes.
class Scheduler : public JobQueue {
public:
    // A time of zero runs the process for the time at which the job starts.
    typedef std::pair<boost::shared_ptr<Process>, Type::Time> Job;

    Scheduler(const SchedulerHost* host, unsigned int threadCount);
    ~Scheduler();

    // A second start, or a second stop, does nothing. Both always return true.
    bool start();
    bool stop();
    // Rebuilds the cycle from the registry; called after every change that affects it.
    bool update();
    std::vector<boost::shared_ptr<Process>> getScheduledProcessList() const;
    // Wakes a sleeping worker at once, so an event's job does not wait out a sleep.
    bool addProcessToScheduledProcessList(const boost::shared_ptr<Process>& process,
                                          const Type::Time& time) override;

    // How many workers sleep now, and how many sleeps a job or a new schedule has cut short.
    unsigned int getSleepingWorkers() const { return _sleeping; }
    unsigned long getWakeCount() const { return _wakeCount; }

private:
    typedef std::pair<boost::shared_ptr<Process>, unsigned int> Count;

    void _run();
    Job _getNextJob();
    static bool _processSort(const Count& a, const Count& b);
    static void _buildSchedulingList(std::vector<Job>* out, std::vector<Count>* list);
    // Sleeps up to `milliseconds`, or until woken if negative; true if a job or a new schedule
    // came since `generation` was read (and the scheduler still runs).
    bool _sleep(long long milliseconds, unsigned long generation);
    void _wake(bool everyone);

    const SchedulerHost* _host;
    std::atomic<bool> _running;
    boost::mutex _startStopMutex;
    std::vector<Job> _jobs;
    boost::mutex _jobMutex;
    std::set<boost::shared_ptr<Process>> _runningProcesses;
    std::vector<Job> _schedule;
    mutable boost::mutex _scheduleMutex;
    unsigned int _threadCount;
    std::vector<std::unique_ptr<boost::thread>> _threads;
    // A leaf lock: cuts the workers' sleeps short.
    std::mutex _wakeMutex;
    std::condition_variable _wakeCondition;
    std::atomic<unsigned long> _generation;
    std::atomic<unsigned int> _sleeping;
    std::atomic<unsigned long> _wakeCount;
};

}  // namespace Tessarity

#endif
