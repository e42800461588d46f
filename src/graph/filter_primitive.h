#ifndef TESSARITY_GRAPH_FILTER_PRIMITIVE_H
#define TESSARITY_GRAPH_FILTER_PRIMITIVE_H

#include "graph/filter.h"

namespace Tessarity {

// A filter whose body is native code. A concrete filter passes its fixed name up and declares
// its ports in its constructor, in the order that indexes applyFilter's vectors.
class FilterPrimitive : public Filter {
public:
    explicit FilterPrimitive(const std::string& name);

    // A primitive keeps nothing of a request outside the MemoryManager: nothing to undo.
    void abortFilter(const StringHash& process, const StringHash& request,
                     long long depth) override;
    std::string dumpToDot(long& id, int depth) const override;

protected:
    boost::shared_ptr<Port> _addInput(const std::string& name);
    boost::shared_ptr<Port> _addOutput(const std::string& name);
};

}  // namespace Tessarity

#endif
