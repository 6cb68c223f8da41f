#include "support/file_calls.hpp"

#include "support/dib_builder.hpp"
#include "support/hostile_streams.hpp"

#include <filesystem>

#ifdef _WIN32
#include <windows.h>
#endif

namespace kirvo_test {

namespace {

// A picture of 3 x 2 pixels in every format.
constexpr int width = 3, height = 2, rgb_bytes = 3 * width * height;

void put(Bytes& to, uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i)
        to.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

void put_info_header(Bytes& to, int rows, int bits) {
    put(to, 40, 4);
    put(to, width, 4);
    put(to, static_cast<uint32_t>(rows), 4);
    put(to, 1, 2);
    put(to, static_cast<uint32_t>(bits), 2);
    to.resize(to.size() + 24);
}

Bytes with_bytes(Bytes file, size_t more) {
    for (; more != 0; --more)
        file.push_back(static_cast<uint8_t>(1 + more));
    return file;
}

Bytes bmp() {
    Bytes file{'B', 'M'};
    file.resize(14);
    put_info_header(file, height, 24);
    return with_bytes(std::move(file), 12 * height);
}

Bytes targa() {
    Bytes file(18);
    file[2] = 2;
    file[12] = width;
    file[14] = height;
    file[16] = 24;
    return with_bytes(std::move(file), rgb_bytes);
}

Bytes raw() {
    Bytes file{'m', 'h', 'w', 'a', 'n', 'h', 0, 0, 0, width, 0, height};
    file.resize(32);
    return with_bytes(std::move(file), rgb_bytes);
}

// One image of 24 bits with its mask.
constexpr size_t icon_image = 6 + 16;
Bytes icon() {
    Bytes file{0, 0, 1, 0, 1, 0, width, height, 0, 0, 1, 0, 24, 0};
    constexpr uint32_t colour_bytes = 40 + 12 * height, mask_bytes = 4 * height;
    put(file, colour_bytes + mask_bytes, 4);
    put(file, icon_image, 4);
    put_info_header(file, 2 * height, 24);
    return with_bytes(std::move(file), colour_bytes - 40 + mask_bytes);
}

Bytes jpeg() {
    Bytes file = jpeg_header(width, height, false);
    file.insert(file.end(), {0x3F, 0xFF, 0xD9});
    return file;
}
size_t jpeg_header_bytes() { return jpeg_header(width, height, false).size(); }

// Frees what a reader made and tells its status.
template<typename Read>
int32_t status_of(Read read) {
    uint32_t w, h, bits;
    int32_t status = 99;
    const Dib image(read(&w, &h, &bits, &status));
    return (image != nullptr) == (status == KIRVO_OK) ? status : 98;
}

int32_t dib_read_ex(const char* name) {
    return status_of([=](auto w, auto h, auto b, auto s) { return DibReadEx(name, w, h, b, s); });
}
int32_t dib24_read(const char* name) {
    return status_of([=](auto w, auto h, auto, auto s) { return Dib24Read(name, w, h, s); });
}
int32_t targa24_read(const char* name) {
    return status_of([=](auto w, auto h, auto, auto s) { return Targa24Read(name, w, h, s); });
}
int32_t q0_read(const char* name) {
    return status_of([=](auto w, auto h, auto b, auto s) { return Q0Read(name, w, h, b, s); });
}
int32_t raw_read(const char* name) {
    return status_of([=](auto w, auto h, auto b, auto s) { return RawRead(name, w, h, b, s); });
}
int32_t ico_get_data(const char* name) {
    HGLOBAL mask = nullptr;
    const int32_t status = status_of(
        [&](auto w, auto h, auto b, auto s) { return IcoGetData(name, 0, w, h, b, s, &mask); });
    return (Dib(mask) != nullptr) == (status == KIRVO_OK) ? status : 97;
}
int32_t ico_get_info(const char* name) {
    uint8_t records[6];
    return IcoGetInfo(name, records, sizeof records);
}
int32_t ico_get_info_ex(const char* name) {
    uint8_t records[12];
    return IcoGetInfoEx(name, records, 6);
}
int32_t jpg_dec_main_ex(const char* name) {
    return status_of([=](auto w, auto h, auto, auto s) { return JpgDecMainEx(name, w, h, s); });
}
int32_t jpg_dec_get_spec_ex(const char* name) {
    JpgDecSpec spec;
    return JpgDecGetSpecEx(name, &spec);
}
int32_t jpg_dec_get_spec(const char* name) {
    uint32_t w, h, components, luma;
    return JpgDecGetSpec(name, &w, &h, &components, &luma);
}

// The depth, once its low byte is there, is 24; before, 0.
constexpr size_t depth_end = 14 + 15;
int32_t cut_bmp(size_t bytes) {
    return bytes < 14 ? KIRVO_READ_ERROR : bytes < depth_end ? KIRVO_NOT_BMP : KIRVO_OK;
}
int32_t unreadable_bmp(size_t bytes) { return bytes < bmp().size() ? KIRVO_READ_ERROR : KIRVO_OK; }
int32_t short_targa(size_t bytes) { return bytes < targa().size() ? KIRVO_READ_ERROR : KIRVO_OK; }
int32_t cut_q0(size_t bytes) { return bytes < rgb_bytes ? KIRVO_Q0_SIZE : KIRVO_OK; }
int32_t unreadable_q0(size_t bytes) { return bytes < rgb_bytes ? KIRVO_READ_ERROR : KIRVO_OK; }
int32_t cut_raw(size_t bytes) {
    return bytes < 32 ? KIRVO_READ_ERROR : bytes < raw().size() ? KIRVO_NOT_RAW : KIRVO_OK;
}
int32_t unreadable_raw(size_t bytes) { return bytes < raw().size() ? KIRVO_READ_ERROR : KIRVO_OK; }
int32_t short_listing(size_t bytes) { return bytes < icon_image ? KIRVO_READ_ERROR : 1; }
// What is missing of the image is 0, its depth too.
int32_t short_icon(size_t bytes) {
    return bytes < icon_image        ? KIRVO_READ_ERROR
           : bytes < icon_image + 15 ? KIRVO_NO_MEMORY
                                     : KIRVO_OK;
}
int32_t cut_jpeg(size_t bytes) {
    return bytes < 2                     ? KIRVO_JPEG_NO_SOI
           : bytes < jpeg_header_bytes() ? KIRVO_JPEG_HEADER
                                         : KIRVO_OK;
}
int32_t unreadable_jpeg(size_t bytes) {
    return bytes < jpeg().size() ? KIRVO_READ_ERROR : KIRVO_OK;
}

Dib picture() {
    Dib dib = make_dib({.width = 5, .height = 4, .bits = 24});
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 5; ++x)
            dib.set_pixel(x, y, static_cast<uint32_t>(0x10203 * (1 + x + 5 * y)));
    return dib;
}

Dib grey_picture() {
    Dib dib = make_dib({.width = 5, .height = 4, .bits = 8});
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 5; ++x)
            dib.set_pixel(x, y, static_cast<uint32_t>(11 * (1 + x + 5 * y)));
    return dib;
}

// The answer of a writer that leaves its image unlocked.
template<typename Write>
int32_t write(const Dib& image, Write write_image) {
    const int32_t status = write_image(image);
    return is_unlocked(image) ? status : 98;
}

} // namespace

const std::vector<FileReader>& file_readers() {
    constexpr int32_t missing = KIRVO_CANNOT_OPEN, cut = KIRVO_READ_ERROR;
    static const std::vector<FileReader> all = {
        {"DibReadEx", "file.bmp", bmp(), 0, dib_read_ex, cut_bmp, unreadable_bmp, missing, cut,
         KIRVO_NOT_BMP},
        {"Dib24Read", "file.bmp", bmp(), 0, dib24_read, cut_bmp, unreadable_bmp, missing, cut,
         KIRVO_NOT_BMP},
        {"Targa24Read", "file.tga", targa(), 0, targa24_read, short_targa, short_targa, missing,
         cut, KIRVO_NOT_TARGA},
        {"Q0Read", "file.q0", Bytes(rgb_bytes, 7), 0, q0_read, cut_q0, unreadable_q0, KIRVO_Q0_SIZE,
         KIRVO_Q0_SIZE, KIRVO_Q0_SIZE},
        {"RawRead", "file.raw", raw(), 0, raw_read, cut_raw, unreadable_raw, missing, cut,
         KIRVO_NOT_RAW},
        {"IcoGetInfo", "file.ico", icon(), 1, ico_get_info, short_listing, short_listing, missing,
         cut, KIRVO_NOT_ICON},
        {"IcoGetInfoEx", "file.ico", icon(), 1, ico_get_info_ex, short_listing, short_listing,
         missing, cut, KIRVO_NOT_ICON},
        {"IcoGetData", "file.ico", icon(), 0, ico_get_data, short_icon, short_icon, missing, cut,
         KIRVO_NOT_ICON},
        {"JpgDecMainEx", "file.jpg", jpeg(), 0, jpg_dec_main_ex, cut_jpeg, unreadable_jpeg, missing,
         KIRVO_JPEG_NO_SOI, KIRVO_JPEG_NO_SOI},
        {"JpgDecGetSpecEx", "file.jpg", jpeg(), 0, jpg_dec_get_spec_ex, cut_jpeg, unreadable_jpeg,
         missing, KIRVO_JPEG_NO_SOI, KIRVO_JPEG_NO_SOI},
        {"JpgDecGetSpec", "file.jpg", jpeg(), 0, jpg_dec_get_spec, cut_jpeg, unreadable_jpeg,
         missing, KIRVO_JPEG_NO_SOI, KIRVO_JPEG_NO_SOI},
    };
    return all;
}

const std::vector<FileWriter>& file_writers() {
    static const std::vector<FileWriter> all = {
        {"DibWriteEx", KIRVO_CANNOT_OPEN,
         [](const char* name) {
             return write(picture(), [=](HGLOBAL d) { return DibWriteEx(name, d, 0, 0, -1, -1); });
         }},
        {"DibWriteEx_of_a_rectangle", KIRVO_CANNOT_OPEN,
         [](const char* name) {
             return write(grey_picture(),
                          [=](HGLOBAL d) { return DibWriteEx(name, d, 1, 1, 3, 2); });
         }},
        {"Dib24Write", KIRVO_CANNOT_OPEN,
         [](const char* name) {
             return write(picture(), [=](HGLOBAL d) { return Dib24Write(name, d, 0, 0, -1, -1); });
         }},
        {"Targa24Write", KIRVO_CANNOT_OPEN,
         [](const char* name) {
             return write(picture(),
                          [=](HGLOBAL d) { return Targa24Write(name, d, 0, 0, -1, -1); });
         }},
        {"JpgCodMainEx", KIRVO_BAD_PARAMETER,
         [](const char* name) {
             return write(picture(),
                          [=](HGLOBAL d) { return JpgCodMainEx(name, d, 0, 0, 5, 4, 0, 0); });
         }},
        {"JpgCodMainEx_M", KIRVO_BAD_PARAMETER,
         [](const char* name) {
             return write(grey_picture(),
                          [=](HGLOBAL d) { return JpgCodMainEx_M(name, d, 0, 0, 5, 4, 0); });
         }},
    };
    return all;
}

#ifdef _WIN32

int open_handles() {
    DWORD count = 0;
    GetProcessHandleCount(GetCurrentProcess(), &count);
    if (count != 0)
        return static_cast<int>(count);
    // Wine does not count. Handles are given out from the lowest on.
    int found = 0;
    for (uintptr_t handle = 4; handle < 2048; handle += 4) {
        DWORD flags;
        found += GetHandleInformation(reinterpret_cast<HANDLE>(handle), &flags) != 0;
    }
    return found;
}

#else

int open_handles() {
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return static_cast<int>(std::distance(begin(all), end(all)));
}

#endif

} // namespace kirvo_test
