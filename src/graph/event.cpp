#include "graph/event.h"

#include "graph/job_queue.h"

namespace Tessarity {

Event::Event(const boost::weak_ptr<Process>& process, const boost::weak_ptr<JobQueue>& scheduler)
    : _isCallback(false), _process(process), _scheduler(scheduler) {}

Event::Event(Callback callback) : _isCallback(true), _callback(callback) {}

void Event::raise(boost::shared_ptr<Data> data) {
    if (_isCallback) {
        // An empty callback throws boost::bad_function_call to the raiser.
        _callback(data);
        return;
    }
    boost::shared_ptr<Process> process = _process.lock();
    boost::shared_ptr<JobQueue> scheduler = _scheduler.lock();
    // The job runs the process for the value's time; a deleted process or a scheduler that
    // is gone makes the event a no-op.
    if (process && scheduler)
        scheduler->addProcessToScheduledProcessList(process, data->getTimestamp());
}

}  // namespace Tessarity
