// Packed DIBs: made clean, looked at with care.
#pragma once

#include "known.hpp"

namespace kirvo_files {

constexpr uint64_t header_bytes = 40;

inline uint64_t row_bytes(uint64_t width, uint32_t bits) { return (width * bits + 31) / 32 * 4; }

// Three channels of a pixel of 16 or 32 bits.
struct Masks {
    uint32_t red = 0, green = 0, blue = 0;
    bool operator==(const Masks& other) const {
        return red == other.red && green == other.green && blue == other.blue;
    }
};
constexpr Masks masks_555 = {0x7C00, 0x03E0, 0x001F};
constexpr Masks masks_565 = {0xF800, 0x07E0, 0x001F};
constexpr Masks masks_888 = {0x00FF0000, 0x0000FF00, 0x000000FF};

// A new picture, locked while the object lives and freed with it unless it is handed over.
class Dib {
  public:
    Dib() = default;
    Dib(Dib&& other) noexcept { swap(other); }
    Dib& operator=(Dib&& other) noexcept {
        swap(other);
        return *this;
    }
    ~Dib();
    void swap(Dib& other) noexcept {
        std::swap(block_, other.block_);
        std::swap(data_, other.data_);
    }

    // All pixels and colours 0. Colours count for 1, 4 and 8 bits, masks for 16 and 32.
    Status make(uint64_t width, uint64_t height, uint32_t bits, uint32_t colours = 0,
                Masks masks = masks_888);
    // Takes a block over that Kirvo has made.
    bool adopt(HGLOBAL block);
    HGLOBAL hand_over();
    void free();

    explicit operator bool() const { return data_ != nullptr; }
    BITMAPINFOHEADER& header() const { return *reinterpret_cast<BITMAPINFOHEADER*>(data_); }
    uint32_t width() const { return static_cast<uint32_t>(header().biWidth); }
    uint32_t height() const { return static_cast<uint32_t>(header().biHeight); }
    uint32_t bits() const { return header().biBitCount; }
    uint32_t colours() const { return bits() <= 8 ? header().biClrUsed : 0; }
    Masks masks() const;
    RGBQUAD* palette() const { return reinterpret_cast<RGBQUAD*>(data_ + header_bytes); }
    void set_colour(uint32_t index, uint32_t red, uint32_t green, uint32_t blue) const;
    void set_greys() const; // a ramp over all colours
    size_t stride() const { return static_cast<size_t>(row_bytes(width(), bits())); }
    // Counted from the top of the picture.
    uint8_t* row(uint32_t y) const;
    void set_dpi(double across, double down) const;

  private:
    HGLOBAL block_ = nullptr;
    uint8_t* data_ = nullptr;
};

// A picture of the caller's, whose header has been held against its block. Only read.
class View {
  public:
    View() = default;
    View(const View&) = delete;
    View& operator=(const View&) = delete;
    ~View();

    // #KIRVO_FILES_BAD_PARAMETER for what is no packed DIB; only 40-byte headers and larger.
    Status open(HGLOBAL block);

    uint32_t width() const { return width_; }
    uint32_t height() const { return height_; }
    uint32_t bits() const { return bits_; }
    Masks masks() const { return masks_; }
    uint32_t colours() const { return colours_; } // in the table, at most the depth's number
    const RGBQUAD& colour(uint32_t index) const;  // black beyond the table
    const uint8_t* row(uint32_t y) const;         // counted from the top
    bool is_grey_ramp() const;                    // 8 bits whose every index is its grey level
    double dpi_across() const { return dpi_across_; }
    double dpi_down() const { return dpi_down_; }

    // A row as bytes red, green, blue; or red, green, blue, top byte. At 16 bits the top byte is
    // 255.
    void rgb_row(uint32_t y, uint8_t* rgb) const { wide_row(y, rgb, 3); }
    void rgba_row(uint32_t y, uint8_t* rgba) const { wide_row(y, rgba, 4); }

  private:
    void wide_row(uint32_t y, uint8_t* out, uint32_t step) const;

    HGLOBAL block_ = nullptr;
    const uint8_t* data_ = nullptr;
    const uint8_t* rows_ = nullptr;
    const RGBQUAD* palette_ = nullptr;
    uint32_t width_ = 0, height_ = 0, bits_ = 0, colours_ = 0;
    bool top_down_ = false;
    Masks masks_;
    double dpi_across_ = 0, dpi_down_ = 0;
};

// One channel of a pixel under a mask, widened to 8 bits: 0 stays 0, the largest becomes 255.
class Channel {
  public:
    Channel() = default;
    explicit Channel(uint32_t mask);
    uint8_t of(uint32_t pixel) const {
        const uint32_t value = (pixel & mask_) >> shift_;
        return static_cast<uint8_t>(most_ == 255 ? value
                                    : most_ == 0 ? 0
                                                 : (uint64_t{value} * 255 + most_ / 2) / most_);
    }
    bool present() const { return mask_ != 0; }

  private:
    uint32_t mask_ = 0, shift_ = 0, most_ = 0;
};

// The picture turned by an EXIF orientation of 2 to 8.
Status turned(const Dib& from, uint32_t orientation, Dib& to);

} // namespace kirvo_files
