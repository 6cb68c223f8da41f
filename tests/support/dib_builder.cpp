#include "support/dib_builder.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

namespace kirvo_test {

namespace {

// A block locked for as long as the object lives.
class Lock {
  public:
    explicit Lock(HGLOBAL handle) : handle_(handle) {
        bytes = static_cast<uint8_t*>(GlobalLock(handle));
        size = bytes != nullptr ? GlobalSize(handle) : 0;
    }
    ~Lock() {
        if (bytes != nullptr)
            GlobalUnlock(handle_);
    }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

    uint8_t* bytes;
    size_t size;

  private:
    HGLOBAL handle_;
};

size_t colour_part_bytes(const BITMAPINFOHEADER& header) {
    if (header.biClrUsed != 0)
        return size_t{4} * header.biClrUsed;
    if (header.biBitCount <= 8)
        return size_t{4} << header.biBitCount;
    return header.biBitCount != 24 && header.biCompression == BI_BITFIELDS ? 12 : 0;
}

BITMAPINFOHEADER header_of(const DibSpec& spec) {
    BITMAPINFOHEADER header{};
    header.biSize = spec.header_size;
    header.biWidth = spec.width;
    header.biHeight = spec.height;
    header.biPlanes = 1;
    header.biBitCount = static_cast<WORD>(spec.bits);
    header.biCompression = spec.masks ? BI_BITFIELDS : BI_RGB;
    header.biCompression = spec.compression.value_or(header.biCompression);
    header.biSizeImage = static_cast<DWORD>(stride_of(spec.width, spec.bits) * spec.height);
    header.biClrUsed = spec.colours_used;
    return header;
}

} // namespace

int64_t stride_of(int64_t width, int bits) { return (width * bits + 31) / 32 * 4; }

Dib& Dib::operator=(Dib&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
}

Dib::~Dib() {
    if (handle_ != nullptr)
        GlobalFree(handle_);
}

HGLOBAL Dib::release() { return std::exchange(handle_, nullptr); }

BITMAPINFOHEADER Dib::header() const {
    BITMAPINFOHEADER header{};
    const Lock lock(handle_);
    std::memcpy(&header, lock.bytes, std::min(sizeof header, lock.size));
    return header;
}

size_t Dib::rows_start() const {
    const BITMAPINFOHEADER now = header();
    return now.biSize + colour_part_bytes(now);
}

size_t Dib::promised_bytes() const {
    const BITMAPINFOHEADER now = header();
    return now.biSize + colour_part_bytes(now) +
           static_cast<size_t>(stride_of(now.biWidth, now.biBitCount)) *
               static_cast<size_t>(now.biHeight);
}

std::vector<uint8_t> Dib::bytes() const {
    const size_t promised = promised_bytes();
    const Lock lock(handle_);
    return {lock.bytes, lock.bytes + std::min(promised, lock.size)};
}

std::vector<uint8_t> Dib::rows() const {
    std::vector<uint8_t> all = bytes();
    all.erase(all.begin(),
              all.begin() + static_cast<ptrdiff_t>(std::min(rows_start(), all.size())));
    return all;
}

void Dib::write(size_t offset, const void* from, size_t count) {
    const Lock lock(handle_);
    if (offset < lock.size && count != 0)
        std::memcpy(lock.bytes + offset, from, std::min(count, lock.size - offset));
}

uint32_t Dib::pixel(int32_t x, int32_t y) const {
    const BITMAPINFOHEADER now = header();
    const size_t start = rows_start();
    const Lock lock(handle_);
    const uint8_t* row =
        lock.bytes + start + stride_of(now.biWidth, now.biBitCount) * (now.biHeight - 1 - y);
    const int bits = now.biBitCount;
    if (bits < 8) {
        const int bit = x * bits;
        return static_cast<uint32_t>(row[bit / 8] >> (8 - bits - bit % 8)) & ((1u << bits) - 1);
    }
    uint32_t value = 0;
    std::memcpy(&value, row + size_t(x) * size_t(bits / 8), size_t(bits / 8));
    return value;
}

void Dib::set_pixel(int32_t x, int32_t y, uint32_t value) {
    const BITMAPINFOHEADER now = header();
    const size_t start = rows_start();
    const Lock lock(handle_);
    uint8_t* row =
        lock.bytes + start + stride_of(now.biWidth, now.biBitCount) * (now.biHeight - 1 - y);
    const int bits = now.biBitCount;
    if (bits < 8) {
        const int bit = x * bits;
        const int shift = 8 - bits - bit % 8;
        const uint32_t mask = ((1u << bits) - 1) << shift;
        row[bit / 8] = static_cast<uint8_t>((row[bit / 8] & ~mask) | ((value << shift) & mask));
        return;
    }
    std::memcpy(row + size_t(x) * size_t(bits / 8), &value, size_t(bits / 8));
}

Masks Dib::masks() const {
    const BITMAPINFOHEADER now = header();
    if (now.biCompression != BI_BITFIELDS)
        return now.biBitCount == 16 ? masks_555 : masks_888;
    Masks masks{};
    const Lock lock(handle_);
    std::memcpy(&masks, lock.bytes + now.biSize, sizeof masks);
    return masks;
}

void Dib::set_colour(int index, uint8_t red, uint8_t green, uint8_t blue, uint8_t reserved) {
    const uint8_t entry[4] = {blue, green, red, reserved};
    write(header().biSize + size_t{4} * static_cast<size_t>(index), entry, sizeof entry);
}

Dib make_dib(const DibSpec& spec) {
    const BITMAPINFOHEADER header = header_of(spec);
    const int64_t bytes = int64_t{header.biSize} + static_cast<int64_t>(colour_part_bytes(header)) +
                          stride_of(spec.width, spec.bits) * spec.height + spec.extra_bytes;
    Dib dib(GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, static_cast<size_t>(bytes)));
    dib.set_header(header);
    if (spec.masks)
        dib.write(header.biSize, &*spec.masks, sizeof(Masks));
    if (spec.padding != 0) {
        const auto used = static_cast<size_t>((int64_t{spec.width} * spec.bits + 7) / 8);
        const auto stride = static_cast<size_t>(dib.stride());
        const std::vector<uint8_t> padding(stride - used, spec.padding);
        for (size_t row = 0; row < static_cast<size_t>(spec.height); ++row)
            dib.write(dib.rows_start() + row * stride + used, padding);
    }
    return dib;
}

Dib make_random_dib(const DibSpec& spec, Random& random) {
    Dib dib = make_dib(spec);
    const size_t start = dib.rows_start();
    if (spec.bits <= 8) {
        std::vector<uint8_t> colours(start - spec.header_size);
        random.fill(colours.data(), colours.size());
        dib.write(spec.header_size, colours);
    }
    // Whole bytes of pixels: spare bits of a last 1- or 4-bit pixel byte are random too.
    std::vector<uint8_t> row(static_cast<size_t>((int64_t{spec.width} * spec.bits + 7) / 8));
    for (int32_t y = 0; y < spec.height; ++y) {
        random.fill(row.data(), row.size());
        dib.write(start + static_cast<size_t>(dib.stride() * y), row);
    }
    return dib;
}

Dib copy_of(const Dib& dib) {
    const Lock from(dib);
    Dib copy(GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, from.size));
    copy.write(0, from.bytes, from.size);
    return copy;
}

bool is_unlocked(HGLOBAL handle) {
    return GlobalLock(handle) != nullptr && GlobalUnlock(handle) == 0;
}

} // namespace kirvo_test
