// One call of a kernel: its arguments in guarded memory, and what became of them.
#pragma once

#include "support/random.hpp"

#include <algorithm>
#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace kirvo_test {

// Where the buffers of a trial lie.
enum class Place {
    between_guards, // bytes on both sides whose change is noticed
    page_start,     // nothing before them can be touched
    page_end,       // nothing behind them can be touched
};

struct Shape {
    size_t count = 0;
    Place place = Place::between_guards;
    size_t offset = 0; // of the first buffer from a multiple of 64, between guards
    bool in_place = false;
    size_t round = 0; // of a thorough case
};

// The same shape and seed make the same arguments at the same addresses.
class Trial {
  public:
    using Measure = void (*)(const std::function<void()>& call);

    explicit Trial(const Shape& shape, uint64_t seed, Measure measure = nullptr)
        : count(shape.count), round(shape.round), items(shape.count), random(seed), shape_(shape),
          measure_(measure) {}

    const size_t count, round;
    size_t items; // what a measurement is divided by
    Random random;

    // n elements from low to high: random, all alike, all high, extremes, or rising. The kernel may change
    // them all; what it makes of them has to be right.
    template<typename T>
    T* values(size_t n, int64_t low = std::numeric_limits<T>::min(),
              int64_t high = std::numeric_limits<T>::max()) {
        return filled(add<T>(n, n), n, low, high);
    }
    // n elements for results. So many as `reach` may be written; the first n have to be right.
    template<typename T>
    T* room(size_t n, size_t reach) {
        return filled(add<T>(n, reach), reach, 0, 99);
    }
    template<typename T>
    T* room(size_t n) {
        return room<T>(n, n);
    }

    // Structures for results, of any content.
    template<typename T>
    T* objects(size_t n) {
        T* begin = add<T>(n, n);
        filled(reinterpret_cast<uint8_t*>(begin), n * sizeof(T), 0, 255);
        return begin;
    }
    // A structure to read. It is not compared: bytes of padding may differ.
    template<typename T>
    const T& object(const T& value) {
        T* copy = add<T>(0, 1);
        std::memcpy(static_cast<void*>(copy), &value, sizeof value);
        return *copy;
    }

    struct Rows {
        uint8_t* to;
        const uint8_t* from;
    };
    // Two rows that may be the same.
    Rows rows(size_t bytes) {
        can_be_in_place_ = true;
        uint8_t* from = values<uint8_t>(bytes);
        return {shape_.in_place ? from : room<uint8_t>(bytes), from};
    }

    bool measures() const { return measure_ != nullptr; }
    // A number for an argument; a typical one where time is measured.
    int32_t between(int32_t low, int32_t high, int32_t typical) {
        return measures() ? typical : random.between(low, high);
    }

    // Every case calls its kernel through this.
    template<typename Call>
    void run(const Call& call) {
        if (measure_ == nullptr)
            call();
        else
            measure_(call);
    }

    bool can_be_in_place() const { return can_be_in_place_; }
    // The contents of all buffers.
    void copy_contents(std::vector<uint8_t>& to) const;
    // What differs from another trial's contents or was written beside buffers; empty if nothing.
    std::string difference(const std::vector<uint8_t>& expected) const;

  private:
    struct Buffer {
        uint8_t* begin;
        size_t bytes, reach;               // to be compared; that may be written
        size_t guard_before, guard_behind; // bytes that must keep their value
    };

    template<typename T>
    T* add(size_t n, size_t reach) {
        return reinterpret_cast<T*>(add_bytes(n * sizeof(T), reach * sizeof(T), alignof(T)));
    }
    uint8_t* add_bytes(size_t bytes, size_t reach, size_t alignment);
    template<typename T>
    T* filled(T* to, size_t n, int64_t low, int64_t high);

    Shape shape_;
    Measure measure_;
    std::vector<Buffer> buffers_;
    bool can_be_in_place_ = false;
};

template<typename T>
T* Trial::filled(T* to, size_t n, int64_t low, int64_t high) {
    const auto span = static_cast<uint64_t>(high - low) + 1;
    const auto draw = [&] {
        return static_cast<T>(low + static_cast<int64_t>((random.next() * span) >> 32));
    };
    switch (between(0, 8, 8)) {
    case 0:
        std::fill_n(to, n, draw());
        break;
    case 1:
        std::fill_n(to, n, static_cast<T>(high));
        break;
    case 2:
    case 3:
        for (size_t i = 0; i < n; ++i)
            to[i] = static_cast<T>(random.next() & 0x100 ? low : high);
        break;
    case 4: {
        const uint64_t start = random.next(), step = random.next() % 16 + 1;
        for (size_t i = 0; i < n; ++i)
            to[i] = static_cast<T>(low + static_cast<int64_t>((start + i * step) % span));
        break;
    }
    default:
        for (size_t i = 0; i < n; ++i)
            to[i] = draw();
    }
    return to;
}

} // namespace kirvo_test
