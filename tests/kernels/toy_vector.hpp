// A wrapper of vectors of four bytes, in plain code: what a level must define, in the least form,
// for the kernels that toy.cpp compiles with it.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace kirvo_test {

struct ToyVector {
    static constexpr size_t size = 4;
    using Register = std::array<uint8_t, size>;

    static Register load(const void* from) {
        Register v;
        std::memcpy(v.data(), from, size);
        return v;
    }
    static void store(void* to, Register v) { std::memcpy(to, v.data(), size); }
    static void stream(void* to, Register v) { store(to, v); }
    static void end_stream() {}

    // Pixels as a vector for each channel.
    struct Planes {
        Register blue, green, red;
    };
    static Planes load_planes(const uint8_t* bgr) {
        Planes p;
        for (size_t i = 0; i < size; ++i) {
            p.blue[i] = bgr[3 * i];
            p.green[i] = bgr[3 * i + 1];
            p.red[i] = bgr[3 * i + 2];
        }
        return p;
    }
    static void store_planes(uint8_t* bgr, const Planes& p) {
        for (size_t i = 0; i < size; ++i) {
            bgr[3 * i] = p.blue[i];
            bgr[3 * i + 1] = p.green[i];
            bgr[3 * i + 2] = p.red[i];
        }
    }

    // Bits.
    static Register zero() { return {}; }
    static Register both(Register a, Register b) {
        return each<uint8_t>(a, b, [](int x, int y) { return x & y; });
    }
    static Register either(Register a, Register b) {
        return each<uint8_t>(a, b, [](int x, int y) { return x | y; });
    }
    static Register but_not(Register a, Register b) {
        return each<uint8_t>(a, b, [](int x, int y) { return x & ~y; });
    }
    static Register differing(Register a, Register b) {
        return each<uint8_t>(a, b, [](int x, int y) { return x ^ y; });
    }
    static Register select(Register mask, Register yes, Register no) {
        return either(both(mask, yes), but_not(no, mask));
    }

    // Four bytes. What compares gives all ones or 0.
    static Register all8(int value) { return all<uint8_t>(value); }
    static Register add8(Register a, Register b) {
        return each<uint8_t>(a, b, [](int x, int y) { return x + y; });
    }
    static Register sub8(Register a, Register b) {
        return each<uint8_t>(a, b, [](int x, int y) { return x - y; });
    }
    static Register add8_to_255(Register a, Register b) {
        return each<uint8_t>(a, b, [](int x, int y) { return std::min(x + y, 255); });
    }
    static Register sub8_to_0(Register a, Register b) {
        return each<uint8_t>(a, b, [](int x, int y) { return std::max(x - y, 0); });
    }
    static Register average8(Register a, Register b) {
        return each<uint8_t>(a, b, [](int x, int y) { return (x + y + 1) / 2; });
    }
    static Register max8(Register a, Register b) {
        return each<uint8_t>(a, b, [](int x, int y) { return std::max(x, y); });
    }
    static Register min8(Register a, Register b) {
        return each<uint8_t>(a, b, [](int x, int y) { return std::min(x, y); });
    }
    static Register equal8(Register a, Register b) {
        return each<uint8_t>(a, b, [](int x, int y) { return x == y ? -1 : 0; });
    }
    static constexpr bool has_table = false; // look-ups of 256 bytes

    // Two numbers of 16 bits: the low or the high half of four bytes.
    static Register zip_low8(Register a, Register b) { return {a[0], b[0], a[1], b[1]}; }
    static Register zip_high8(Register a, Register b) { return {a[2], b[2], a[3], b[3]}; }
    static Register widen_low8(Register a) { return zip_low8(a, zero()); }
    static Register widen_high8(Register a) { return zip_high8(a, zero()); }
    static Register narrow16(Register low, Register high) { // signed, clamped to 0..255
        const auto l = lanes<int16_t>(low), h = lanes<int16_t>(high);
        const auto byte = [](int x) { return static_cast<uint8_t>(std::clamp(x, 0, 255)); };
        return {byte(l[0]), byte(l[1]), byte(h[0]), byte(h[1])};
    }
    static Register all16(int value) { return all<uint16_t>(value); }
    static Register add16(Register a, Register b) {
        return each<uint16_t>(a, b, [](int x, int y) { return x + y; });
    }
    static Register sub16(Register a, Register b) {
        return each<uint16_t>(a, b, [](int x, int y) { return x - y; });
    }
    static Register multiply16(Register a, Register b) {
        return each<uint16_t>(a, b, [](uint32_t x, uint32_t y) { return x * y; });
    }
    static Register multiply_high16(Register a, Register b) {
        return each<uint16_t>(a, b, [](uint32_t x, uint32_t y) { return x * y >> 16; });
    }
    static Register quotient16(Register a, Register b) {
        return each<uint16_t>(a, b, [](int x, int y) { return x / y; });
    }
    static Register min16_unsigned(Register a, Register b) {
        return each<uint16_t>(a, b, [](int x, int y) { return std::min(x, y); });
    }
    static Register equal16(Register a, Register b) {
        return each<uint16_t>(a, b, [](int x, int y) { return x == y ? -1 : 0; });
    }
    template<int count>
    static Register shift_right16(Register a) {
        return each<uint16_t>(a, a, [](int x, int) { return x >> count; });
    }

    // One number of 32 bits.
    static Register all32(int value) { return all<uint32_t>(value); }

  private:
    template<typename T>
    using Lanes = std::array<T, size / sizeof(T)>;

    template<typename T>
    static Lanes<T> lanes(Register v) {
        Lanes<T> found;
        std::memcpy(found.data(), v.data(), size);
        return found;
    }
    template<typename T>
    static Register joined(Lanes<T> v) {
        return load(v.data());
    }
    template<typename T>
    static Register all(int value) {
        Lanes<T> v;
        v.fill(static_cast<T>(value));
        return joined<T>(v);
    }
    template<typename T, typename F>
    static Register each(Register a, Register b, const F& f) {
        Lanes<T> x = lanes<T>(a), y = lanes<T>(b);
        for (size_t i = 0; i < x.size(); ++i)
            x[i] = static_cast<T>(f(x[i], y[i]));
        return joined<T>(x);
    }
};

} // namespace kirvo_test
