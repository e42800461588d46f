#include <tessarity/userfilter.h>

namespace Tessarity {

UserFilter::UserFilter() {}

UserFilter::~UserFilter() {}

bool UserFilter::hasLocalData() { return false; }

}  // namespace Tessarity
