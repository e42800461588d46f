#ifndef TESSARITY_TESSARITY_H
#define TESSARITY_TESSARITY_H

// The whole public surface of the engine: an application includes only this header.

#include <string>
#include <vector>

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <tessarity/data.h>
#include <tessarity/datatype.h>
#include <tessarity/duration.h>
#include <tessarity/stringhash.h>
#include <tessarity/time.h>
#include <tessarity/usersource.h>

namespace Tessarity {

class TessarityPrivate;

// The engine. A thin handle: copies share one engine, and dropping the last one stops the
// workers and destroys it. Any thread may call any operation at any time.
class Tessarity {
public:
    // Starts `threadCount` workers; with 0 none starts, and processes run only when pulled.
    explicit Tessarity(unsigned int threadCount);

    // Sources. A name is unique among sources; data cannot be set through an alias.
    std::vector<std::string> getSources() const;
    bool createSource(const std::string& name);
    // Throws std::invalid_argument, after logging it, for an unknown source.
    void setData(const std::string& source, boost::shared_ptr<Data> data);
    boost::shared_ptr<Data> getSourceData(const std::string& source,
                                          const Type::Duration& tolerance) const;
    boost::shared_ptr<Data> getSourceData(const std::string& source, const Type::Time& time,
                                          const Type::Duration& tolerance) const;
    bool deleteSource(const std::string& name);

    // Scheduler. Stopping keeps every registry; nothing runs by itself until started again.
    void startScheduler();
    void stopScheduler();

private:
    boost::shared_ptr<TessarityPrivate> _d;
};

}  // namespace Tessarity

#endif
