// Seeded random numbers, the same on every system.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kirvo_test {

class Random {
  public:
    explicit Random(uint64_t seed) : state_(seed) {}

    uint64_t next64() { // splitmix64
        uint64_t z = state_ += 0x9E3779B97F4A7C15u;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    }
    uint32_t next() { return static_cast<uint32_t>(next64() >> 32); }
    uint8_t byte() { return static_cast<uint8_t>(next()); }
    // A number from low to high, both included.
    int32_t between(int32_t low, int32_t high) {
        const auto span = static_cast<uint64_t>(int64_t{high} - low + 1);
        return static_cast<int32_t>(low + static_cast<int64_t>((uint64_t{next()} * span) >> 32));
    }
    // True once in `of` calls.
    bool once_in(int32_t of) { return between(1, of) == 1; }
    // One of the given values.
    template<typename T, size_t n>
    const T& pick(const T (&values)[n]) {
        return values[between(0, static_cast<int32_t>(n) - 1)];
    }
    void fill(void* to, size_t bytes) {
        for (size_t i = 0; i < bytes; ++i)
            static_cast<uint8_t*>(to)[i] = byte();
    }

  private:
    uint64_t state_;
};

} // namespace kirvo_test
