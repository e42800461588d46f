#ifndef TESSARITY_EXPORT_H
#define TESSARITY_EXPORT_H

// The library is built with hidden symbols; the classes an application uses are marked with
// this, and nothing else leaves the shared library.
#define TESSARITY_EXPORT __attribute__((visibility("default")))

#endif
