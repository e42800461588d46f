#ifndef TESSARITY_GRAPH_SOURCE_ADAPTER_H
#define TESSARITY_GRAPH_SOURCE_ADAPTER_H

#include <boost/shared_ptr.hpp>

#include <tessarity/usersource.h>

#include "graph/node_source.h"

namespace Tessarity {

// Places an application's UserSource in a graph. The user source keeps the values, so this
// node's own value stays null and its uid stays 0, which makes it count as changed at every
// check. Each run asks the user source once, for the run's time and tolerance.
class SourceAdapter : public NodeSource {
public:
    // Named after the user source, read once.
    explicit SourceAdapter(boost::shared_ptr<UserSource> userSource);

    void setData(const boost::shared_ptr<Data>& data) override;
    boost::shared_ptr<Data> getData(const Type::Time& time,
                                    const Type::Duration& tolerance) const override;

protected:
    void _synchronize(const Type::Time& time, const Type::Duration& tolerance,
                      const StringHash& process, const StringHash& request,
                      long long depth) override;

private:
    // Called only under _sourceMutex: never entered twice at once through this node.
    boost::shared_ptr<UserSource> _userSource;
};

}  // namespace Tessarity

#endif
