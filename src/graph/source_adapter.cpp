#include "graph/source_adapter.h"

namespace Tessarity {

SourceAdapter::SourceAdapter(boost::shared_ptr<UserSource> userSource)
    : NodeSource(userSource ? userSource->getName() : std::string()), _userSource(userSource) {}

void SourceAdapter::setData(const boost::shared_ptr<Data>& data) {
    {
        boost::mutex::scoped_lock lock(_sourceMutex);
        if (_userSource) _userSource->setData(data);
    }
    // Outside the lock, as for any source: a callback may set this source again.
    if (data) _raise(data);
}

boost::shared_ptr<Data> SourceAdapter::getData(const Type::Time& time,
                                               const Type::Duration& tolerance) const {
    boost::mutex::scoped_lock lock(_sourceMutex);
    if (!_userSource) return boost::shared_ptr<Data>();
    return _userSource->getData(time, tolerance);
}

void SourceAdapter::_synchronize(const Type::Time& time, const Type::Duration& tolerance,
                                 const StringHash& process, const StringHash&, long long) {
    // The user source is asked once per run, at the run's time, in place of the snapshot.
    boost::mutex::scoped_lock lock(_sourceMutex);
    Snapshot* first = _countSnapshot(process);
    if (first && _userSource) first->data = _userSource->getData(time, tolerance);
}

}  // namespace Tessarity
