// Q0 and RAW files: rows of red, green and blue bytes, from the top of the picture down, without
// padding. The size of a Q0 picture lies in a companion file, that of a RAW picture in its header.
#include "formats/answer.hpp"
#include "formats/companion.hpp"
#include "formats/packed_rows.hpp"
#include "image/progress.hpp"
#include "simd/kernels.hpp"

#include <cstring>

namespace kirvo {

namespace {

constexpr ChannelOrder red_and_blue_exchanged = {{red_byte, green_byte, blue_byte}};

constexpr uint32_t raw_header_bytes = 32;
constexpr char raw_magic[] = {'m', 'h', 'w', 'a', 'n', 'h'};

int32_t get_u16(const uint8_t* from) { return from[0] << 8 | from[1]; } // big-endian

// A product of two sizes from outside fits 64 bits, three times it may not.
bool holds_pixels(uint64_t file_bytes, int32_t width, int32_t height) {
    return int64_t{width} * height <= static_cast<int64_t>(file_bytes / 3);
}

bool read_rows(InputFile& file, const LockedDib& dib) {
    const Rows rows = dib.rows(RowStart::after_40);
    const auto pixels = static_cast<size_t>(dib.width());
    PackedRows file_rows(file, static_cast<uint32_t>(3 * pixels),
                         static_cast<uint32_t>(dib.height()));
    return each_step(dib.height(), [&](int32_t i) {
        uint8_t* row = rows[dib.height() - 1 - i];
        if (!file_rows.next(row, progress_enabled()))
            return false;
        kernels().permute(row, row, pixels, red_and_blue_exchanged);
        return true;
    });
}

OwnedBlock read_pixels(InputFile& file, int32_t width, int32_t height, Status& status) {
    status = Status::no_memory;
    OwnedBlock image = new_dib(width, height, 24);
    if (!image)
        return {};
    status = Status::read_error;
    if (!read_rows(file, LockedDib(image.get())))
        return {};
    status = Status::ok;
    return image;
}

OwnedBlock read_q0(const char* name, Status& status) {
    int32_t width, height;
    status = Status::q0_size;
    if (!read_companion(name, width, height))
        return {};
    InputFile file;
    status = Status::cannot_open;
    if (!file.open_searched(name))
        return {};
    status = Status::q0_size;
    if (!holds_pixels(file.size(), width, height))
        return {};
    return read_pixels(file, width, height, status);
}

OwnedBlock read_raw(const char* name, Status& status) {
    InputFile file;
    status = Status::cannot_open;
    if (!file.open_searched(name))
        return {};
    uint8_t header[raw_header_bytes];
    status = Status::read_error;
    if (!file.read(header, sizeof header))
        return {};
    status = Status::not_raw;
    if (std::memcmp(header, raw_magic, sizeof raw_magic) != 0)
        return {};
    const int32_t width = get_u16(header + 8);
    const int32_t height = get_u16(header + 10);
    status = Status::raw_palette;
    if (get_u16(header + 12) != 0)
        return {};
    status = Status::not_raw;
    const uint64_t size = file.size();
    if (size < raw_header_bytes || !holds_pixels(size - raw_header_bytes, width, height))
        return {};
    return read_pixels(file, width, height, status);
}

} // namespace

} // namespace kirvo

using namespace kirvo;

HGLOBAL WINAPI Q0Read(LPCSTR name, uint32_t* width, uint32_t* height, uint32_t* bits,
                      int32_t* status) {
    Status result;
    OwnedBlock image = read_q0(name, result);
    return answer(std::move(image), result, width, height, bits, status);
}

HGLOBAL WINAPI RawRead(LPCSTR name, uint32_t* width, uint32_t* height, uint32_t* bits,
                       int32_t* status) {
    Status result;
    OwnedBlock image = read_raw(name, result);
    return answer(std::move(image), result, width, height, bits, status);
}
