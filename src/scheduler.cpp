#include "scheduler.h"

#include <boost/bind/bind.hpp>

#include <kelvo/os.h>

namespace Tessarity {

namespace {
const char* const kIdleThreadName = "TesWrk_idle";
const long kIdleWaitMilliseconds = 100;
}  // namespace

Scheduler::Scheduler(TessarityPrivate* owner, unsigned int threadCount)
    : _owner(owner), _running(false), _threadCount(threadCount) {}

Scheduler::~Scheduler() {
    if (_running) stop();
}

bool Scheduler::start() {
    boost::mutex::scoped_lock lock(_startStopMutex);
    if (_running) return true;
    _running = true;
    for (unsigned int i = 0; i < _threadCount; ++i)
        _threads.emplace_back(new boost::thread(boost::bind(&Scheduler::run, this)));
    return true;
}

bool Scheduler::stop() {
    boost::mutex::scoped_lock lock(_startStopMutex);
    if (!_running) return true;
    {
        boost::mutex::scoped_lock wakeLock(_wakeMutex);
        _running = false;
    }
    _wake.notify_all();
    // A worker that stops its own scheduler gets boost's "trying joining itself" error here.
    for (std::unique_ptr<boost::thread>& thread : _threads) thread->join();
    _threads.clear();
    return true;
}

void Scheduler::run() {
    kelvo::os::setCurrentThreadName(kIdleThreadName);
    boost::mutex::scoped_lock lock(_wakeMutex);
    while (_running) _wake.wait_for(lock, boost::chrono::milliseconds(kIdleWaitMilliseconds));
}

}  // namespace Tessarity
