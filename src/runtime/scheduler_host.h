#ifndef TESSARITY_RUNTIME_SCHEDULER_HOST_H
#define TESSARITY_RUNTIME_SCHEDULER_HOST_H

#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include <tessarity/duration.h>

namespace Tessarity {

class Process;

// What the scheduler asks of the registry of processes that it serves.
class SchedulerHost {
public:
    // The processes the scheduler serves (priority above 0 and live), in name order.
    virtual std::vector<boost::shared_ptr<Process>> getScheduledProcesses() const = 0;
    // How long a worker may sleep: until the earliest scheduled process is due, at most
    // 100 milliseconds.
    virtual Type::Duration getNextComputationTime() const = 0;
    // False once the process has been deleted from the registry.
    virtual bool isProcess(const std::string& name) const = 0;

protected:
    ~SchedulerHost() = default;
};

}  // namespace Tessarity

#endif
