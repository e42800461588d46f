#ifndef TESSARITY_EVENT_H
#define TESSARITY_EVENT_H

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>

#include <tessarity/data.h>

namespace Tessarity {

// What a source or a sink does when a new value arrives.
class Event {
public:
    typedef boost::function1<void, boost::shared_ptr<Data>> Callback;

    explicit Event(Callback callback);

    // Runs on the raiser's thread; the raiser holds none of its own locks. Callers raise
    // only with non-null data.
    void raise(boost::shared_ptr<Data> data);

private:
    bool _isCallback;
    Callback _callback;
};

}  // namespace Tessarity

#endif
