#ifndef TESSARITY_GRAPH_REQUEST_SLOTS_H
#define TESSARITY_GRAPH_REQUEST_SLOTS_H

#include <atomic>

namespace Tessarity {

// What a node keeps for each request (or each process) that runs through it, in slots that
// are made at the first run of a key and kept for the node's life, so that steady runs neither
// allocate nor lock.
//
// A key's slot is used by one thread at a time: the thread that runs the process the key
// belongs to, under that process's mutex. Different keys may run on different threads at once
// (processes sharing a composite, or a global source), and their slots are found and claimed
// without a lock: a slot's state is claimed by compare-and-swap, and its key is published by
// the state's release store. Slots are claimed in order, so the claimed ones always form a
// prefix, and a search stops at the first free slot.
template <typename T>
class RequestSlots {
public:
    RequestSlots() = default;
    RequestSlots(const RequestSlots&) = delete;
    RequestSlots& operator=(const RequestSlots&) = delete;
    ~RequestSlots() {
        for (Chunk* chunk = _first.next.load(); chunk;) {
            Chunk* next = chunk->next.load();
            delete chunk;
            chunk = next;
        }
    }

    // The slot of `key`, or null if the key never ran here.
    T* find(unsigned long key) {
        for (Chunk* chunk = &_first; chunk; chunk = chunk->next.load(std::memory_order_acquire))
            for (int i = 0; i < kChunkSize; ++i) {
                const int state = chunk->states[i].load(std::memory_order_acquire);
                if (state == kFree) return nullptr;
                if (state == kReady && chunk->keys[i] == key) return &chunk->values[i];
            }
        return nullptr;
    }

    // The slot of `key`, claimed at its first use.
    T& get(unsigned long key) {
        for (Chunk* chunk = &_first;;) {
            for (int i = 0; i < kChunkSize; ++i) {
                int state = chunk->states[i].load(std::memory_order_acquire);
                if (state == kFree && chunk->states[i].compare_exchange_strong(
                                          state, kClaiming, std::memory_order_acq_rel)) {
                    chunk->keys[i] = key;
                    chunk->states[i].store(kReady, std::memory_order_release);
                    return chunk->values[i];
                }
                // Another thread is claiming this slot for another key: wait for its key.
                while (state == kClaiming) state = chunk->states[i].load(std::memory_order_acquire);
                if (chunk->keys[i] == key) return chunk->values[i];
            }
            Chunk* next = chunk->next.load(std::memory_order_acquire);
            if (!next) {
                Chunk* fresh = new Chunk;
                if (chunk->next.compare_exchange_strong(next, fresh, std::memory_order_acq_rel))
                    next = fresh;
                else
                    delete fresh;  // another thread added one first: `next` holds it
            }
            chunk = next;
        }
    }

    // Calls f(key, slot) for every claimed slot; only while no run goes on.
    template <typename F>
    void forEach(F f) {
        for (Chunk* chunk = &_first; chunk; chunk = chunk->next.load(std::memory_order_acquire))
            for (int i = 0; i < kChunkSize; ++i)
                if (chunk->states[i].load(std::memory_order_acquire) == kReady)
                    f(chunk->keys[i], chunk->values[i]);
    }

private:
    enum State { kFree = 0, kClaiming = 1, kReady = 2 };
    static const int kChunkSize = 4;

    struct Chunk {
        std::atomic<int> states[kChunkSize] = {};
        unsigned long keys[kChunkSize] = {};
        T values[kChunkSize];
        std::atomic<Chunk*> next{nullptr};
    };

    Chunk _first;
};

}  // namespace Tessarity

#endif
