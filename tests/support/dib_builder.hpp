// Images for tests, written byte by byte without the library's help, and a plain view of any image.
#pragma once

#include "support/random.hpp"

#include <cstdint>
#include <kirvo.h>
#include <optional>
#include <string>
#include <vector>

namespace kirvo_test {

struct Masks {
    uint32_t red, green, blue;
    bool operator==(const Masks&) const = default;
};

constexpr Masks masks_555{0x7C00, 0x03E0, 0x001F};
constexpr Masks masks_565{0xF800, 0x07E0, 0x001F};
constexpr Masks masks_888{0x00FF0000, 0x0000FF00, 0x000000FF};
constexpr Masks masks_bgr888{0x000000FF, 0x0000FF00, 0x00FF0000};

// Bytes from one stored row to the next.
int64_t stride_of(int64_t width, int bits);

// What an image is to look like. Only the first three are needed.
struct DibSpec {
    int32_t width;
    int32_t height;
    int bits;
    std::optional<Masks> masks{}; // makes it BI_BITFIELDS, three masks after the header
    uint32_t colours_used = 0;    // biClrUsed
    uint32_t header_size = 40;    // biSize; the colour part follows it
    int64_t extra_bytes = 0;      // the block is longer (or shorter, when negative) by so much
    uint8_t padding = 0;          // value of the padding bytes of every row
    std::optional<uint32_t> compression{}; // biCompression when it is not what the masks say
};

// Owns an image. Pixels are addressed from the top left of the picture.
class Dib {
  public:
    Dib() = default;
    explicit Dib(HGLOBAL handle) : handle_(handle) {}
    Dib(Dib&& other) noexcept : handle_(other.release()) {}
    Dib& operator=(Dib&& other) noexcept;
    ~Dib();

    operator HGLOBAL() const { return handle_; }
    HGLOBAL release();

    BITMAPINFOHEADER header() const;
    int32_t width() const { return header().biWidth; }
    int32_t height() const { return header().biHeight; }
    int bits() const { return header().biBitCount; }
    int64_t stride() const { return stride_of(width(), bits()); }
    // Bytes of the header and the colour part, after which the rows start.
    size_t rows_start() const;
    // Bytes that the header promises: rows_start + stride * height.
    size_t promised_bytes() const;

    // A copy of the block's promised bytes (fewer when the block is shorter).
    std::vector<uint8_t> bytes() const;
    // A copy of the stored rows alone, padding included.
    std::vector<uint8_t> rows() const;
    void write(size_t offset, const void* from, size_t count);
    void write(size_t offset, const std::vector<uint8_t>& from) {
        write(offset, from.data(), from.size());
    }
    void set_header(const BITMAPINFOHEADER& header) { write(0, &header, sizeof header); }

    // A pixel as it is stored: an index, or the 2, 3 or 4 bytes as one number.
    uint32_t pixel(int32_t x, int32_t y) const;
    void set_pixel(int32_t x, int32_t y, uint32_t value);

    Masks masks() const; // those stored, or the default ones of the depth
    void set_colour(int index, uint8_t red, uint8_t green, uint8_t blue, uint8_t reserved = 0);

  private:
    HGLOBAL handle_ = nullptr;
};

// Everything zero but the header and the masks.
Dib make_dib(const DibSpec& spec);
// Colour table and pixels random, padding as described.
Dib make_random_dib(const DibSpec& spec, Random& random);
Dib copy_of(const Dib& dib);

// True when no lock is left on the block.
bool is_unlocked(HGLOBAL handle);

} // namespace kirvo_test
