// Icon and cursor files: a directory, and for each image in it a header with twice the height, the
// colour table, the colour rows and the rows of a 1-bit mask.
#include "image/dib.hpp"

#include <cstring>

namespace kirvo {

namespace {

struct FileHeader {
    uint16_t reserved; // 0
    uint16_t type;     // 1 icon, 2 cursor
    uint16_t count;
};

struct Entry {
    uint8_t width, height, colours, reserved;
    uint16_t planes, bits;
    uint32_t bytes;  // of the image with everything that belongs to it
    uint32_t offset; // from the start of the file
};
static_assert(sizeof(FileHeader) == 6 && sizeof(Entry) == 16);

// What the listings write for each entry.
struct Info {
    uint16_t colours, width, height;
};
struct InfoEx {
    uint32_t offset;
    Info info;
    // two more bytes are left alone
};
constexpr uint32_t info_bytes = 6;
constexpr uint32_t info_ex_bytes = 12;

constexpr uint32_t most_resource_bytes = 65535;
constexpr uint32_t mask_rows_offset = info_header_bytes + 2 * sizeof(RGBQUAD);

Status open_icon(InputFile& file, const char* name, uint16_t& count) {
    if (!file.open(name))
        return Status::cannot_open;
    FileHeader header;
    if (!file.read(&header, sizeof header))
        return Status::read_error;
    if (header.reserved != 0 || (header.type != 1 && header.type != 2))
        return Status::not_icon;
    count = header.count;
    return Status::ok;
}

// Opens an icon file and clears the caller's buffer. Listed is the number of records to fill.
Status open_listing(InputFile& file, const char* name, void* buffer, uint32_t size, uint16_t& count,
                    uint32_t& listed) {
    const Status status = open_icon(file, name, count);
    listed = 0;
    if (status == Status::ok && buffer != nullptr) {
        std::memset(buffer, 0, size);
        listed = std::min<uint32_t>(count, size / info_bytes);
    }
    return status;
}

uint16_t colours_of_depth(uint16_t bits) {
    const bool indexed = bits == 1 || bits == 4 || bits == 8;
    return indexed ? static_cast<uint16_t>(1u << bits) : uint16_t{0};
}

// The header of the image at an offset; what lies outside the file reads as 0.
BITMAPINFOHEADER image_header(InputFile& file, uint32_t offset) {
    BITMAPINFOHEADER header = {};
    if (file.seek(offset))
        file.read_some(&header, sizeof header);
    return header;
}

struct Icon {
    Entry entry;
    OwnedBlock image;
    OwnedBlock mask;
};

Status find_entry(InputFile& file, const char* name, int32_t index, Entry& entry) {
    uint16_t count;
    const Status status = open_icon(file, name, count);
    if (status != Status::ok)
        return status;
    if (index < 0 || index >= count)
        return Status::bad_parameter;
    for (int32_t i = 0; i <= index; ++i) {
        if (!file.read(&entry, sizeof entry))
            return Status::read_error;
    }
    return Status::ok;
}

OwnedBlock new_image(const Entry& entry, const uint8_t* resource) {
    BITMAPINFOHEADER header;
    std::memcpy(&header, resource, sizeof header);
    return new_dib(entry.width, entry.height, header.biBitCount);
}

// The image takes over the resource's own header, corrected in its height alone.
void fill_image(const OwnedBlock& image, const Entry& entry, const uint8_t* resource,
                size_t bytes) {
    const LONG height = entry.height;
    const LockedDib dib(image.get());
    dib.write_bytes(0, resource, bytes);
    dib.write_bytes(offsetof(BITMAPINFOHEADER, biHeight), &height, sizeof height);
}

OwnedBlock mask_image(const Entry& entry, const uint8_t* rows, size_t bytes) {
    constexpr RGBQUAD black_and_white[] = {{0, 0, 0, 0}, {255, 255, 255, 0}};
    OwnedBlock mask = new_dib(entry.width, entry.height, 1);
    const LockedDib dib(mask.get());
    dib.write_bytes(info_header_bytes, black_and_white, sizeof black_and_white);
    dib.write_bytes(mask_rows_offset, rows, bytes);
    return mask;
}

Status read_icon(const char* name, int32_t index, bool with_mask, Icon& icon) {
    InputFile file;
    const Status status = find_entry(file, name, index, icon.entry);
    if (status != Status::ok)
        return status;
    const Scratch resource(most_resource_bytes);
    if (!resource)
        return Status::no_memory;
    if (file.seek(icon.entry.offset))
        file.read_some(resource.data(), most_resource_bytes);
    file.close();

    // What lies behind the end of the file, or beyond the bytes read, is 0. No image has the depth
    // that a PNG seems to have, whatever its size.
    icon.image = new_image(icon.entry, resource.data());
    if (!icon.image)
        return Status::no_memory;
    const auto mask_bytes =
        static_cast<uint32_t>(row_stride(icon.entry.width, 1) * icon.entry.height);
    if (icon.entry.bytes < mask_bytes)
        return Status::read_error;
    const uint32_t colour_bytes = std::min(icon.entry.bytes - mask_bytes, most_resource_bytes);
    fill_image(icon.image, icon.entry, resource.data(), colour_bytes);
    if (with_mask) {
        icon.mask = mask_image(icon.entry, resource.data() + colour_bytes,
                               std::min(mask_bytes, most_resource_bytes - colour_bytes));
        if (!icon.mask)
            return Status::no_memory;
    }
    return Status::ok;
}

} // namespace

} // namespace kirvo

using namespace kirvo;

int32_t WINAPI IcoGetInfo(LPCSTR name, void* records, uint32_t size) {
    InputFile file;
    uint16_t count;
    uint32_t listed;
    const Status status = open_listing(file, name, records, size, count, listed);
    if (status != Status::ok)
        return code(status);
    auto* record = static_cast<uint8_t*>(records);
    for (; listed != 0; --listed, record += info_bytes) {
        Entry entry;
        if (!file.read(&entry, sizeof entry))
            return code(Status::read_error);
        const auto colours = static_cast<uint16_t>(entry.colours | entry.reserved << 8);
        const Info info = {colours != 0 ? colours : uint16_t{256}, entry.width, entry.height};
        std::memcpy(record, &info, sizeof info);
    }
    return count;
}

int32_t WINAPI IcoGetInfoEx(LPCSTR name, void* records, uint32_t size) {
    InputFile file;
    uint16_t count;
    uint32_t listed;
    const Status status = open_listing(file, name, records, size, count, listed);
    if (status != Status::ok)
        return code(status);
    // Records are larger than the 6 bytes that the number of them is reckoned with.
    auto* const first = static_cast<uint8_t*>(records);
    uint8_t* const end = first + size_t{listed} * info_ex_bytes;
    for (uint8_t* record = first; record != end; record += info_ex_bytes) {
        Entry entry;
        if (!file.read(&entry, sizeof entry))
            return code(Status::read_error);
        const uint16_t size_fields[] = {entry.width, entry.height};
        std::memcpy(record + offsetof(InfoEx, offset), &entry.offset, sizeof entry.offset);
        std::memcpy(record + offsetof(InfoEx, info.width), size_fields, sizeof size_fields);
    }
    for (uint8_t* record = first; record != end; record += info_ex_bytes) {
        uint32_t offset;
        std::memcpy(&offset, record + offsetof(InfoEx, offset), sizeof offset);
        const uint16_t colours = colours_of_depth(image_header(file, offset).biBitCount);
        std::memcpy(record + offsetof(InfoEx, info.colours), &colours, sizeof colours);
    }
    return count;
}

HGLOBAL WINAPI IcoGetData(LPCSTR name, int32_t index, uint32_t* width, uint32_t* height,
                          uint32_t* bits, int32_t* status, HGLOBAL* mask) {
    Icon icon;
    const Status result = read_icon(name, index, mask != nullptr, icon);
    report(status, result);
    if (result != Status::ok)
        return nullptr;
    report(width, uint32_t{icon.entry.width});
    report(height, uint32_t{icon.entry.height});
    report(bits, static_cast<uint32_t>(DibQueryBitCount(icon.image.get())));
    report(mask, icon.mask.release());
    return icon.image.release();
}
