#ifndef TESSARITY_COMMON_LOGGING_H
#define TESSARITY_COMMON_LOGGING_H

#include <sstream>
#include <stdexcept>

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

// Logs an error line and throws the same text as std::invalid_argument, for the operations
// that report a bad name by an exception.
#define TES_THROW(expr)                                      \
    do {                                                     \
        std::ostringstream tesThrowStream_;                  \
        tesThrowStream_ << expr;                             \
        TES_LOG(::kelvo::log::Error, tesThrowStream_.str()); \
        throw std::invalid_argument(tesThrowStream_.str());  \
    } while (0)

#endif
