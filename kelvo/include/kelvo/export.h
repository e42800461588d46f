#ifndef KELVO_EXPORT_H
#define KELVO_EXPORT_H

// kelvo is built into libtessarity with hidden symbols; its public functions are marked.
#define KELVO_EXPORT __attribute__((visibility("default")))

#endif
