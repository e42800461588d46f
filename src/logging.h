#ifndef TESSARITY_LOGGING_H
#define TESSARITY_LOGGING_H

#include <sstream>

#include <kelvo/log.h>

// Composes a log line with stream syntax and hands it to kelvo. Each source file defines
// `kLogCategory` and `kLogFile` in an anonymous namespace before using it.
#define TES_LOG(level, expr)                                                              \
    do {                                                                                  \
        std::ostringstream tesLogStream_;                                                 \
        tesLogStream_ << expr;                                                            \
        ::kelvo::log::log((level), kLogCategory, tesLogStream_.str(), kLogFile, __func__, \
                          __LINE__);                                                      \
    } while (0)

#endif
