#include "dib.hpp"

namespace kirvo_files {

Dib::~Dib() { free(); }

void Dib::free() {
    if (block_ != nullptr) {
        GlobalUnlock(block_);
        GlobalFree(block_);
    }
    block_ = nullptr;
    data_ = nullptr;
}

static bool has_masks(uint32_t bits) { return bits == 16 || bits == 32; }

Status Dib::make(uint64_t width, uint64_t height, uint32_t bits, uint32_t colours, Masks masks) {
    free();
    const uint64_t table = has_masks(bits) ? 12 : uint64_t{4} * colours;
    // Either alone is too large before the product can wrap.
    if (width == 0 || height == 0 || width > max_bytes || height > max_bytes ||
        row_bytes(width, bits) > max_bytes / height)
        return KIRVO_FILES_NO_MEMORY;
    const uint64_t pixels = row_bytes(width, bits) * height;
    HGLOBAL block = allocate_block(header_bytes + table + pixels);
    if (block == nullptr)
        return KIRVO_FILES_NO_MEMORY;
    data_ = static_cast<uint8_t*>(GlobalLock(block));
    if (data_ == nullptr) {
        GlobalFree(block);
        return KIRVO_FILES_NO_MEMORY;
    }
    block_ = block;
    header() = {static_cast<DWORD>(header_bytes),
                static_cast<LONG>(width),
                static_cast<LONG>(height),
                1,
                static_cast<WORD>(bits),
                static_cast<DWORD>(has_masks(bits) ? BI_BITFIELDS : BI_RGB),
                static_cast<DWORD>(pixels),
                0,
                0,
                bits <= 8 ? colours : 0,
                0};
    if (has_masks(bits)) {
        const uint32_t words[] = {masks.red, masks.green, masks.blue};
        std::memcpy(data_ + header_bytes, words, sizeof words);
    }
    return KIRVO_FILES_OK;
}

bool Dib::adopt(HGLOBAL block) {
    free();
    data_ = static_cast<uint8_t*>(GlobalLock(block));
    if (data_ == nullptr) {
        GlobalFree(block);
        return false;
    }
    block_ = block;
    header().biSizeImage = static_cast<DWORD>(row_bytes(width(), bits()) * height());
    return true;
}

HGLOBAL Dib::hand_over() {
    HGLOBAL block = block_;
    if (block != nullptr)
        GlobalUnlock(block);
    block_ = nullptr;
    data_ = nullptr;
    return block;
}

Masks Dib::masks() const {
    if (!has_masks(bits()))
        return masks_888;
    uint32_t words[3];
    std::memcpy(words, data_ + header_bytes, sizeof words);
    return {words[0], words[1], words[2]};
}

void Dib::set_colour(uint32_t index, uint32_t red, uint32_t green, uint32_t blue) const {
    palette()[index] = {static_cast<BYTE>(blue), static_cast<BYTE>(green), static_cast<BYTE>(red),
                        0};
}

void Dib::set_greys() const {
    const uint32_t count = colours();
    for (uint32_t i = 0; i < count; ++i) {
        const uint32_t level = count > 1 ? i * 255 / (count - 1) : 0;
        set_colour(i, level, level, level);
    }
}

uint8_t* Dib::row(uint32_t y) const {
    const size_t table = has_masks(bits()) ? 12 : size_t{4} * colours();
    return data_ + header_bytes + table + stride() * (height() - 1 - y);
}

void Dib::set_dpi(double across, double down) const {
    const auto per_metre = [](double dpi) {
        return dpi > 0 && dpi < 1e6 ? static_cast<LONG>(dpi / 0.0254 + 0.5) : 0;
    };
    header().biXPelsPerMeter = per_metre(across);
    header().biYPelsPerMeter = per_metre(down);
}

View::~View() {
    if (data_ != nullptr)
        GlobalUnlock(block_);
}

Status View::open(HGLOBAL block) {
    const uint64_t size = block != nullptr ? GlobalSize(block) : 0;
    if (size < header_bytes)
        return KIRVO_FILES_BAD_PARAMETER;
    data_ = static_cast<const uint8_t*>(GlobalLock(block));
    if (data_ == nullptr)
        return KIRVO_FILES_BAD_PARAMETER;
    block_ = block;
    BITMAPINFOHEADER header;
    std::memcpy(&header, data_, sizeof header);
    const int64_t height = header.biHeight;
    const auto rows_high = static_cast<uint64_t>(height < 0 ? -height : height);
    if (header.biSize < header_bytes || header.biSize > size || header.biWidth <= 0 ||
        rows_high == 0)
        return KIRVO_FILES_BAD_PARAMETER;
    width_ = static_cast<uint32_t>(header.biWidth);
    height_ = static_cast<uint32_t>(rows_high);
    bits_ = header.biBitCount;
    top_down_ = header.biHeight < 0;
    const bool masked = header.biCompression == BI_BITFIELDS;
    if (bits_ != 1 && bits_ != 4 && bits_ != 8 && bits_ != 16 && bits_ != 24 && bits_ != 32)
        return KIRVO_FILES_BAD_PARAMETER;
    if (header.biCompression != BI_RGB && !(masked && has_masks(bits_)))
        return KIRVO_FILES_BAD_PARAMETER;
    uint64_t entries = header.biClrUsed;
    if (entries == 0 && bits_ <= 8)
        entries = uint64_t{1} << bits_;
    uint64_t offset = header.biSize;
    masks_ = bits_ == 16 ? masks_555 : masks_888;
    if (masked) {
        if (size < header_bytes + 12)
            return KIRVO_FILES_BAD_PARAMETER;
        uint32_t words[3];
        std::memcpy(words, data_ + header_bytes, sizeof words);
        masks_ = {words[0], words[1], words[2]};
        if (header.biSize == header_bytes)
            offset += 12;
        entries = 0; // biClrUsed counts the masks where it counts anything
    }
    if (entries > (size - offset) / 4)
        return KIRVO_FILES_BAD_PARAMETER;
    palette_ = reinterpret_cast<const RGBQUAD*>(data_ + offset);
    colours_ =
        bits_ <= 8 ? static_cast<uint32_t>(entries < (1u << bits_) ? entries : 1u << bits_) : 0;
    offset += 4 * entries;
    if (row_bytes(width_, bits_) > (size - offset) / height_)
        return KIRVO_FILES_BAD_PARAMETER;
    rows_ = data_ + offset;
    dpi_across_ = header.biXPelsPerMeter > 0 ? header.biXPelsPerMeter * 0.0254 : 0;
    dpi_down_ = header.biYPelsPerMeter > 0 ? header.biYPelsPerMeter * 0.0254 : 0;
    return KIRVO_FILES_OK;
}

const RGBQUAD& View::colour(uint32_t index) const {
    static const RGBQUAD black = {};
    return index < colours_ ? palette_[index] : black;
}

const uint8_t* View::row(uint32_t y) const {
    const uint32_t stored = top_down_ ? y : height_ - 1 - y;
    return rows_ + static_cast<size_t>(row_bytes(width_, bits_)) * stored;
}

bool View::is_grey_ramp() const {
    if (bits_ != 8 || colours_ != 256)
        return false;
    for (uint32_t i = 0; i < 256; ++i)
        if (palette_[i].rgbRed != i || palette_[i].rgbGreen != i || palette_[i].rgbBlue != i)
            return false;
    return true;
}

static uint32_t little_endian(const uint8_t* bytes, uint32_t count) {
    uint32_t value = 0;
    for (uint32_t i = 0; i < count; ++i)
        value |= static_cast<uint32_t>(bytes[i]) << 8 * i;
    return value;
}

void View::wide_row(uint32_t y, uint8_t* out, uint32_t step) const {
    const uint8_t* in = row(y);
    const Channel red(masks_.red), green(masks_.green), blue(masks_.blue);
    for (uint32_t x = 0; x < width_; ++x, out += step) {
        uint8_t top = 255;
        if (bits_ <= 8) {
            const uint32_t per_byte = 8 / bits_;
            const uint32_t shift = (per_byte - 1 - x % per_byte) * bits_;
            const RGBQUAD& entry = colour(in[x / per_byte] >> shift & ((1u << bits_) - 1));
            out[0] = entry.rgbRed;
            out[1] = entry.rgbGreen;
            out[2] = entry.rgbBlue;
        } else if (bits_ == 24) {
            out[0] = in[3 * x + 2];
            out[1] = in[3 * x + 1];
            out[2] = in[3 * x];
        } else {
            const uint32_t pixel = little_endian(in + bits_ / 8 * x, bits_ / 8);
            out[0] = red.of(pixel);
            out[1] = green.of(pixel);
            out[2] = blue.of(pixel);
            if (bits_ == 32)
                top = static_cast<uint8_t>(pixel >> 24);
        }
        if (step == 4)
            out[3] = top;
    }
}

Channel::Channel(uint32_t mask) : mask_(mask) {
    if (mask == 0)
        return;
    while ((mask >> shift_ & 1) == 0)
        ++shift_;
    most_ = mask >> shift_;
}

// Where the pixel at (x, y) of the turned picture lies in the stored one.
struct Source {
    uint32_t x, y;
};
static Source source_of(uint32_t orientation, uint32_t x, uint32_t y, uint32_t width,
                        uint32_t height) {
    switch (orientation) {
    case 2:
        return {width - 1 - x, y};
    case 3:
        return {width - 1 - x, height - 1 - y};
    case 4:
        return {x, height - 1 - y};
    case 5:
        return {y, x};
    case 6:
        return {y, height - 1 - x};
    case 7:
        return {width - 1 - y, height - 1 - x};
    case 8:
        return {width - 1 - y, x};
    default:
        return {x, y};
    }
}

template<uint32_t bytes>
static void turn_bytes(const Dib& from, uint32_t orientation, const Dib& to) {
    // Neighbours on the way across a row of the result lie at a fixed distance in the source.
    const uint32_t width = from.width(), height = from.height();
    const auto address = [&](Source at) { return from.row(at.y) + size_t{bytes} * at.x; };
    for (uint32_t y = 0; y < to.height(); ++y) {
        const uint8_t* in = address(source_of(orientation, 0, y, width, height));
        ptrdiff_t step = 0;
        if (to.width() > 1)
            step = address(source_of(orientation, 1, y, width, height)) - in;
        uint8_t* out = to.row(y);
        for (uint32_t x = 0; x < to.width(); ++x, out += bytes)
            std::memcpy(out, in + step * static_cast<ptrdiff_t>(x), bytes);
    }
}

static void turn_bits(const Dib& from, uint32_t orientation, const Dib& to) {
    const uint32_t bits = from.bits(), per_byte = 8 / bits;
    const auto shift = [&](uint32_t x) { return (per_byte - 1 - x % per_byte) * bits; };
    for (uint32_t y = 0; y < to.height(); ++y)
        for (uint32_t x = 0; x < to.width(); ++x) {
            const Source at = source_of(orientation, x, y, from.width(), from.height());
            const uint32_t pixel =
                from.row(at.y)[at.x / per_byte] >> shift(at.x) & ((1u << bits) - 1);
            uint8_t& out = to.row(y)[x / per_byte];
            out = static_cast<uint8_t>(out | pixel << shift(x));
        }
}

Status turned(const Dib& from, uint32_t orientation, Dib& to) {
    const bool across = orientation >= 5;
    const Status status =
        to.make(across ? from.height() : from.width(), across ? from.width() : from.height(),
                from.bits(), from.colours(), from.masks());
    if (status != KIRVO_FILES_OK)
        return status;
    to.header().biXPelsPerMeter =
        across ? from.header().biYPelsPerMeter : from.header().biXPelsPerMeter;
    to.header().biYPelsPerMeter =
        across ? from.header().biXPelsPerMeter : from.header().biYPelsPerMeter;
    if (from.colours() != 0)
        std::memcpy(to.palette(), from.palette(), size_t{4} * from.colours());
    switch (from.bits()) {
    case 8:
        turn_bytes<1>(from, orientation, to);
        break;
    case 16:
        turn_bytes<2>(from, orientation, to);
        break;
    case 24:
        turn_bytes<3>(from, orientation, to);
        break;
    case 32:
        turn_bytes<4>(from, orientation, to);
        break;
    default:
        turn_bits(from, orientation, to);
    }
    return KIRVO_FILES_OK;
}

} // namespace kirvo_files
