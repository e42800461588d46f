#ifndef TESSARITY_RUN_FAILURE_H
#define TESSARITY_RUN_FAILURE_H

#include <stdexcept>

namespace TessarityRun {

// Input that cannot be used or a run that went wrong; what() is the one line shown to the
// user, and the program ends with status 1.
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace TessarityRun

#endif
