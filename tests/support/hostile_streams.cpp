#include "support/hostile_streams.hpp"

namespace kirvo_test {

namespace {

constexpr int sof_baseline = 0xC0, sof_progressive = 0xC2, dht = 0xC4, soi = 0xD8, eoi = 0xD9,
              sos = 0xDA, app = 0xE3, com = 0xFE;
constexpr int across = 32; // blocks of a picture that grows with the scale

// The tables that most of the streams use: a difference of 0 is the bit 0, an end of block 0, and
// an end of band for 16384 blocks and more 10.
const CodeBook& dc_book() {
    static const CodeBook book({1}, {0});
    return book;
}
const CodeBook& ac_book() {
    static const CodeBook book({1, 1}, {0x00, 0xE0});
    return book;
}

void marker(Bytes& stream, int code) {
    stream.insert(stream.end(), {0xFF, static_cast<uint8_t>(code)});
}

void append(Bytes& stream, const Bytes& more) {
    stream.insert(stream.end(), more.begin(), more.end());
}

void tables(Bytes& stream, const CodeBook& dc, const CodeBook& ac) {
    Bytes content;
    for (int number = 0; number < 2; ++number)
        for (const CodeBook* book : {&dc, &ac}) {
            content.push_back(static_cast<uint8_t>(number + (book == &ac ? 0x10 : 0)));
            content.insert(content.end(), book->counts.begin(), book->counts.end());
            append(content, book->symbols);
        }
    add_segment(stream, dht, content);
}

void frame(Bytes& stream, int width, int height, bool progressive, bool colour = false) {
    const auto high = [](int v) { return static_cast<uint8_t>(v >> 8); };
    const auto low = [](int v) { return static_cast<uint8_t>(v); };
    Bytes content{8, high(height), low(height), high(width), low(width)};
    append(content, colour ? Bytes{3, 1, 0x22, 0, 2, 0x11, 0, 3, 0x11, 0} : Bytes{1, 1, 0x11, 0});
    add_segment(stream, progressive ? sof_progressive : sof_baseline, content);
}

void scan(Bytes& stream, const Bytes& components, int first = 0, int last = 63) {
    Bytes content{static_cast<uint8_t>(components.size())};
    for (const uint8_t id : components)
        content.insert(content.end(), {id, 0x00});
    content.insert(content.end(), {static_cast<uint8_t>(first), static_cast<uint8_t>(last), 0});
    add_segment(stream, sos, content);
}

Bytes start(int width, int height, bool progressive = false, const CodeBook& dc = dc_book(),
            const CodeBook& ac = ac_book()) {
    Bytes stream{0xFF, soi};
    tables(stream, dc, ac);
    frame(stream, width, height, progressive);
    return stream;
}

Bytes end(Bytes stream) {
    marker(stream, eoi);
    return stream;
}

// A grey picture of 32 x scale blocks and its baseline scan.
Bytes grey(int scale, const CodeBook& dc = dc_book(), const CodeBook& ac = ac_book()) {
    Bytes stream = start(8 * across, 8 * scale, false, dc, ac);
    scan(stream, {1});
    return stream;
}

Bytes tiny() {
    Bytes stream = start(8, 8);
    scan(stream, {1});
    return stream;
}

Bytes restarts_alone(int scale) {
    Bytes stream = tiny();
    marker(stream, 0); // the beginning of a code
    for (int i = 0; i < 256 * scale; ++i)
        marker(stream, 0xD0 + i % 8);
    stream.push_back(0x3F);
    return end(std::move(stream));
}

Bytes restart_before_each_block(int scale) {
    Bytes stream = grey(scale);
    for (int i = 0; i < across * scale; ++i) {
        stream.push_back(0x3F);
        marker(stream, 0xD0 + i % 8);
    }
    return end(std::move(stream));
}

Bytes fill_bytes_before_restart(int scale) {
    Bytes stream = start(16, 8);
    scan(stream, {1});
    stream.push_back(0x3F);
    stream.insert(stream.end(), static_cast<size_t>(512 * scale), 0xFF);
    stream.insert(stream.end(), {0xD0, 0x3F});
    return end(std::move(stream));
}

Bytes fill_bytes_before_data(int scale) {
    Bytes stream = tiny();
    stream.insert(stream.end(), static_cast<size_t>(512 * scale), 0xFF);
    stream.insert(stream.end(), {0xD0, 0x3F});
    return end(std::move(stream));
}

Bytes stuffed_bytes_alone(int scale) {
    Bytes stream = tiny();
    for (int i = 0; i < 256 * scale; ++i)
        marker(stream, 0);
    return end(std::move(stream));
}

// All 63 coefficients of every block, each written with the given bits.
Bytes full_blocks(int scale, const CodeBook& dc, const CodeBook& ac, int symbol, uint32_t value) {
    Bytes stream = grey(scale, dc, ac);
    EntropyWriter writer;
    for (int i = 0; i < across * scale; ++i) {
        writer.put_symbol(dc, 0);
        for (int k = 1; k < 64; ++k) {
            writer.put_symbol(ac, symbol);
            writer.put(value, symbol & 15);
        }
    }
    writer.align();
    append(stream, writer.bytes);
    return end(std::move(stream));
}

Bytes stuffed_bytes_in_blocks(int scale) {
    return full_blocks(scale, dc_book(), CodeBook({1}, {0x0F}), 0x0F, 0x7FFF);
}

CodeBook longest_codes(Bytes symbols) {
    std::array<uint8_t, 16> counts{};
    counts[15] = static_cast<uint8_t>(symbols.size());
    return {counts, symbols};
}

Bytes codes_of_16_bits(int scale) {
    return full_blocks(scale, longest_codes({1, 2, 0}), longest_codes({1, 2, 3, 4, 0x0A}), 0x0A,
                       0x155);
}

// Nothing follows the scan header but a byte, which is read over and over.
Bytes no_data(int scale) {
    Bytes stream = grey(scale, longest_codes({0}), longest_codes({0x0A}));
    stream.push_back(0x00);
    return stream;
}

Bytes repeated_segments(int scale, int code, const Bytes& content) {
    Bytes stream{0xFF, soi};
    for (int i = 0; i < 64 * scale; ++i)
        add_segment(stream, code, content);
    const Bytes rest = tiny();
    stream.insert(stream.end(), rest.begin() + 2, rest.end());
    stream.push_back(0x3F);
    return end(std::move(stream));
}

Bytes tiny_comments(int scale) { return repeated_segments(scale, com, {'x'}); }
Bytes empty_comments(int scale) { return repeated_segments(scale, com, {}); }
Bytes tiny_app_segments(int scale) { return repeated_segments(scale, app, {0}); }
Bytes long_app_segments(int scale) {
    return repeated_segments((scale + 63) / 64, app, Bytes(65533));
}

Bytes many_tables(int scale) {
    Bytes content{0x10};
    content.resize(17);
    content[16] = 255;
    for (int symbol = 0; symbol < 255; ++symbol)
        content.push_back(static_cast<uint8_t>(symbol));
    return repeated_segments(scale, dht, content);
}

Bytes markers_without_segment(int scale) {
    Bytes stream{0xFF, soi};
    for (int i = 0; i < 256 * scale; ++i)
        marker(stream, 0xF0);
    const Bytes rest = tiny();
    stream.insert(stream.end(), rest.begin() + 2, rest.end());
    stream.push_back(0x3F);
    return end(std::move(stream));
}

// The picture and the number of scans grow, so that work for every block in every scan would show.
Bytes repeated_scans(int scale, const Bytes& components, int first, int last, const Bytes& data,
                     bool with_tables = false) {
    Bytes stream = start(8 * across, 8 * scale, true);
    scan(stream, {}); // ahead of data there must be no marker
    stream.push_back(0x00);
    for (int i = 0; i < 8 * scale; ++i) {
        if (with_tables)
            tables(stream, dc_book(), ac_book());
        scan(stream, components, first, last);
        append(stream, data);
    }
    return end(std::move(stream));
}

Bytes empty_scans(int scale) { return repeated_scans(scale, {}, 0, 63, {}); }
Bytes scans_without_band(int scale) { return repeated_scans(scale, {1}, 9, 5, {}); }
// 10 and 14 ones: an end of 32767 blocks.
Bytes scans_of_ended_bands(int scale) {
    return repeated_scans(std::min(scale, 32767 / across), {1}, 1, 63, {0xBF, 0xFF, 0x00});
}
Bytes tables_before_each_scan(int scale) {
    return repeated_scans(std::min(scale, 32767 / across), {1}, 1, 63, {0xBF, 0xFF, 0x00}, true);
}

// A picture of one block in a thousand scans.
Bytes thousands_of_scans(int scale) {
    Bytes stream = start(8, 8, true);
    for (int i = 0; i < 64 * scale; ++i) {
        scan(stream, {1}, i % 2 == 0 ? 0 : 1, i % 2 == 0 ? 0 : 63);
        stream.push_back(0x3F);
    }
    return end(std::move(stream));
}

} // namespace

Bytes jpeg_header(int width, int height, bool progressive, bool colour) {
    Bytes stream{0xFF, soi};
    tables(stream, dc_book(), ac_book());
    frame(stream, width, height, progressive, colour);
    scan(stream, colour ? Bytes{1, 2, 3} : Bytes{1}, 0, progressive ? 0 : 63);
    return stream;
}

const std::vector<HostileStream>& hostile_streams() {
    constexpr int sound = 0, unexpected_marker = -11, bad_code = -14;
    static const std::vector<HostileStream> all = {
        {"restarts_alone", restarts_alone, sound},
        {"restart_before_each_block", restart_before_each_block, sound},
        {"fill_bytes_before_restart", fill_bytes_before_restart, sound},
        {"fill_bytes_before_data", fill_bytes_before_data, unexpected_marker},
        {"stuffed_bytes_alone", stuffed_bytes_alone, bad_code},
        {"stuffed_bytes_in_blocks", stuffed_bytes_in_blocks, sound},
        {"codes_of_16_bits", codes_of_16_bits, sound},
        {"no_data", no_data, sound},
        {"tiny_comments", tiny_comments, sound},
        {"empty_comments", empty_comments, sound},
        {"tiny_app_segments", tiny_app_segments, sound},
        {"long_app_segments", long_app_segments, sound},
        {"many_tables", many_tables, sound},
        {"markers_without_segment", markers_without_segment, sound},
        {"empty_scans", empty_scans, sound},
        {"scans_without_band", scans_without_band, sound},
        {"scans_of_ended_bands", scans_of_ended_bands, sound},
        {"tables_before_each_scan", tables_before_each_scan, sound},
        {"thousands_of_scans", thousands_of_scans, sound},
    };
    return all;
}

} // namespace kirvo_test
