// Handles that can be checked: a handle names a slot and the slot's generation, so that one that
// was never given out, or whose object is gone, is recognised without touching memory through it.
// Looking an object up takes no lock: slots stay where they are, and a handle is stored after all
// that it stands for.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#endif

namespace kirvo {

// Whether the program surely has one thread only.
inline bool single_threaded() {
#if __has_include(<sys/single_threaded.h>)
    return __libc_single_threaded != 0;
#else
    return false;
#endif
}

// Holds a lock for a few instructions; a program of one thread needs none.
class SpinGuard {
  public:
    explicit SpinGuard(std::atomic_flag& flag) : flag_(flag), alone_(single_threaded()) {
        while (!alone_ && flag_.test_and_set(std::memory_order_acquire)) {
        }
    }
    ~SpinGuard() {
        if (!alone_)
            flag_.clear(std::memory_order_release);
    }
    SpinGuard(const SpinGuard&) = delete;
    SpinGuard& operator=(const SpinGuard&) = delete;

  private:
    std::atomic_flag& flag_;
    const bool alone_;
};

template<typename Object>
class HandleTable {
  public:
    // Null when the table cannot grow.
    void* add(const Object& object) {
        const SpinGuard guard(lock_);
        const uint32_t index = free_ != none ? free_ : used_.load();
        Slot* slot = free_ != none ? at(index) : grow();
        if (slot == nullptr)
            return nullptr;
        if (free_ != none)
            free_ = slot->next_free;
        slot->object = object;
        void* const handle = handle_of(index, slot->generation);
        slot->handle.store(handle, std::memory_order_release);
        return handle;
    }

    // A live handle's object, as long as nobody removes it; null for any other handle.
    const Object* look_up(const void* handle) const {
        const Slot* slot = find(handle);
        return slot != nullptr ? &slot->object : nullptr;
    }

    // Calls use(object) for a live handle; false for any other.
    template<typename Use>
    bool with(const void* handle, Use use) {
        const SpinGuard guard(lock_);
        Slot* slot = find(handle);
        if (slot == nullptr)
            return false;
        use(slot->object);
        return true;
    }

    // Takes the object out; false for a handle that is not live.
    bool remove(const void* handle, Object& object) {
        const SpinGuard guard(lock_);
        Slot* slot = find(handle);
        if (slot == nullptr)
            return false;
        object = slot->object;
        slot->handle.store(nullptr, std::memory_order_release);
        slot->generation = (slot->generation + 1) & 0x7FFFFFFF;
        slot->next_free = free_;
        free_ = index_of(handle);
        return true;
    }

    // Calls see(object) for every live handle.
    template<typename See>
    void each(See see) {
        const SpinGuard guard(lock_);
        for (uint32_t index = 0; index < used_; ++index) {
            if (at(index)->handle.load() != nullptr)
                see(at(index)->object);
        }
    }

  private:
    static constexpr uint32_t chunk_slots = 1024;
    static constexpr uint32_t chunk_count = 16384;
    static constexpr uint32_t none = UINT32_MAX;

    struct Slot {
        Object object;
        std::atomic<void*> handle; // null when free
        uint32_t generation;
        uint32_t next_free;
    };

    // Odd values, so that no handle looks like the address of anything aligned.
    static void* handle_of(uint32_t index, uint32_t generation) {
        return reinterpret_cast<void*>((static_cast<uintptr_t>(generation) << 28) |
                                       (static_cast<uintptr_t>(index) << 2) | 3);
    }
    static uint32_t index_of(const void* handle) {
        return (reinterpret_cast<uintptr_t>(handle) >> 2) & 0x03FFFFFF;
    }
    Slot* at(uint32_t index) const { return &chunks_[index / chunk_slots][index % chunk_slots]; }
    Slot* find(const void* handle) const {
        const uint32_t index = index_of(handle);
        if (handle == nullptr || index >= used_.load(std::memory_order_acquire))
            return nullptr;
        Slot* slot = at(index);
        return slot->handle.load(std::memory_order_acquire) == handle ? slot : nullptr;
    }
    Slot* grow() {
        const uint32_t index = used_.load();
        const uint32_t chunk = index / chunk_slots;
        if (chunk >= chunk_count)
            return nullptr;
        if (chunks_[chunk] == nullptr)
            chunks_[chunk] = static_cast<Slot*>(std::calloc(chunk_slots, sizeof(Slot)));
        if (chunks_[chunk] == nullptr)
            return nullptr;
        used_.store(index + 1, std::memory_order_release);
        return at(index);
    }

    Slot* chunks_[chunk_count] = {};
    std::atomic<uint32_t> used_ = 0;
    uint32_t free_ = none;
    std::atomic_flag lock_ = ATOMIC_FLAG_INIT;
};

} // namespace kirvo
