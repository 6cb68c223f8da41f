// Number of different colours in an image.
#include "image/rect_operation.hpp"

#include <cstring>
#include <iterator>

using namespace kirvo;

namespace {

// A set of numbers below 2^bits.
class NumberSet {
  public:
    explicit NumberSet(int bits) : words_((size_t{1} << bits) / 32), memory_(4 * words_) {}

    explicit operator bool() const { return static_cast<bool>(memory_); }
    void add(uint32_t number) const { add(words(), number); }
    static void add(uint32_t* words, uint32_t number) { words[number / 32] |= 1u << number % 32; }
    uint32_t* words() const { return memory_.as<uint32_t>(); }
    uint32_t count() const {
        uint32_t sum = 0;
        for (size_t i = 0; i < words_; i += in_line)
            sum += count_line(memory_.as<uint32_t>() + i);
        return sum;
    }

  private:
    static constexpr size_t in_line = 16;

    // By sums of ever wider fields, in vectors: not every processor has an instruction for it.
    static uint32_t count_line(const uint32_t* words) {
        uint32_t sum = 0;
        for (size_t i = 0; i < in_line; ++i) {
            uint32_t w = words[i];
            w -= w >> 1 & 0x55555555;
            w = (w & 0x33333333) + (w >> 2 & 0x33333333);
            w = (w + (w >> 4)) & 0x0F0F0F0F;
            w += w >> 8;
            sum += (w + (w >> 16)) & 0xFF;
        }
        return sum;
    }

    size_t words_;
    Scratch memory_;
};

// The indexes seen in rows of 1, 2, 4 or 8 bits a pixel.
class IndexSet {
  public:
    explicit IndexSet(int32_t bits) : bits_(bits) {}

    void add_row(const uint8_t* row, int32_t width) {
        const int32_t in_byte = 8 / bits_;
        const int32_t whole = width / in_byte;
#pragma GCC unroll 4 // a loop of one store waits for its own counting
        for (int32_t i = 0; i < whole; ++i)
            bytes_[row[i]] = true;
        for (int32_t i = 0; i < width % in_byte; ++i)
            indexes_[index(row[whole], i)] = true;
    }
    uint32_t count() {
        for (uint32_t byte = 0; byte < 256; ++byte) {
            for (int32_t i = 0; bytes_[byte] && i < 8 / bits_; ++i)
                indexes_[index(byte, i)] = true;
        }
        return static_cast<uint32_t>(std::count(std::begin(indexes_), std::end(indexes_), true));
    }
    bool is_full() { return count() == 1u << bits_; }

  private:
    uint32_t index(uint32_t byte, int32_t place) const {
        return byte >> (8 - bits_ * (place + 1)) & ((1u << bits_) - 1);
    }

    int32_t bits_;
    bool bytes_[256] = {}; // seen whole
    bool indexes_[256] = {};
};

uint32_t count_indexes(const LockedDib& dib) {
    const Rows rows = dib.rows(RowStart::after_header);
    IndexSet seen(dib.bits());
    for (int32_t row = 0; row < dib.height() && !seen.is_full(); ++row)
        seen.add_row(rows[row], dib.width());
    return seen.count();
}

// Whole words count, bits outside the masks included. Three masks are taken to follow the header
// whether they are there or not; words beyond the block's end read as 0.
Status count_words(const LockedDib& dib, uint32_t& count) {
    const NumberSet seen(16);
    if (!seen)
        return Status::no_memory;
    uint16_t words[1024];
    for (int32_t row = 0; row < dib.height(); ++row) {
        uint64_t offset =
            uint64_t{dib.header.biSize} + mask_bytes + static_cast<uint64_t>(dib.stride() * row);
        for (auto left = static_cast<size_t>(dib.width()); left != 0;) {
            const size_t n = std::min(left, std::size(words));
            dib.read_bytes(offset, words, 2 * n);
            for (size_t i = 0; i < n; ++i)
                seen.add(words[i]);
            offset += 2 * n;
            left -= n;
        }
    }
    count = seen.count();
    return Status::ok;
}

// Adds 24-bit pixels. Alone, so that all it works on stays in registers.
[[gnu::noinline]] void add_colours(const NumberSet& seen, const uint8_t* bgr, size_t pixels) {
    uint32_t* const words = seen.words();
    // All pixels but the last are loaded with a byte of the one that follows. The processor, which
    // waits for places of the set, is late to ask for the row by itself.
    constexpr size_t turn = 8, ahead = 1024;
    for (; pixels > turn; pixels -= turn) {
        __builtin_prefetch(bgr + ahead);
#pragma GCC unroll 8
        for (size_t i = 0; i < turn; ++i, bgr += 3) {
            uint32_t word;
            std::memcpy(&word, bgr, sizeof word);
            NumberSet::add(words, word & 0xFFFFFF);
        }
    }
    for (; pixels != 0; --pixels, bgr += 3)
        NumberSet::add(words, load_word(bgr, 3));
}

Status count_channels(const LockedDib& dib, uint32_t& count) {
    const NumberSet seen(24);
    if (!seen)
        return Status::no_memory;
    const PixelFormat format = PixelFormat::of(dib);
    const Rows rows = dib.rows(RowStart::after_header);
    const auto add = [&](const uint8_t* bgr, size_t pixels) { add_colours(seen, bgr, pixels); };
    for (int32_t row = 0; row < dib.height(); ++row)
        read_row(format, rows[row], static_cast<size_t>(dib.width()), add);
    count = seen.count();
    return Status::ok;
}

Status count_colours(const LockedDib& dib, uint32_t& count) {
    if (!dib)
        return Status::null_handle;
    if (!is_depth(dib.bits()) || !dib.holds_rows(RowStart::after_header))
        return Status::bad_parameter;
    if (dib.bits() == 16)
        return count_words(dib, count);
    if (dib.bits() > 16)
        return count_channels(dib, count);
    count = count_indexes(dib);
    return Status::ok;
}

} // namespace

int32_t WINAPI DibCountColors(HGLOBAL dib, uint32_t* count) {
    uint32_t colours = 0;
    const Status status = count_colours(LockedDib(dib), colours);
    report(count, colours);
    return code(status);
}
