#include "jpeg_coefficients.hpp"

#include "jpeg_huffman.hpp"
#include "jpeg_planes.hpp"

#include <initializer_list>

namespace kirvo_files {
namespace {

// Where a block or a place among them comes from when whole MCUs are mirrored and what is left over
// at the far edge stays.
struct Mirror {
    uint32_t whole; // of the places that are mirrored
    bool on;
    bool flips(uint32_t at) const { return on && at < whole; }
    uint32_t from(uint32_t at) const { return flips(at) ? whole - 1 - at : at; }
};

void turn_block(const int16_t* in, bool transpose, bool flip_across, bool flip_down, int16_t* out) {
    for (uint32_t row = 0; row < 8; ++row)
        for (uint32_t column = 0; column < 8; ++column) {
            const int16_t value = in[transpose ? column * 8 + row : row * 8 + column];
            const bool minus = ((flip_across && column % 2 != 0) != (flip_down && row % 2 != 0));
            out[row * 8 + column] = static_cast<int16_t>(minus ? -value : value);
        }
}

void turn_plane(const Plane& from, const TurnPlan& plan, const JpegHeaders& turned, Plane& to) {
    const Mirror across = {turned.width / turned.mcu_width() * to.per_mcu_across, plan.flip_across};
    const Mirror down = {turned.height / turned.mcu_height() * to.per_mcu_down, plan.flip_down};
    for (uint32_t y = 0; y < to.down; ++y)
        for (uint32_t x = 0; x < to.across; ++x) {
            const uint32_t column = across.from(x), row = down.from(y);
            turn_block(plan.transpose ? from.block(row, column) : from.block(column, row),
                       plan.transpose, across.flips(x), down.flips(y), to.block(x, y));
        }
}

// ---- writing ----

uint32_t size_of(int32_t value) {
    uint32_t magnitude = static_cast<uint32_t>(value < 0 ? -value : value), size = 0;
    for (; magnitude != 0; magnitude >>= 1)
        ++size;
    return size;
}

class Writer {
  public:
    // With the headers of what is to be written.
    Writer(Bytes in, const JpegHeaders& headers, bool transpose, const Plane (&planes)[4],
           Buffer& out)
        : in_(in), headers_(headers), transpose_(transpose), planes_(planes), out_(out) {}

    Status write() {
        good_ = out_.append(in_.part(0, 2));
        copy_segments();
        frame();
        scans();
        bytes({0xFF, 0xD9});
        if (uncoded_) // coefficients larger than any picture has
            return KIRVO_FILES_DAMAGED;
        return good_ ? KIRVO_FILES_OK : KIRVO_FILES_NO_MEMORY;
    }

  private:
    void bytes(std::initializer_list<uint32_t> values) {
        for (uint32_t value : values) {
            const auto byte = static_cast<uint8_t>(value);
            good_ = good_ && out_.append(&byte, 1);
        }
    }

    void number(uint32_t value) { good_ = good_ && out_.append_be16(value); }

    // Metadata and comments; quantisers too, turned where the picture is.
    void copy_segments() {
        for (uint64_t at = 2; good_ && at < headers_.scan_at;) {
            const JpegSegment segment = next_jpeg_segment(in_, at);
            if ((segment.marker >= 0xE0 && segment.marker <= 0xEF) || segment.marker == 0xFE)
                good_ = out_.append(segment.bytes);
            else if (segment.marker == 0xDB)
                quantisers(segment.bytes);
        }
    }

    void quantisers(Bytes segment) {
        good_ = good_ && out_.append(segment.part(0, 4));
        for (uint64_t at = 4; segment.has(at, 1);) {
            const uint32_t each = segment[at] >> 4 == 0 ? 1 : 2; // bytes
            uint16_t rows[64];
            for (uint32_t i = 0; i < 64; ++i)
                rows[zigzag[i]] = each == 1 ? segment[at + 1 + i] : segment.be16(at + 1 + 2 * i);
            bytes({segment[at]});
            for (const uint8_t place : zigzag) {
                const uint16_t step = rows[transpose_ ? place % 8 * 8 + place / 8 : place];
                each == 1 ? bytes({step}) : number(step);
            }
            at += 1 + 64 * each;
        }
    }

    // Of a sequential file only what any decoder takes is called baseline.
    void frame() {
        const bool baseline = headers_.precision == 8 && !headers_.wide_quantisers;
        bytes({0xFF,
               headers_.is_progressive() ? 0xC2u
               : baseline                ? 0xC0u
                                         : 0xC1u,
               0, 8 + 3 * headers_.components, headers_.precision});
        number(headers_.height);
        number(headers_.width);
        bytes({headers_.components});
        for (uint32_t i = 0; i < headers_.components; ++i)
            bytes({headers_.component[i].id,
                   planes_[i].per_mcu_across << 4 | planes_[i].per_mcu_down,
                   headers_.component[i].quantiser});
    }

    // All components in a scan, where an MCU has no more blocks than may be; of a progressive file
    // the first coefficients alone, then the bands of each component.
    void scans() {
        const bool progressive = headers_.is_progressive();
        const uint32_t last = progressive ? 0 : 63;
        uint32_t blocks = 0;
        for (uint32_t i = 0; i < headers_.components; ++i)
            blocks += planes_[i].per_mcu_across * planes_[i].per_mcu_down;
        if (headers_.components == 1 || blocks <= 10)
            scan(0, headers_.components, 0, last);
        else
            for (uint32_t i = 0; i < headers_.components; ++i)
                scan(i, 1, 0, last);
        for (uint32_t i = 0; progressive && i < headers_.components; ++i)
            scan(i, 1, 1, 5);
        for (uint32_t i = 0; progressive && i < headers_.components; ++i)
            scan(i, 1, 6, 63);
    }

    // Components from one on, with the tables that are best for them: walked twice.
    void scan(uint32_t component, uint32_t count, uint32_t first, uint32_t last) {
        first_ = first;
        last_ = last;
        for (auto& kind : counts_)
            for (SymbolCounts& counts : kind)
                counts = SymbolCounts();
        counting_ = true;
        blocks(component, count);
        counting_ = false;
        tables(component, count);
        bytes({0xFF, 0xDA, 0, 6 + 2 * count, count});
        for (uint32_t i = component; i < component + count; ++i)
            bytes({headers_.component[i].id, table_of(i) * 0x11});
        bytes({first, last, 0});
        blocks(component, count);
        put(0x7F, 7); // the last byte is filled with ones
        held_count_ = 0;
    }

    // Luma and black have one, chroma the other.
    static uint32_t table_of(uint32_t i) { return i == 1 || i == 2 ? 1 : 0; }

    void tables(uint32_t component, uint32_t count) {
        bool made[2] = {};
        for (uint32_t i = component; i < component + count; ++i) {
            const uint32_t number = table_of(i);
            for (uint32_t kind = 0; kind < 2 && !made[number]; ++kind)
                if (kind == 0 ? first_ == 0 : last_ != 0)
                    table(kind, number);
            made[number] = true;
        }
    }

    void table(uint32_t kind, uint32_t number_of_it) {
        const Bytes table = counts_[kind][number_of_it].best_table();
        code_[kind][number_of_it] = HuffmanCode();
        code_[kind][number_of_it].make(table);
        bytes({0xFF, 0xC4});
        number(static_cast<uint32_t>(table.size()) + 3);
        bytes({kind << 4 | number_of_it});
        good_ = good_ && out_.append(table);
    }

    // A component alone comes block by block, and only as far as it has pixels.
    void blocks(uint32_t component, uint32_t count) {
        std::memset(last_dc_, 0, sizeof last_dc_);
        const bool alone = count == 1;
        const uint32_t across = alone ? headers_.own_across(component) : headers_.mcus_across();
        const uint32_t down = alone ? headers_.own_down(component) : headers_.mcus_down();
        for (uint32_t y = 0; y < down; ++y)
            for (uint32_t x = 0; x < across; ++x)
                for (uint32_t i = component; i < component + count; ++i) {
                    const uint32_t in_x = alone ? 1 : planes_[i].per_mcu_across;
                    const uint32_t in_y = alone ? 1 : planes_[i].per_mcu_down;
                    for (uint32_t row = 0; row < in_y; ++row)
                        for (uint32_t column = 0; column < in_x; ++column)
                            block(i, planes_[i].block(x * in_x + column, y * in_y + row));
                }
        end_blocks(table_of(component));
    }

    void block(uint32_t i, const int16_t* values) {
        if (first_ == 0) {
            const int32_t difference = values[0] - last_dc_[i];
            const uint32_t size = size_of(difference);
            last_dc_[i] = values[0];
            uncoded_ |= size > (headers_.precision == 8 ? 11 : 15);
            put_symbol(0, table_of(i), size & 15);
            put_value(difference, size);
        }
        if (last_ != 0)
            band(table_of(i), values);
    }

    void band(uint32_t table, const int16_t* values) {
        uint32_t run = 0;
        for (uint32_t k = first_ == 0 ? 1 : first_; k <= last_; ++k) {
            const int32_t value = values[zigzag[k]];
            if (value == 0) {
                ++run;
                continue;
            }
            end_blocks(table);
            for (; run > 15; run -= 16)
                put_symbol(1, table, 0xF0);
            const uint32_t size = size_of(value);
            uncoded_ |= size > (headers_.precision == 8 ? 10 : 14);
            put_symbol(1, table, run << 4 | (size & 15));
            put_value(value, size);
            run = 0;
        }
        if (run == 0)
            return;
        ++blocks_ended_;
        if (first_ == 0 || blocks_ended_ == 0x7FFF) // a sequential scan has no runs of them
            end_blocks(table);
    }

    // Writes how many blocks have ended since the last coefficient.
    void end_blocks(uint32_t table) {
        if (blocks_ended_ == 0)
            return;
        const uint32_t bits = size_of(static_cast<int32_t>(blocks_ended_)) - 1;
        put_symbol(1, table, bits << 4);
        if (!counting_)
            put(blocks_ended_ & ((1u << bits) - 1), bits);
        blocks_ended_ = 0;
    }

    void put_symbol(uint32_t kind, uint32_t table, uint32_t symbol) {
        if (counting_)
            counts_[kind][table].add(symbol);
        else
            put(code_[kind][table].bits[symbol], code_[kind][table].lengths[symbol]);
    }

    void put_value(int32_t value, uint32_t size) {
        if (!counting_)
            put(static_cast<uint32_t>(value < 0 ? value - 1 : value) & ((1u << size) - 1), size);
    }

    void put(uint32_t value, uint32_t count) {
        held_ = held_ << count | value;
        held_count_ += count;
        while (held_count_ >= 8) {
            const auto byte = static_cast<uint8_t>(held_ >> (held_count_ - 8));
            held_count_ -= 8;
            good_ = good_ && out_.append(&byte, 1) && (byte != 0xFF || out_.append("", 1));
        }
    }

    Bytes in_;
    const JpegHeaders& headers_;
    bool transpose_;
    const Plane (&planes_)[4];
    Buffer& out_;
    uint32_t first_ = 0, last_ = 63; // the band of the scan
    bool counting_ = false;
    SymbolCounts counts_[2][2]; // DC and AC
    HuffmanCode code_[2][2];
    int16_t last_dc_[4] = {};
    uint32_t blocks_ended_ = 0;
    uint64_t held_ = 0;
    uint32_t held_count_ = 0;
    bool good_ = true, uncoded_ = false;
};

} // namespace

Status turn_coefficients(Bytes in, const JpegHeaders& headers, const TurnPlan& plan, Buffer& out) {
    if (!has_huffman_codes(headers))
        return KIRVO_FILES_NO_CODEC;
    JpegHeaders turned = headers;
    turned.width = plan.width;
    turned.height = plan.height;
    if (plan.transpose) {
        std::swap(turned.most_across, turned.most_down);
        for (JpegComponent& component : turned.component)
            std::swap(component.across, component.down);
    }
    Plane from[4], to[4];
    if (!make_planes(headers, from) || !make_planes(turned, to))
        return KIRVO_FILES_NO_MEMORY;
    const Walk walk = read_coefficients(in, headers, from);
    if (!walk.complete)
        return walk.unknown ? KIRVO_FILES_NO_CODEC : KIRVO_FILES_DAMAGED;
    for (uint32_t i = 0; i < headers.components; ++i) {
        turn_plane(from[i], plan, turned, to[i]);
        from[i] = Plane();
    }
    return Writer(in, turned, plan.transpose, to, out).write();
}

} // namespace kirvo_files
