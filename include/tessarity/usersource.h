#ifndef TESSARITY_USERSOURCE_H
#define TESSARITY_USERSOURCE_H

#include <tessarity/export.h>

#include <string>

#include <boost/shared_ptr.hpp>

#include <tessarity/data.h>
#include <tessarity/duration.h>
#include <tessarity/time.h>

namespace Tessarity {

// A source whose values the application keeps itself, for instance with a history of its
// own. A run asks it once, with the run's time and tolerance, and answers as it sees fit.
// The engine never calls one object from two threads at once through one source; setData
// must not set the same source again.
class TESSARITY_EXPORT UserSource {
public:
    UserSource();
    virtual ~UserSource();

    // Read once, when the source is registered: it names the source.
    virtual std::string getName() const = 0;
    virtual void setData(const boost::shared_ptr<Data>& data) = 0;
    // Null means no data for that time.
    virtual boost::shared_ptr<Data> getData(const Type::Time& time,
                                            const Type::Duration& tolerance) const = 0;
};

}  // namespace Tessarity

#endif
