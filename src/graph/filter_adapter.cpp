#include "graph/filter_adapter.h"

#include "common/logging.h"
#include "graph/memory_manager.h"
#include "graph/port.h"
#include "text/text_utils.h"

namespace Tessarity {

namespace {
const char* const kLogCategory = "tessarity.filterAdapter";
const char* const kLogFile = "src/filteradapter";
}  // namespace

FilterAdapter::FilterAdapter(boost::shared_ptr<UserFilter> filter)
    : FilterPrimitive(filter->getName()), _userFilter(filter) {
    // A refused declaration leaves the filter one port short; the filter is still made.
    for (const std::string& declaration : filter->getInputs()) _declareInput(declaration);
    for (const std::string& declaration : filter->getOutputs()) {
        const std::vector<std::string> words = splitSpace(declaration);
        if (words.size() == 1)
            _addOutput(words.front());
        else
            TES_LOG(kelvo::log::Error, "Can't parse output declaration (" << declaration << ")");
    }
}

void FilterAdapter::_declareInput(const std::string& declaration) {
    const std::list<std::string> items = blockString('[', ']', declaration);
    if (items.size() != 1 && items.size() != 2) {
        TES_LOG(kelvo::log::Error, "Can't parse input declaration (" << declaration << ")");
        return;
    }
    if (items.size() == 1)
        TES_LOG(kelvo::log::Verbose,
                "Missing type declaration for input " << items.front() << " of filter " << _name);
    const std::vector<std::string> words = splitSpace(items.front());
    boost::shared_ptr<Port> port;
    if (words.size() == 1) {
        port = _addInput(words[0]);
    } else if (words.size() == 2 && words[0] == "optional") {
        port = _addInput(words[1]);
        port->setOptional(true);
    } else {
        TES_LOG(kelvo::log::Error, "Can't parse input declaration (" << declaration << ")");
        return;
    }
    if (items.size() == 1) return;
    for (const std::string& type : splitSpace(items.back())) {
        const DataType tag = Data::getTypeFromName(type);
        if (tag != Invalid)
            port->addType(tag);
        else
            TES_LOG(kelvo::log::Error, "Invalid input type " << type << " for port "
                                                             << port->getName() << " of filter "
                                                             << _name);
    }
}

std::string FilterAdapter::getDescription() const { return _userFilter->getDescription(); }

std::vector<boost::shared_ptr<Data>> FilterAdapter::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
    const StringHash& request, long long) {
    if (!_userFilter->hasLocalData()) return _userFilter->apply(inputs);
    boost::mutex::scoped_lock lock(_localDataMutex);
    MemoryManager* memory = _getMemoryManager();
    // Outside the library (a lambda of a user filter) there is no memory to swap in: the user
    // filter keeps its state in its own slot.
    if (!memory) return _userFilter->apply(inputs);
    // The state of this key is swapped into the user filter's one slot for the call.
    _userFilter->setLocalData(memory->getData(process, request));
    std::vector<boost::shared_ptr<Data>> result = _userFilter->apply(inputs);
    memory->setData(process, request, _userFilter->getLocalData());
    return result;
}

}  // namespace Tessarity
