#ifndef TESSARITY_GRAPH_NODE_PULSE_H
#define TESSARITY_GRAPH_NODE_PULSE_H

#include <string>

#include <boost/shared_ptr.hpp>

#include "graph/node_source.h"

namespace Tessarity {

// A source whose value lasts one run: the first process to synchronize after a setData takes
// it, and the pulse falls back to its default. A fall-back to a non-null default advances the
// uid, so a process that watches the pulse always sees it changed.
class NodePulse : public NodeSource {
public:
    explicit NodePulse(const std::string& name);

    // Also becomes the current value, without advancing the uid or raising events.
    void setDefaultData(boost::shared_ptr<Data> data);
    boost::shared_ptr<Data> getDefaultData() const;

protected:
    void _synchronize(const Type::Time& time, const Type::Duration& tolerance,
                      const StringHash& process, const StringHash& request,
                      long long depth) override;

private:
    boost::shared_ptr<Data> _defaultData;
};

}  // namespace Tessarity

#endif
