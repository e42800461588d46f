#ifndef TESSARITY_SCHEDULER_H
#define TESSARITY_SCHEDULER_H

#include <atomic>
#include <memory>
#include <vector>

#include <boost/thread/condition_variable.hpp>
#include <boost/thread/mutex.hpp>
#include <boost/thread/thread.hpp>

namespace Tessarity {

class TessarityPrivate;

// The pool of workers that runs processes without being asked. Workers exist from start()
// to stop(); with no process to run they wait, waking at once when stopped.
class Scheduler {
public:
    Scheduler(TessarityPrivate* owner, unsigned int threadCount);
    ~Scheduler();

    // A second start, or a second stop, does nothing. Both always return true.
    bool start();
    bool stop();

private:
    void run();

    TessarityPrivate* _owner;
    std::atomic<bool> _running;
    boost::mutex _startStopMutex;
    // Lets stop() cut a worker's idle wait short.
    boost::mutex _wakeMutex;
    boost::condition_variable _wake;
    unsigned int _threadCount;
    std::vector<std::unique_ptr<boost::thread>> _threads;
};

}  // namespace Tessarity

#endif
