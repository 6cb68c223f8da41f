#include "structure.hpp"

#include <algorithm>
#include <span>

namespace kirvo_fuzz {

namespace {

size_t index_below(Random& random, size_t count) {
    return static_cast<size_t>(random.between(0, static_cast<int32_t>(count) - 1));
}

// A number as it lies in a file.
struct Field {
    size_t at;
    int bytes;
};

enum class Order { little, big };

void put(Bytes& file, const Field& field, uint32_t value, Order order = Order::little) {
    for (int i = 0; i < field.bytes; ++i) {
        const size_t at = field.at + static_cast<size_t>(i);
        const int byte = order == Order::little ? i : field.bytes - 1 - i;
        if (at < file.size())
            file[at] = static_cast<uint8_t>(value >> (8 * byte));
    }
}

uint32_t get(const Bytes& file, const Field& field) {
    uint32_t value = 0;
    for (int i = field.bytes; i-- > 0;) {
        const size_t at = field.at + static_cast<size_t>(i);
        value = value << 8 | (at < file.size() ? file[at] : 0u);
    }
    return value;
}

uint32_t get_big(const Bytes& file, const Field& field) {
    return __builtin_bswap32(get(file, field));
}

// Small sizes, depths, sizes of headers and tables, and where numbers wrap.
uint32_t draw_value(Random& random) {
    static constexpr uint32_t values[] = {
        0,          1,          2,          3,          4,          5,          7,
        8,          9,          10,         11,         12,         14,         15,
        16,         17,         18,         24,         30,         31,         32,
        33,         40,         52,         54,         56,         63,         64,
        65,         108,        124,        127,        128,        129,        255,
        256,        257,        1024,       16383,      32767,      32768,      65535,
        65536,      0x7FFFFFFF, 0x80000000, 0x80000001, 0xAAAAAAAB, 0xFFFFFF00, 0xFFFFFFF0,
        0xFFFFFFFE, 0xFFFFFFFF, 0x40000000, 0x10000001, 0x55555556};
    return random.once_in(4) ? static_cast<uint32_t>(random.between(0, 300)) : random.pick(values);
}

void mutate_field(Bytes& file, std::span<const Field> fields, Random& random,
                  Order order = Order::little) {
    const Field& field = fields[index_below(random, fields.size())];
    const uint32_t before = order == Order::little ? get(file, field) : 0;
    const bool step = order == Order::little && random.once_in(4);
    put(file, field,
        step ? before + static_cast<uint32_t>(random.between(-2, 2)) : draw_value(random), order);
}

void insert(Bytes& file, size_t at, const Bytes& bytes) {
    file.insert(file.begin() + static_cast<ptrdiff_t>(std::min(at, file.size())), bytes.begin(),
                bytes.end());
}

// Behind a header of so many bytes.
size_t place_behind(const Bytes& file, size_t header, Random& random) {
    return file.size() <= header ? file.size()
                                 : header + index_below(random, file.size() - header + 1);
}

Bytes random_bytes(Random& random, int32_t most) {
    Bytes bytes(static_cast<size_t>(random.between(0, most)));
    random.fill(bytes.data(), bytes.size());
    return bytes;
}

void dib_fields(std::vector<Field>& fields, size_t at) {
    fields.insert(fields.end(), {{at, 4},
                                 {at + 4, 4},
                                 {at + 8, 4},
                                 {at + 12, 2},
                                 {at + 14, 2},
                                 {at + 14, 2},
                                 {at + 16, 4},
                                 {at + 20, 4},
                                 {at + 32, 4},
                                 {at + 36, 4},
                                 {at + 40, 4},
                                 {at + 44, 4},
                                 {at + 48, 4}});
}

// What a stream of marker segments and data falls apart into.
std::vector<Bytes> segments_of(const Bytes& stream) {
    std::vector<Bytes> segments;
    size_t at = 0;
    const auto byte = [&](size_t i) { return i < stream.size() ? stream[i] : uint8_t{0}; };
    while (at < stream.size()) {
        size_t end = at + 1;
        const uint8_t marker = byte(at + 1);
        if (byte(at) == 0xFF && marker >= 0xC0 && marker != 0xFF) {
            const bool alone = marker >= 0xD0 && marker <= 0xD9;
            end = at + 2 + (alone ? 0u : byte(at + 2) * 256u + byte(at + 3));
        } else {
            while (end < stream.size() && !(stream[end] == 0xFF && byte(end + 1) >= 0xC0 &&
                                            (byte(end + 1) & 0xF8) != 0xD0))
                ++end;
        }
        end = std::min(std::max(end, at + 1), stream.size());
        segments.emplace_back(stream.begin() + static_cast<ptrdiff_t>(at),
                              stream.begin() + static_cast<ptrdiff_t>(end));
        at = end;
    }
    return segments;
}

Bytes segment(uint8_t marker, const Bytes& content) {
    const size_t length = content.size() + 2;
    Bytes made = {0xFF, marker, static_cast<uint8_t>(length >> 8), static_cast<uint8_t>(length)};
    made.insert(made.end(), content.begin(), content.end());
    return made;
}

// Codes that fill the lengths up to some length, so that every sequence of bits means something, or
// fewer.
Bytes draw_codes(Random& random) {
    const bool ac = random.once_in(2);
    Bytes content = {static_cast<uint8_t>((ac ? 0x10 : 0) | random.between(0, 3))};
    int32_t open = 1, symbols = 0;
    for (int length = 1; length <= 16; ++length) {
        open = std::min(open * 2, 4096);
        const int32_t used = std::min(
            {random.once_in(2) ? random.between(0, open - 1) : open / 2, 255 - symbols, 40});
        content.push_back(static_cast<uint8_t>(used));
        open -= used;
        symbols += used;
    }
    for (int32_t i = 0; i < symbols; ++i)
        content.push_back(
            random.once_in(20) ? random.byte()
            : ac ? static_cast<uint8_t>(random.between(0, 4) << 4 | random.between(0, 6))
                 : static_cast<uint8_t>(random.between(0, 11)));
    return segment(0xC4, content);
}

Bytes draw_frame(Random& random) {
    static constexpr uint8_t samplings[] = {0x11, 0x21, 0x12, 0x22, 0x41, 0x14, 0x31, 0x00, 0x44};
    static constexpr uint8_t frames[] = {0xC0, 0xC0, 0xC2, 0xC2, 0xC1, 0xC3, 0xC9};
    const auto size = [&] { return static_cast<uint8_t>(random.between(1, 65)); };
    const int components = random.once_in(3) ? 1 : 3;
    Bytes content = {8, 0, size(), 0, size(), static_cast<uint8_t>(components)};
    for (int i = 1; i <= components; ++i)
        content.insert(content.end(),
                       {static_cast<uint8_t>(i),
                        i == 1 || random.once_in(6) ? random.pick(samplings) : uint8_t{0x11},
                        static_cast<uint8_t>(random.between(0, 3))});
    return segment(random.pick(frames), content);
}

Bytes draw_scan(Random& random) {
    const int components = random.once_in(2) ? 1 : 3;
    Bytes content = {static_cast<uint8_t>(components)};
    for (int i = 0; i < components; ++i)
        content.insert(content.end(),
                       {static_cast<uint8_t>(components == 1 ? random.between(1, 3) : i + 1),
                        static_cast<uint8_t>(random.between(0, 3) << 4 | random.between(0, 3))});
    const bool dc = random.once_in(2);
    const int32_t high = random.between(0, 3);
    const auto start = static_cast<uint8_t>(dc ? 0 : random.between(1, 63));
    const auto end =
        static_cast<uint8_t>(dc ? 63 * random.between(0, 1) : random.between(start, 63));
    content.insert(content.end(), {start, end,
                                   static_cast<uint8_t>(
                                       high << 4 | (high != 0 ? high - 1 : random.between(0, 2)))});
    return segment(0xDA, content);
}

Bytes draw_segment(Random& random) {
    switch (random.between(0, 9)) {
    case 0:
    case 1:
        return draw_codes(random);
    case 2: {
        Bytes content = {static_cast<uint8_t>(random.between(0, 3))};
        for (int i = 0; i < 64; ++i)
            content.push_back(random.once_in(8) ? random.byte() : uint8_t{1});
        return segment(0xDB, content);
    }
    case 3:
        return segment(0xDD, {0, static_cast<uint8_t>(random.between(0, 4))});
    case 4:
        return draw_frame(random);
    case 5:
    case 6:
        return draw_scan(random);
    case 7:
        return segment(0xFE, random_bytes(random, 40));
    case 8:
        return segment(0xDC, {0, static_cast<uint8_t>(random.between(0, 64))});
    default:
        return {0xFF, static_cast<uint8_t>(random.between(0xC0, 0xFF))};
    }
}

// The sum behind a chunk of a PNG file.
uint32_t crc_of(const uint8_t* bytes, size_t count) {
    uint32_t sum = 0xFFFFFFFF;
    for (; count != 0; --count) {
        sum ^= *bytes++;
        for (int bit = 0; bit < 8; ++bit)
            sum = sum >> 1 ^ (0xEDB88320 & (0u - (sum & 1)));
    }
    return ~sum;
}

void mutate_content(Bytes& part, Random& random) {
    static constexpr uint8_t marks[] = {0x00, 0xD0, 0xD1, 0xD2, 0xD7, 0xD8, 0xD9, 0xFF, 0xDA};
    const size_t at = place_behind(part, 2, random);
    switch (random.between(0, 4)) {
    case 0:
        insert(part, at, {0xFF, random.pick(marks)});
        break;
    case 1:
        insert(part, at, random_bytes(random, 12));
        break;
    case 2:
        part.resize(std::max<size_t>(at, 1));
        break;
    case 3:
        put(part, {2, 2}, random.next()); // the length
        break;
    default: {
        const Field field[] = {{at, 1}};
        mutate_field(part, field, random);
    }
    }
}

// One of the parts that a file is made of is removed, doubled, moved, or changed by
// change(part, is it the first).
template<typename Change>
void mutate_one(std::vector<Bytes>& parts, Random& random, const Change& change) {
    const size_t chosen = index_below(random, parts.size());
    Bytes& one = parts[chosen];
    const auto place = parts.begin() + static_cast<ptrdiff_t>(index_below(random, parts.size()));
    switch (random.between(0, 4)) {
    case 0:
        one.clear();
        break;
    case 1:
        parts.insert(place, Bytes(one));
        break;
    case 2:
        std::swap(one, *place);
        break;
    default:
        change(one, chosen == 0);
    }
}

Bytes joined(const std::vector<Bytes>& parts) {
    Bytes whole;
    for (const Bytes& part : parts)
        whole.insert(whole.end(), part.begin(), part.end());
    return whole;
}

// A file of chunks behind a signature: the length first or, little-endian, behind the kind, then
// the content with something behind it.
template<typename Change>
void mutate_chunks(Bytes& file, size_t signature, Order order, size_t behind, Random& random,
                   const Change& change) {
    signature = std::min(signature, file.size());
    const Bytes start(file.begin(), file.begin() + static_cast<ptrdiff_t>(signature));
    std::vector<Bytes> chunks;
    for (size_t at = signature; at < file.size();) {
        const uint64_t length =
            order == Order::big ? get_big(file, {at, 4}) : get(file, {at + 4, 4});
        const uint64_t whole = 8 + length + (order == Order::little ? length % 2 : 0) + behind;
        const size_t end = at + static_cast<size_t>(std::min<uint64_t>(whole, file.size() - at));
        chunks.emplace_back(file.begin() + static_cast<ptrdiff_t>(at),
                            file.begin() + static_cast<ptrdiff_t>(end));
        at = end;
    }
    if (chunks.empty())
        chunks.push_back(Bytes(8 + behind));
    mutate_one(chunks, random, change);
    chunks.insert(chunks.begin(), start);
    file = joined(chunks);
}

} // namespace

void mutate_jpeg(Bytes& file, Random& random) {
    std::vector<Bytes> parts = segments_of(file);
    if (parts.empty())
        parts.push_back({0xFF, 0xD8});
    if (random.once_in(6))
        parts.insert(parts.begin() + static_cast<ptrdiff_t>(index_below(random, parts.size())),
                     draw_segment(random));
    else
        mutate_one(parts, random, [&](Bytes& part, bool) { mutate_content(part, random); });
    file = joined(parts);
}

void mutate_bmp(Bytes& file, Random& random) {
    if (random.once_in(4)) { // a run, a run of its own bytes, the end of a row or of all, a jump
        const Bytes runs[] = {{static_cast<uint8_t>(random.between(1, 255)), random.byte()},
                              {0, 3, 1, 2, 3, 0},
                              {0, static_cast<uint8_t>(random.between(3, 255))},
                              {0, 0},
                              {0, 1},
                              {0, 2, random.byte(), static_cast<uint8_t>(random.between(0, 9))}};
        insert(file, place_behind(file, get(file, {10, 4}) % 2048, random), random.pick(runs));
        return;
    }
    std::vector<Field> fields = {{2, 4}, {10, 4}};
    dib_fields(fields, 14);
    mutate_field(file, fields, random);
}

void mutate_targa(Bytes& file, Random& random) {
    static constexpr Field fields[] = {{0, 1},  {1, 1},  {2, 1},  {3, 2},  {5, 2},  {7, 1},
                                       {12, 2}, {14, 2}, {12, 1}, {14, 1}, {16, 1}, {17, 1}};
    if (random.once_in(4)) { // a run or a row of pixels
        Bytes packet = {random.byte()};
        const Bytes pixel = random_bytes(random, 4);
        packet.insert(packet.end(), pixel.begin(), pixel.end());
        insert(file, place_behind(file, 18, random), packet);
        return;
    }
    mutate_field(file, fields, random);
}

void mutate_icon(Bytes& file, Random& random) {
    std::vector<Field> fields = {{0, 2}, {2, 2}, {4, 2}};
    const size_t entry = 6 + 16 * index_below(random, std::clamp<size_t>(get(file, {4, 2}), 1, 8));
    if (random.once_in(6)) { // the list gets longer
        const auto first = file.begin() + static_cast<ptrdiff_t>(std::min(entry, file.size()));
        const Bytes copy(first, first + std::min<ptrdiff_t>(16, file.end() - first));
        insert(file, entry, copy);
        return;
    }
    const size_t from = entry;
    fields.insert(fields.end(), {{from, 1},
                                 {from + 1, 1},
                                 {from + 2, 1},
                                 {from + 4, 2},
                                 {from + 6, 2},
                                 {from + 8, 4},
                                 {from + 12, 4}});
    dib_fields(fields, get(file, {entry + 12, 4}) % 4096);
    mutate_field(file, fields, random);
}

void mutate_dib(Bytes& file, Random& random) {
    std::vector<Field> fields;
    dib_fields(fields, 0);
    mutate_field(file, fields, random);
}

void mutate_raw(Bytes& file, Random& random) {
    static constexpr Field fields[] = {{0, 4}, {4, 4}, {8, 2}, {10, 2}, {12, 4}, {9, 1}, {11, 1}};
    mutate_field(file, fields, random, random.once_in(2) ? Order::big : Order::little);
}

void mutate_tiff(Bytes& file, Random& random) {
    const bool little = !file.empty() && file[0] == 'I';
    const size_t directory = little ? get(file, {4, 4}) % 4096 : (get(file, {4, 4}) >> 24) % 4096;
    const size_t entry = directory + 2 + 12 * index_below(random, 12);
    if (random.once_in(5) && entry + 12 <= file.size()) {
        const auto first = file.begin() + static_cast<ptrdiff_t>(entry);
        const Bytes copy(first, first + 12);
        insert(file, entry, copy);
        return;
    }
    static constexpr uint32_t tags[] = {256, 257, 258, 259,   262,   273,   274,   277, 282,
                                        305, 306, 315, 34665, 34853, 40962, 40965, 513, 514};
    const Order order = little ? Order::little : Order::big;
    if (random.once_in(4)) {
        put(file, {entry, 2}, random.pick(tags), order);
        return;
    }
    const Field fields[] = {{4, 4},         {directory, 2}, {entry + 2, 2}, {entry + 2, 2},
                            {entry + 4, 4}, {entry + 8, 4}, {entry + 8, 2}, {entry + 4, 4}};
    mutate_field(file, fields, random, order);
}

void mutate_png(Bytes& file, Random& random) {
    static constexpr Field header[] = {{8, 4},  {12, 4}, {11, 1}, {15, 1},
                                       {16, 1}, {17, 1}, {20, 1}};
    static constexpr uint32_t kinds[] = {0x49444154, 0x504C5445, 0x74524E53, 0x74455874,
                                         0x7A545874, 0x69545874, 0x69434350, 0x65584966};
    mutate_chunks(file, 8, Order::big, 4, random, [&](Bytes& chunk, bool first) {
        if (first)
            mutate_field(chunk, header, random, Order::big);
        else if (random.once_in(3))
            put(chunk, {4, 4}, random.pick(kinds), Order::big);
        else
            mutate_content(chunk, random);
        const size_t end = std::max<size_t>(chunk.size(), 12) - 4;
        chunk.resize(end + 4);
        put(chunk, {0, 4}, static_cast<uint32_t>(end - 8), Order::big);
        put(chunk, {end, 4}, crc_of(chunk.data() + 4, end - 4), Order::big);
    });
}

void mutate_webp(Bytes& file, Random& random) {
    static constexpr uint32_t kinds[] = {0x20385056, 0x4C385056, 0x58385056, 0x48504C41,
                                         0x46494E41, 0x464D4E41, 0x50434349, 0x46495845};
    mutate_chunks(file, 12, Order::little, 0, random, [&](Bytes& chunk, bool) {
        if (random.once_in(6))
            put(chunk, {0, 4}, random.pick(kinds));
        else
            mutate_content(chunk, random);
        chunk.resize(std::max<size_t>((chunk.size() + 1) & ~size_t{1}, 8));
        put(chunk, {4, 4}, static_cast<uint32_t>(chunk.size() - 8));
    });
    put(file, {4, 4}, static_cast<uint32_t>(file.size() - std::min<size_t>(file.size(), 8)));
}

void mutate_gif(Bytes& file, Random& random) {
    static constexpr Field fields[] = {{6, 2}, {8, 2}, {10, 1}, {6, 1}, {8, 1}};
    if (random.once_in(2)) {
        mutate_field(file, fields, random);
        return;
    }
    // A frame of some size without colours of its own, an extension, or any bytes.
    const auto size = [&] { return static_cast<uint8_t>(random.between(1, 255)); };
    Bytes frame = {',', 0, 0, 0, 0, size(), 0, size(), 0, 0, 8};
    const Bytes codes = random_bytes(random, 255);
    frame.push_back(static_cast<uint8_t>(codes.size()));
    frame.insert(frame.end(), codes.begin(), codes.end());
    const Bytes parts[] = {frame,
                           {'!', 0xFE, 3, 1, 2, 3, 0},
                           {'!', 0xF9, 4, 1, 0, 0, 7, 0},
                           {1, random.byte()},
                           random_bytes(random, 12)};
    insert(file, place_behind(file, 13, random), random.pick(parts));
}

void mutate_parts(Bytes& bytes, std::vector<size_t> places, Random& random) {
    if (places.size() < 2)
        return;
    const auto part = [&] {
        const size_t i = index_below(random, places.size() - 1);
        return std::pair(bytes.begin() + static_cast<ptrdiff_t>(places[i]),
                         bytes.begin() + static_cast<ptrdiff_t>(places[i + 1]));
    };
    const auto [first, last] = part();
    const Bytes content(first, last);
    switch (random.between(0, 2)) {
    case 0:
        bytes.erase(first, last);
        break;
    case 1:
        insert(bytes, static_cast<size_t>(part().first - bytes.begin()), content);
        break;
    default: {
        const size_t to = static_cast<size_t>(part().first - bytes.begin());
        const size_t from = static_cast<size_t>(first - bytes.begin());
        bytes.erase(first, last);
        insert(bytes, to > from ? std::max(to, from + content.size()) - content.size() : to,
               content);
    }
    }
}

} // namespace kirvo_fuzz
