#include <tessarity/usersource.h>

namespace Tessarity {

// Defined out of line so that the class's vtable and type information live in the library.
UserSource::UserSource() {}

UserSource::~UserSource() {}

}  // namespace Tessarity
