#include "event.h"

namespace Tessarity {

Event::Event(Callback callback) : _isCallback(true), _callback(callback) {}

void Event::raise(boost::shared_ptr<Data> data) {
    // An empty callback throws boost::bad_function_call to the raiser, as boost::function does.
    if (_isCallback) _callback(data);
}

}  // namespace Tessarity
