// Icon and cursor files: listed, and read with their masks.
#include "formats/made_elsewhere.hpp"
#include "formats/reader.hpp"

#include <cstring>

using namespace kirvo_test;

namespace {

void append(Bytes& to, uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i)
        to.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

void append(Bytes& to, const Bytes& more) { to.insert(to.end(), more.begin(), more.end()); }

struct Entry {
    uint8_t width, height;
    uint32_t bytes = 0, offset = 0;
    uint8_t colours = 0, reserved = 0;
};

// The start of a file: header and directory, with as many entries as given and any count.
Bytes directory(uint32_t count, const std::vector<Entry>& entries, uint32_t type = 1,
                uint32_t reserved = 0) {
    Bytes file;
    append(file, reserved, 2);
    append(file, type, 2);
    append(file, count, 2);
    for (const Entry& e : entries) {
        for (const uint8_t byte : {e.width, e.height, e.colours, e.reserved})
            file.push_back(byte);
        append(file, 0x7777, 2); // planes and bit count are not looked at
        append(file, 0x7777, 2);
        append(file, e.bytes, 4);
        append(file, e.offset, 4);
    }
    return file;
}

size_t colour_table_bytes(int bits, uint32_t used) {
    return bits <= 8 ? 4 * size_t{used != 0 ? used : 1u << bits} : 0;
}

// A resource of random colours, rows and mask rows.
struct Resource {
    int32_t width, height;
    int bits;
    uint32_t used = 0;
    Bytes header, table, rows, mask;

    Resource(int32_t w, int32_t h, int b, Random& random, uint32_t colours_used = 0)
        : width(w), height(h), bits(b), used(colours_used), table(colour_table_bytes(b, used)),
          rows(static_cast<size_t>(stride_of(w, b) * h)),
          mask(static_cast<size_t>(stride_of(w, 1) * h)) {
        append(header, 40, 4);
        append(header, static_cast<uint32_t>(w), 4);
        append(header, static_cast<uint32_t>(2 * h), 4);
        append(header, 1, 2);
        append(header, static_cast<uint32_t>(b), 2);
        append(header, 0, 4);
        append(header, 0x12345678, 4); // size of the image: whatever the file says
        append(header, 11, 4);
        append(header, 22, 4);
        append(header, used, 4);
        append(header, 33, 4);
        random.fill(table.data(), table.size());
        random.fill(rows.data(), rows.size());
        random.fill(mask.data(), mask.size());
    }
    Bytes all() const {
        Bytes bytes = header;
        for (const Bytes* part : {&table, &rows, &mask})
            append(bytes, *part);
        return bytes;
    }
    Bytes colour_part() const {
        Bytes bytes = all();
        bytes.resize(bytes.size() - mask.size());
        return bytes;
    }
};

Bytes icon_of(const std::vector<Resource>& resources, uint32_t type = 1) {
    std::vector<Entry> entries;
    auto offset = static_cast<uint32_t>(6 + 16 * resources.size());
    for (const Resource& r : resources) {
        const auto bytes = static_cast<uint32_t>(r.all().size());
        entries.push_back(
            {static_cast<uint8_t>(r.width), static_cast<uint8_t>(r.height), bytes, offset});
        offset += bytes;
    }
    Bytes file = directory(static_cast<uint32_t>(resources.size()), entries, type);
    for (const Resource& r : resources)
        append(file, r.all());
    return file;
}

// A file of one image with an entry of one's own; its offset is set.
Bytes icon_with_entry(Entry entry, const Bytes& resource) {
    entry.offset = 22;
    Bytes file = directory(1, {entry});
    append(file, resource);
    return file;
}

struct IconRead : Read {
    Dib mask;
};

const auto no_mask = reinterpret_cast<HGLOBAL>(intptr_t{0x5A5A});

IconRead read_icon(const Bytes& bytes, int32_t index = 0) {
    const TempFile file(".ico", bytes);
    IconRead r;
    HGLOBAL mask = no_mask;
    r.dib = Dib(IcoGetData(file.name(), index, &r.width, &r.height, &r.bits, &r.status, &mask));
    EXPECT_EQ(r.status == KIRVO_OK, mask != no_mask);
    if (mask != no_mask)
        r.mask = Dib(mask);
    EXPECT_FALSE(is_open(file.name()));
    return r;
}

Bytes whole_block(HGLOBAL handle) {
    const auto* bytes = static_cast<const uint8_t*>(GlobalLock(handle));
    Bytes copy(bytes, bytes + GlobalSize(handle));
    GlobalUnlock(handle);
    return copy;
}

void put(Bytes& to, size_t offset, const Bytes& bytes) {
    for (size_t i = 0; i < bytes.size() && offset + i < to.size(); ++i)
        to[offset + i] = bytes[i];
}

// The block that a new image of that size has: 40 bytes, colour part, rows.
size_t block_bytes(int32_t width, int32_t height, int bits) {
    const size_t colour_part = bits <= 8 ? size_t{4} << bits : bits == 24 ? 0 : 12;
    return 40 + colour_part + static_cast<size_t>(stride_of(width, bits) * height);
}

void expect_icon(const IconRead& r, const Resource& resource) {
    ASSERT_EQ(r.status, KIRVO_OK);
    EXPECT_EQ(r.width, static_cast<uint32_t>(resource.width));
    EXPECT_EQ(r.height, static_cast<uint32_t>(resource.height));
    EXPECT_EQ(r.bits, static_cast<uint32_t>(resource.bits));
    Bytes image(block_bytes(resource.width, resource.height, resource.bits));
    put(image, 0, resource.colour_part());
    put(image, 8, {static_cast<uint8_t>(resource.height), 0, 0, 0});
    EXPECT_EQ(whole_block(r.dib), image);
    EXPECT_TRUE(is_unlocked(r.dib));

    const Dib plain = make_dib({.width = resource.width, .height = resource.height, .bits = 1});
    Bytes mask = whole_block(plain);
    put(mask, 44, {255, 255, 255, 0});
    put(mask, 48, resource.mask);
    EXPECT_EQ(whole_block(r.mask), mask);
    EXPECT_TRUE(is_unlocked(r.mask));
}

int32_t list(const Bytes& file, Bytes& records, uint32_t size) {
    const TempFile temp(".ico", file);
    const int32_t answer = IcoGetInfo(temp.name(), records.data(), size);
    EXPECT_FALSE(is_open(temp.name()));
    return answer;
}

int32_t list_ex(const Bytes& file, Bytes& records, uint32_t size) {
    const TempFile temp(".ico", file);
    const int32_t answer = IcoGetInfoEx(temp.name(), records.data(), size);
    EXPECT_FALSE(is_open(temp.name()));
    return answer;
}

int32_t count_only(const Bytes& file) {
    const TempFile temp(".ico", file);
    const int32_t answer = IcoGetInfo(temp.name(), nullptr, 1000);
    EXPECT_EQ(IcoGetInfoEx(temp.name(), nullptr, 1000), answer);
    Bytes buffer(100, 0xEE);
    EXPECT_EQ(IcoGetInfo(temp.name(), buffer.data(), 0), answer);
    EXPECT_EQ(IcoGetInfoEx(temp.name(), buffer.data(), 0), answer);
    EXPECT_EQ(buffer, Bytes(100, 0xEE));
    return answer;
}

// All three entries answer the same status at the start.
void expect_refused(const std::string& name, int32_t status) {
    uint8_t buffer[64];
    EXPECT_EQ(IcoGetInfo(name.c_str(), buffer, sizeof buffer), status);
    EXPECT_EQ(IcoGetInfo(name.c_str(), nullptr, 0), status);
    EXPECT_EQ(IcoGetInfoEx(name.c_str(), buffer, 24), status);
    EXPECT_EQ(IcoGetInfoEx(name.c_str(), nullptr, 0), status);
    int32_t answer = 99;
    EXPECT_EQ(IcoGetData(name.c_str(), 0, nullptr, nullptr, nullptr, &answer, nullptr), nullptr);
    EXPECT_EQ(answer, status);
}

void expect_refused(const Bytes& bytes, int32_t status) {
    const TempFile file(".ico", bytes);
    expect_refused(file.name(), status);
    EXPECT_FALSE(is_open(file.name()));
}

} // namespace

TEST(Icons, count_their_images_without_a_buffer) {
    EXPECT_EQ(count_only(directory(3, {{1, 1}, {1, 1}, {1, 1}})), 3);
    EXPECT_EQ(count_only(directory(0, {})), 0);
    EXPECT_EQ(count_only(directory(65535, {})), 65535);
}

TEST(Icons, are_icons_or_cursors) {
    EXPECT_EQ(count_only(directory(2, {}, 1)), 2);
    EXPECT_EQ(count_only(directory(2, {}, 2)), 2);
    for (const uint32_t type : {0, 3, 0x101, 0x200, 0xFFFF})
        expect_refused(directory(1, {{1, 1}}, type), KIRVO_NOT_ICON);
    for (const uint32_t reserved : {1, 0x100, 0xFFFF})
        expect_refused(directory(1, {{1, 1}}, 1, reserved), KIRVO_NOT_ICON);
}

TEST(Icons, have_at_least_six_bytes) {
    const Bytes header = directory(0, {});
    for (ptrdiff_t length = 0; length < 6; ++length)
        expect_refused(Bytes(header.begin(), header.begin() + length), KIRVO_READ_ERROR);
}

TEST(Icons, tell_a_file_that_cannot_be_opened) {
    for (const std::string& name : impossible_names(".ico"))
        expect_refused(name, KIRVO_CANNOT_OPEN);
    expect_refused(temp_folder(), KIRVO_CANNOT_OPEN);
    EXPECT_EQ(IcoGetInfo(nullptr, nullptr, 0), KIRVO_CANNOT_OPEN);
    EXPECT_EQ(IcoGetInfoEx(nullptr, nullptr, 0), KIRVO_CANNOT_OPEN);
    int32_t status = 99;
    EXPECT_EQ(IcoGetData(nullptr, 0, nullptr, nullptr, nullptr, &status, nullptr), nullptr);
    EXPECT_EQ(status, KIRVO_CANNOT_OPEN);
}

TEST(IcoGetInfo, records_colours_width_and_height) {
    const Bytes file = directory(3, {{.width = 32, .height = 16, .colours = 16},
                                     {.width = 255, .height = 0},
                                     {.width = 1, .height = 2, .colours = 2, .reserved = 1}});
    Bytes records(18, 0xEE);
    EXPECT_EQ(list(file, records, 18), 3);
    EXPECT_EQ(records, (Bytes{16, 0, 32, 0, 16, 0, //
                              0, 1, 255, 0, 0, 0,  // 0 colours are 256
                              2, 1, 1, 0, 2, 0})); // the byte behind is the high byte
}

TEST(IcoGetInfo, clears_the_whole_buffer_and_nothing_beyond) {
    Bytes records(40, 0xEE);
    EXPECT_EQ(list(directory(2, {{8, 9}, {10, 11}}), records, 30), 2);
    Bytes expected(40, 0);
    put(expected, 0, {0, 1, 8, 0, 9, 0, 0, 1, 10, 0, 11, 0});
    put(expected, 30, Bytes(10, 0xEE));
    EXPECT_EQ(records, expected);
}

TEST(IcoGetInfo, fills_what_fits_and_answers_the_full_count) {
    const Bytes file = directory(3, {{1, 2}, {3, 4}, {5, 6}});
    for (uint32_t size = 1; size <= 20; ++size) {
        Bytes records(20, 0xEE);
        EXPECT_EQ(list(file, records, size), 3);
        Bytes expected(20, 0);
        for (uint8_t k = 0; k < 3 && 6u * (k + 1u) <= size; ++k)
            put(expected, 6u * k,
                {0, 1, static_cast<uint8_t>(2 * k + 1), 0, static_cast<uint8_t>(2 * k + 2), 0});
        put(expected, size, Bytes(20, 0xEE));
        EXPECT_EQ(records, expected) << size;
    }
}

TEST(IcoGetInfo, reads_no_more_entries_than_fit) {
    Bytes records(12);
    EXPECT_EQ(list(directory(1000, {{1, 2}, {3, 4}}), records, 12), 1000);
    EXPECT_EQ(records[2], 1);
    EXPECT_EQ(records[8], 3);
}

TEST(IcoGetInfo, tells_a_directory_cut_short_anywhere) {
    const Bytes whole = directory(2, {{1, 2}, {3, 4}});
    for (ptrdiff_t length = 6; length < ptrdiff_t(whole.size()); ++length) {
        Bytes records(12, 0xEE);
        EXPECT_EQ(list(Bytes(whole.begin(), whole.begin() + length), records, 12),
                  KIRVO_READ_ERROR);
        EXPECT_EQ(records[2], length < 22 ? 0 : 1);
        EXPECT_EQ(records[8], 0);
    }
}

TEST(IcoGetInfo, believes_no_count_beyond_the_file) {
    Bytes records(6 * 65535u);
    EXPECT_EQ(list(directory(65535, {{1, 2}, {3, 4}}), records, 6 * 65535u), KIRVO_READ_ERROR);
}

TEST(IcoGetInfoEx, records_offset_colours_width_and_height) {
    Random random(1);
    const std::vector<Resource> resources = {{3, 4, 1, random},    {5, 6, 4, random},
                                             {7, 8, 8, random},    {9, 10, 16, random},
                                             {11, 12, 24, random}, {13, 14, 32, random}};
    const Bytes file = icon_of(resources);
    Bytes records(72, 0);
    EXPECT_EQ(list_ex(file, records, 72), 6);
    Bytes expected;
    auto offset = uint32_t{6 + 16 * 6};
    for (const Resource& r : resources) {
        append(expected, offset, 4);
        append(expected, r.bits == 1 ? 2 : r.bits == 4 ? 16 : r.bits == 8 ? 256 : 0, 2);
        append(expected, static_cast<uint32_t>(r.width), 2);
        append(expected, static_cast<uint32_t>(r.height), 2);
        append(expected, 0, 2);
        offset += static_cast<uint32_t>(r.all().size());
    }
    EXPECT_EQ(records, expected);
}

TEST(IcoGetInfoEx, reckons_its_room_with_six_bytes_a_record) {
    Random random(2);
    const Bytes file = icon_of({{3, 4, 1, random}, {5, 6, 4, random}, {7, 8, 8, random}});
    for (uint32_t size = 1; size <= 30; ++size) {
        Bytes records(40, 0xEE);
        EXPECT_EQ(list_ex(file, records, size), 3);
        Bytes expected(40, 0xEE);
        put(expected, 0, Bytes(size, 0)); // only so much is cleared
        uint32_t offset = 54;
        const uint32_t resource_bytes[] = {40 + 8 + 16 + 16, 40 + 64 + 24 + 24};
        const uint8_t colours[][2] = {{2, 0}, {16, 0}, {0, 1}};
        for (uint8_t k = 0; k < 3 && 6u * (k + 1u) <= size; ++k) { // but so much is written
            put(expected, 12u * k,
                {static_cast<uint8_t>(offset), static_cast<uint8_t>(offset >> 8), 0, 0,
                 colours[k][0], colours[k][1], static_cast<uint8_t>(2 * k + 3), 0,
                 static_cast<uint8_t>(2 * k + 4), 0});
            offset += k < 2 ? resource_bytes[k] : 0;
        }
        EXPECT_EQ(records, expected) << size;
    }
}

TEST(IcoGetInfoEx, lists_0_colours_for_an_image_outside_the_file) {
    for (const uint32_t offset : {38u, 1000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        Bytes records(24, 0xEE);
        Bytes file = directory(1, {{.width = 8, .height = 9, .offset = offset}});
        append(file, Bytes(15, 1)); // the depth of a header here would lie beyond the end
        EXPECT_EQ(list_ex(file, records, 24), 1);
        Bytes expected;
        append(expected, offset, 4);
        append(expected, Bytes{0, 0, 8, 0, 9, 0, 0, 0});
        records.resize(12);
        EXPECT_EQ(records, expected) << offset;
    }
}

TEST(IcoGetInfoEx, does_not_carry_a_depth_over_to_an_image_outside_the_file) {
    Random random(3);
    const Resource inside(3, 4, 8, random);
    Bytes file = directory(2, {{.width = 3, .height = 4, .offset = 38},
                               {.width = 3, .height = 4, .offset = 0xFFFFFF00}});
    append(file, inside.all());
    Bytes records(24);
    EXPECT_EQ(list_ex(file, records, 24), 2);
    EXPECT_EQ(records[4] | records[5] << 8, 256);
    EXPECT_EQ(records[16] | records[17] << 8, 0);
}

TEST(IcoGetInfoEx, tells_a_directory_cut_short_anywhere) {
    const Bytes whole = directory(2, {{1, 2, 0, 77}, {3, 4, 0, 88}});
    for (ptrdiff_t length = 6; length < ptrdiff_t(whole.size()); ++length) {
        Bytes records(24, 0xEE);
        EXPECT_EQ(list_ex(Bytes(whole.begin(), whole.begin() + length), records, 24),
                  KIRVO_READ_ERROR);
        Bytes expected(24, 0);
        if (length >= 22)
            put(expected, 0, {77, 0, 0, 0, 0, 0, 1, 0, 2, 0});
        EXPECT_EQ(records, expected);
    }
}

TEST(IcoGetInfoEx, takes_a_buffer_at_any_address) {
    Random random(4);
    Bytes records(13, 0);
    const TempFile file(".ico", icon_of({{3, 4, 4, random}}));
    EXPECT_EQ(IcoGetInfoEx(file.name(), records.data() + 1, 12), 1);
    EXPECT_EQ(records, (Bytes{0, 22, 0, 0, 0, 16, 0, 3, 0, 4, 0, 0, 0}));
}

TEST(IcoGetData, reads_image_and_mask_at_every_depth) {
    Random random(5);
    for (const int bits : {1, 4, 8, 16, 24, 32})
        for (const int32_t width : {1, 2, 7, 8, 9, 31, 32, 33})
            for (const int32_t height : {1, 2, 16}) {
                const Resource resource(width, height, bits, random);
                expect_icon(read_icon(icon_of({resource})), resource);
            }
}

TEST(IcoGetData, reads_a_32_by_32_icon_of_16_colours) {
    Random random(6);
    const Resource resource(32, 32, 4, random);
    const IconRead r = read_icon(icon_of({resource}));
    expect_icon(r, resource);
    EXPECT_EQ(r.dib.stride(), 16);
    EXPECT_EQ(r.dib.height(), 32);
    EXPECT_EQ(r.mask.stride(), 4);
    EXPECT_EQ(r.mask.rows().size(), 128u);
}

TEST(IcoGetData, reads_each_image_of_a_file) {
    Random random(7);
    const std::vector<Resource> resources = {
        {3, 4, 1, random}, {5, 6, 4, random}, {7, 8, 8, random}, {255, 3, 32, random}};
    for (int32_t index = 0; index < 4; ++index) {
        expect_icon(read_icon(icon_of(resources, 1), index), resources[size_t(index)]);
        expect_icon(read_icon(icon_of(resources, 2), index), resources[size_t(index)]);
    }
}

TEST(IcoGetData, keeps_a_short_colour_table) {
    Random random(8);
    const Resource resource(6, 5, 8, random, 20);
    const IconRead r = read_icon(icon_of({resource}));
    expect_icon(r, resource);
    EXPECT_EQ(r.dib.rows_start(), 40u + 80u);
    EXPECT_EQ(r.dib.rows(), resource.rows);
}

TEST(IcoGetData, does_without_the_mask) {
    Random random(9);
    const Resource resource(6, 5, 24, random);
    const TempFile file(".ico", icon_of({resource}));
    Read r;
    r.dib = Dib(IcoGetData(file.name(), 0, &r.width, &r.height, &r.bits, &r.status, nullptr));
    EXPECT_EQ(r.status, KIRVO_OK);
    EXPECT_EQ(r.dib.rows(), resource.rows);
    EXPECT_EQ(r.dib.header().biXPelsPerMeter, 11);
    EXPECT_EQ(r.dib.header().biSizeImage, 0x12345678u);
}

TEST(IcoGetData, takes_null_out_pointers) {
    Random random(10);
    const TempFile file(".ico", icon_of({{6, 5, 24, random}}));
    const Dib dib(IcoGetData(file.name(), 0, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(dib.width(), 6);
    EXPECT_EQ(IcoGetData(file.name(), 1, nullptr, nullptr, nullptr, nullptr, nullptr), nullptr);
}

TEST(IcoGetData, refuses_an_index_below_0_or_not_below_the_count) {
    Random random(11);
    const Bytes file = icon_of({{3, 4, 1, random}, {5, 6, 4, random}});
    for (const int32_t index : {2, 3, 65536, INT32_MAX, -1, -2, INT32_MIN})
        expect_failure(read_icon(file, index), KIRVO_BAD_PARAMETER);
    expect_failure(read_icon(directory(0, {}), 0), KIRVO_BAD_PARAMETER);
    expect_failure(read_icon(directory(2, {}), 2), KIRVO_BAD_PARAMETER); // before the directory
}

TEST(IcoGetData, tells_a_directory_cut_short_anywhere) {
    const Bytes whole = directory(2, {{1, 2}, {3, 4}});
    for (ptrdiff_t length = 6; length < ptrdiff_t(whole.size()); ++length)
        expect_failure(read_icon(Bytes(whole.begin(), whole.begin() + length), 1),
                       KIRVO_READ_ERROR);
    expect_failure(read_icon(directory(65535, {{1, 2}}), 65534), KIRVO_READ_ERROR);
}

TEST(IcoGetData, has_no_memory_for_256_pixels) {
    Random random(12);
    const Bytes resource = Resource(16, 16, 4, random).all();
    const auto bytes = static_cast<uint32_t>(resource.size());
    expect_failure(read_icon(icon_with_entry({0, 16, bytes}, resource)), KIRVO_NO_MEMORY);
    expect_failure(read_icon(icon_with_entry({16, 0, bytes}, resource)), KIRVO_NO_MEMORY);
    expect_failure(read_icon(icon_with_entry({0, 0, bytes}, resource)), KIRVO_NO_MEMORY);
}

TEST(IcoGetData, has_no_memory_for_a_depth_that_no_image_has) {
    Random random(13);
    for (int bits = 0; bits < 64; ++bits) {
        const bool good =
            bits == 1 || bits == 4 || bits == 8 || bits == 16 || bits == 24 || bits == 32;
        Bytes resource = Resource(4, 4, 32, random).all();
        resource[14] = static_cast<uint8_t>(bits);
        const IconRead r =
            read_icon(icon_with_entry({4, 4, static_cast<uint32_t>(resource.size())}, resource));
        EXPECT_EQ(r.status, good ? KIRVO_OK : KIRVO_NO_MEMORY) << bits;
    }
    Bytes png = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n', 0, 0, 0, 13, 'I', 'H', 'D', 'R'};
    png.resize(200);
    for (const uint32_t bytes : {200u, 16u, 15u, 0u}) // a mask takes 16
        expect_failure(read_icon(icon_with_entry({4, 4, bytes}, png)), KIRVO_NO_MEMORY);
    Bytes smallest = {0, 0, 1, 0, 1, 0, 1, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 22, 0, 0, 0};
    smallest.resize(62);
    expect_failure(read_icon(smallest), KIRVO_NO_MEMORY);
}

TEST(IcoGetData, finds_no_image_outside_the_file) {
    for (const uint32_t offset : {22u, 1000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu})
        expect_failure(read_icon(directory(1, {{4, 4, 1000, offset}})), KIRVO_NO_MEMORY);
}

TEST(IcoGetData, reads_what_a_file_cut_short_still_has) {
    Random random(14);
    const Resource resource(5, 4, 4, random);
    const Bytes whole = icon_of({resource});
    for (size_t length = 22; length < whole.size(); ++length) {
        const IconRead r = read_icon(Bytes(whole.begin(), whole.begin() + ptrdiff_t(length)));
        if (length < 22 + 15) { // no depth
            expect_failure(r, KIRVO_NO_MEMORY);
            continue;
        }
        Resource rest = resource; // what is missing reads as 0
        size_t at = 22;
        for (Bytes* part : {&rest.header, &rest.table, &rest.rows, &rest.mask})
            for (uint8_t& byte : *part)
                byte = at++ < length ? byte : 0;
        expect_icon(r, rest);
    }
}

TEST(IcoGetData, copies_of_a_large_colour_part_what_fits) {
    Random random(15);
    const Resource large(40, 40, 8, random);
    const Bytes resource = large.all();
    // The entry speaks of a smaller image; its mask is taken from the end.
    const IconRead r =
        read_icon(icon_with_entry({9, 3, static_cast<uint32_t>(resource.size())}, resource));
    ASSERT_EQ(r.status, KIRVO_OK);
    EXPECT_EQ(r.width, 9u);
    EXPECT_EQ(r.height, 3u);
    Bytes image(block_bytes(9, 3, 8));
    put(image, 0, resource);
    put(image, 8, {3, 0, 0, 0});
    EXPECT_EQ(whole_block(r.dib), image);
    EXPECT_EQ(r.mask.rows(), Bytes(resource.end() - 12, resource.end()));
    // Its header promises 40 columns, which the block does not hold.
    EXPECT_EQ(DibWriteEx("x.bmp", r.dib, 0, 0, 1, 1), KIRVO_BAD_PARAMETER);
}

TEST(IcoGetData, leaves_the_rest_of_a_small_colour_part_zero) {
    Random random(16);
    const Resource resource(8, 8, 8, random);
    // 100 bytes of colour part, then the mask.
    const Bytes bytes = resource.all();
    const IconRead r = read_icon(icon_with_entry({8, 8, 132}, bytes));
    ASSERT_EQ(r.status, KIRVO_OK);
    Bytes image(block_bytes(8, 8, 8));
    put(image, 0, Bytes(bytes.begin(), bytes.begin() + 100));
    put(image, 8, {8, 0, 0, 0});
    EXPECT_EQ(whole_block(r.dib), image);
    EXPECT_EQ(r.mask.rows(), Bytes(bytes.begin() + 100, bytes.begin() + 132));
}

TEST(IcoGetData, keeps_the_new_images_header_where_the_colour_part_has_none) {
    Random random(17);
    const Bytes bytes = Resource(8, 8, 8, random).all();
    for (const uint32_t colour_bytes : {0u, 1u, 9u, 39u}) {
        const IconRead r = read_icon(icon_with_entry({8, 8, 32 + colour_bytes}, bytes));
        ASSERT_EQ(r.status, KIRVO_OK);
        Bytes image = whole_block(Dib(DibMemAllocEx(8, 8, 8)));
        put(image, 0, Bytes(bytes.begin(), bytes.begin() + colour_bytes));
        put(image, 8, {8, 0, 0, 0});
        EXPECT_EQ(whole_block(r.dib), image) << colour_bytes;
    }
}

TEST(IcoGetData, tells_a_resource_shorter_than_its_mask) {
    Random random(18);
    const Bytes resource = Resource(8, 8, 8, random).all();
    for (const uint32_t bytes : {0u, 1u, 31u})
        expect_failure(read_icon(icon_with_entry({8, 8, bytes}, resource)), KIRVO_READ_ERROR);
}

TEST(IcoGetData, cuts_a_resource_at_65535_bytes) {
    Random random(19);
    for (const int32_t height : {64, 65, 255}) { // 255 x 4 bytes a row; 64 rows fit, 65 do not
        const Resource whole(255, height, 32, random);
        Resource cut = whole;
        size_t at = 0;
        for (Bytes* part : {&cut.header, &cut.table, &cut.rows, &cut.mask})
            for (uint8_t& byte : *part)
                byte = at++ < 65535 ? byte : 0;
        expect_icon(read_icon(icon_of({whole})), cut);
    }
}

TEST(IcoGetData, cuts_the_mask_at_65535_bytes) {
    Random random(20);
    const Resource whole(255, 62, 32, random); // the colour part ends at 63280, the mask at 65264
    expect_icon(read_icon(icon_of({whole})), whole);
    const Resource longer(255, 64, 32, random); // 65320 and 67368
    Resource cut = longer;
    for (size_t i = 65535 - 65320; i < cut.mask.size(); ++i)
        cut.mask[i] = 0;
    expect_icon(read_icon(icon_of({longer})), cut);
}

TEST(IcoGetData, believes_no_resource_size) {
    Random random(21);
    const Resource resource(8, 8, 8, random);
    const Bytes bytes = resource.all();
    for (const uint32_t size : {65535u, 65536u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        const IconRead r = read_icon(icon_with_entry({8, 8, size}, bytes));
        ASSERT_EQ(r.status, KIRVO_OK) << size;
        Bytes image(block_bytes(8, 8, 8));
        put(image, 0, bytes);
        put(image, 8, {8, 0, 0, 0});
        EXPECT_EQ(whole_block(r.dib), image);
        EXPECT_EQ(r.mask.rows(), Bytes(32, 0));
    }
}

TEST(IcoGetData, hands_out_headers_that_other_operations_check) {
    // The header is the resource's own: none of these may lead anyone outside the block.
    Random random(22);
    for (const auto& [offset, value] :
         std::initializer_list<std::pair<size_t, uint32_t>>{{0, 0},
                                                            {0, 12},
                                                            {0, 0xFFFFFFFF},
                                                            {4, 0},
                                                            {4, 0x7FFFFFFF},
                                                            {4, 0xFFFFFFFF},
                                                            {16, 3},
                                                            {16, 1},
                                                            {32, 0xFFFF},
                                                            {32, 0xFFFFFFFF},
                                                            {32, 1000}}) {
        Resource resource(8, 8, 8, random);
        for (int i = 0; i < 4; ++i)
            resource.header[offset + size_t(i)] = static_cast<uint8_t>(value >> (8 * i));
        const IconRead r = read_icon(icon_of({resource}));
        ASSERT_EQ(r.status, KIRVO_OK);
        uint32_t colour;
        for (int32_t y = 0; y < 8; ++y)
            for (int32_t x = 0; x < 8; ++x)
                DibGetPixelColor(r.dib, x, y, &colour);
        const TempFile out(".bmp");
        DibWriteEx(out.name(), r.dib, 0, 0, -1, -1);
        EXPECT_TRUE(is_unlocked(r.dib));
    }
}

TEST(IcoGetData, sends_no_progress) {
    Random random(23);
    ProgressRecorder recorder;
    recorder.watch();
    EXPECT_EQ(read_icon(icon_of({{8, 8, 8, random}})).status, KIRVO_OK);
    EXPECT_TRUE(recorder.messages().empty());
}

TEST(Icons, made_by_other_programs_are_listed) {
    struct Case {
        const Bytes& file;
        Bytes short_record, long_record;
    };
    const Case cases[] = {
        {made_elsewhere::icon_four_colours,
         {16, 0, 12, 0, 5, 0},
         {22, 0, 0, 0, 16, 0, 12, 0, 5, 0, 0, 0}},
        {made_elsewhere::cursor_four_colours,
         {16, 0, 12, 0, 5, 0},
         {22, 0, 0, 0, 16, 0, 12, 0, 5, 0, 0, 0}},
        {made_elsewhere::icon_24_bits, {0, 1, 9, 0, 6, 0}, {22, 0, 0, 0, 0, 0, 9, 0, 6, 0, 0, 0}},
        {made_elsewhere::icon_32_bits, {0, 1, 9, 0, 6, 0}, {22, 0, 0, 0, 0, 0, 9, 0, 6, 0, 0, 0}},
    };
    for (const Case& c : cases) {
        Bytes records(6);
        EXPECT_EQ(list(c.file, records, 6), 1);
        EXPECT_EQ(records, c.short_record);
        records.assign(12, 0);
        EXPECT_EQ(list_ex(c.file, records, 12), 1);
        EXPECT_EQ(records, c.long_record);
    }
}

TEST(Icons, made_by_other_programs_of_few_colours_are_read) {
    for (const Bytes* file :
         {&made_elsewhere::icon_four_colours, &made_elsewhere::cursor_four_colours}) {
        const IconRead r = read_icon(*file);
        ASSERT_EQ(r.status, KIRVO_OK);
        ASSERT_EQ(r.bits, 4u);
        for (int32_t y = 0; y < 5; ++y)
            for (int32_t x = 0; x < 12; ++x) {
                const bool transparent = made_elsewhere::four_colours_transparent(x, y);
                EXPECT_EQ(r.mask.pixel(x, y), transparent ? 1u : 0u);
                const uint32_t rgb = transparent ? 0 : made_elsewhere::four_colours_pixel(x, y);
                uint32_t colour;
                ASSERT_EQ(DibGetPixelColor(r.dib, x, y, &colour), KIRVO_OK);
                EXPECT_EQ(colour, (rgb >> 16) | (rgb & 0xFF00) | (rgb & 0xFF) << 16);
            }
    }
}

TEST(Icons, made_by_other_programs_in_true_colour_are_read) {
    for (const Bytes* file : {&made_elsewhere::icon_24_bits, &made_elsewhere::icon_32_bits}) {
        const IconRead r = read_icon(*file);
        ASSERT_EQ(r.status, KIRVO_OK);
        ASSERT_EQ(r.width, 9u);
        ASSERT_EQ(r.height, 6u);
        for (int32_t y = 0; y < 6; ++y)
            for (int32_t x = 0; x < 9; ++x) {
                const bool transparent = made_elsewhere::true_colour_transparent(x, y);
                EXPECT_EQ(r.mask.pixel(x, y), transparent ? 1u : 0u) << x << ' ' << y;
                EXPECT_TRUE(transparent || (r.dib.pixel(x, y) & 0xFFFFFF) ==
                                               made_elsewhere::true_colour_pixel(x, y));
            }
    }
}
