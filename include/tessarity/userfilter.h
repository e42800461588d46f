#ifndef TESSARITY_USERFILTER_H
#define TESSARITY_USERFILTER_H

#include <tessarity/export.h>

#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include <tessarity/data.h>

namespace Tessarity {

// A filter of the application's own, added with Tessarity::createFilter. It sees values
// only: its ports are declared as text, and `apply` turns one value per input port into at
// most one value per output port (a missing or null result means no value there).
//
// Input declarations: "name", "optional name", "name[Type Type]", "optional name [Type]",
// with the type names of Data::getTypeName; without types a port accepts every type. An
// output declaration is one word, the port's name.
//
// A filter that keeps state between calls answers true in hasLocalData and keeps its state
// with getLocalData/setLocalData: the engine swaps in the state of the process and the place
// in the graph before each call and out after it, one call at a time. Without local data,
// apply may run on several threads at once and must be stateless.
class TESSARITY_EXPORT UserFilter {
public:
    UserFilter();
    virtual ~UserFilter();

    virtual std::string getName() = 0;
    virtual std::string getDescription() = 0;
    virtual std::vector<std::string> getInputs() = 0;
    virtual std::vector<std::string> getOutputs() = 0;
    virtual std::vector<boost::shared_ptr<Data>> apply(
        const std::vector<boost::shared_ptr<Data>>& inputs) = 0;
    virtual bool hasLocalData();

    void setLocalData(boost::shared_ptr<Data> data) { _localData = data; }
    boost::shared_ptr<Data> getLocalData() { return _localData; }

private:
    boost::shared_ptr<Data> _localData;
};

}  // namespace Tessarity

#endif
