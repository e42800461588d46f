#include "runtime/scheduler.h"

#include <sched.h>

#include <algorithm>

#include <boost/bind/bind.hpp>

#include <kelvo/os.h>

#include "runtime/process.h"
#include "runtime/scheduler_host.h"

namespace Tessarity {

namespace {
const char* const kIdleThreadName = "TesWrk_idle";
const long long kIdleSleepMilliseconds = 100;
}  // namespace

Scheduler::Scheduler(const SchedulerHost* host, unsigned int threadCount)
    : _host(host),
      _running(false),
      _threadCount(threadCount),
      _generation(0),
      _sleeping(0),
      _wakeCount(0) {}

Scheduler::~Scheduler() {
    if (_running) stop();
}

bool Scheduler::start() {
    boost::mutex::scoped_lock lock(_startStopMutex);
    if (_running) return true;
    _running = true;
    for (unsigned int i = 0; i < _threadCount; ++i)
        _threads.emplace_back(new boost::thread(boost::bind(&Scheduler::_run, this)));
    return true;
}

bool Scheduler::stop() {
    boost::mutex::scoped_lock lock(_startStopMutex);
    if (!_running) return true;
    {
        std::lock_guard<std::mutex> wakeLock(_wakeMutex);
        _running = false;
    }
    _wakeCondition.notify_all();
    // A worker that stops its own scheduler gets boost's "trying joining itself" error here.
    for (std::unique_ptr<boost::thread>& thread : _threads) thread->join();
    _threads.clear();
    return true;
}

bool Scheduler::_processSort(const Count& a, const Count& b) { return a.second < b.second; }

bool Scheduler::update() {
    std::vector<Count> list;
    for (const boost::shared_ptr<Process>& process : _host->getScheduledProcesses())
        list.push_back(Count(process, 1u << (process->getPriority() - 1)));
    if (list.empty()) {
        boost::mutex::scoped_lock lock(_scheduleMutex);
        _schedule.clear();
        return true;
    }
    std::sort(list.begin(), list.end(), _processSort);
    // Only the ratio of priorities matters: the lowest present counts 1.
    const unsigned int lowest = list.front().second;
    list.front().second = 1;
    for (std::size_t i = 1; i < list.size(); ++i) list[i].second /= lowest;
    {
        boost::mutex::scoped_lock lock(_scheduleMutex);
        _schedule.clear();
        _buildSchedulingList(&_schedule, &list);
    }
    // Workers that slept with nothing scheduled now have something to do.
    _wake(true);
    return true;
}

void Scheduler::_buildSchedulingList(std::vector<Job>* out, std::vector<Count>* list) {
    if (list->empty()) return;
    if (list->back().second == 1) {
        for (const Count& entry : *list) out->push_back(Job(entry.first, Type::Time()));
        return;
    }
    // The processes of count 1 go in the middle, between two halves of the others.
    std::vector<Count> ones, others;
    for (const Count& entry : *list) {
        if (entry.second == 1)
            ones.push_back(Count(entry.first, 1));
        else
            others.push_back(Count(entry.first, entry.second / 2));
    }
    _buildSchedulingList(out, &others);
    _buildSchedulingList(out, &ones);
    _buildSchedulingList(out, &others);
}

std::vector<boost::shared_ptr<Process>> Scheduler::getScheduledProcessList() const {
    boost::mutex::scoped_lock lock(_scheduleMutex);
    std::vector<boost::shared_ptr<Process>> processes;
    processes.reserve(_schedule.size());
    for (const Job& job : _schedule) processes.push_back(job.first);
    return processes;
}

bool Scheduler::addProcessToScheduledProcessList(const boost::shared_ptr<Process>& process,
                                                 const Type::Time& time) {
    {
        boost::mutex::scoped_lock lock(_jobMutex);
        _jobs.push_back(Job(process, time));
    }
    _wake(false);
    return true;
}

void Scheduler::_wake(bool everyone) {
    {
        std::lock_guard<std::mutex> lock(_wakeMutex);
        ++_generation;
    }
    if (everyone)
        _wakeCondition.notify_all();
    else
        _wakeCondition.notify_one();
}

bool Scheduler::_sleep(long long milliseconds, unsigned long generation) {
    std::unique_lock<std::mutex> lock(_wakeMutex);
    const auto woken = [&] { return !_running || _generation != generation; };
    ++_sleeping;
    bool cut;
    if (milliseconds < 0) {
        _wakeCondition.wait(lock, woken);
        cut = true;
    } else {
        cut = _wakeCondition.wait_for(lock, std::chrono::milliseconds(milliseconds), woken);
    }
    --_sleeping;
    cut = cut && _running;
    if (cut) ++_wakeCount;
    return cut;
}

Scheduler::Job Scheduler::_getNextJob() {
    // A worker woken by a job or a new schedule looks again at once, without a detour.
    for (;;) {
        // Read first, so that a job added from here on cuts the sleep below short.
        const unsigned long generation = _generation;
        {
            boost::mutex::scoped_lock lock(_jobMutex);
            if (!_jobs.empty()) {
                // A job for a process that a worker holds is dropped, not postponed.
                Job job;
                do {
                    job = _jobs.back();
                    _jobs.pop_back();
                    if (_runningProcesses.count(job.first)) job.first.reset();
                } while (!job.first && !_jobs.empty());
                if (job.first) _runningProcesses.insert(job.first);
                return job;
            }
        }
        bool nothingScheduled;
        {
            boost::mutex::scoped_lock lock(_scheduleMutex);
            nothingScheduled = _schedule.empty();
        }
        if (nothingScheduled) {
            // Nothing comes due by itself: only a job or a new schedule can end this sleep.
            if (_sleep(-1, generation)) continue;
            return Job();
        }
        bool allHeld;
        {
            boost::mutex::scoped_lock jobLock(_jobMutex);
            boost::mutex::scoped_lock scheduleLock(_scheduleMutex);
            // A job that an event added since the check above stays at the back, next to run.
            _jobs.insert(_jobs.begin(), _schedule.begin(), _schedule.end());
            allHeld = _jobs.size() == _runningProcesses.size();
        }
        // The refilling worker paces the engine: it sleeps until the next process is due.
        const long long sleep = allHeld ? kIdleSleepMilliseconds
                                        : _host->getNextComputationTime().getTotalMilliseconds();
        if (_sleep(sleep, generation)) continue;
        return Job();
    }
}

void Scheduler::_run() {
    kelvo::os::setCurrentThreadName(kIdleThreadName);
    while (_running) {
        sched_yield();
        Job job = _getNextJob();
        if (!job.first) continue;
        if (!_host->isProcess(job.first->getName())) {
            // Deleted since the cycle was laid out.
            boost::mutex::scoped_lock lock(_jobMutex);
            _runningProcesses.erase(job.first);
            update();
            continue;
        }
        kelvo::os::setCurrentThreadName("TesWrk_" + job.first->getName());
        job.first->update(job.second != Type::Time() ? job.second : Type::Time::now());
        {
            boost::mutex::scoped_lock lock(_jobMutex);
            _runningProcesses.erase(job.first);
        }
        kelvo::os::setCurrentThreadName(kIdleThreadName);
    }
    boost::mutex::scoped_lock lock(_jobMutex);
    _jobs.clear();
}

}  // namespace Tessarity
