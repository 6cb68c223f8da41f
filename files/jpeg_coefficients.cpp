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

class Writer {
  public:
    // With the headers of what is to be written.
    Writer(Bytes in, const JpegHeaders& headers, bool transpose, const Plane (&planes)[3],
           Buffer& out)
        : in_(in), headers_(headers), transpose_(transpose), planes_(planes), out_(out) {}

    Status write() {
        good_ = out_.append(in_.part(0, 2));
        copy_segments();
        tables();
        frame();
        scan();
        if (uncoded_) // coefficients larger than any picture has
            return KIRVO_FILES_NO_CODEC;
        return good_ ? KIRVO_FILES_OK : KIRVO_FILES_NO_MEMORY;
    }

  private:
    void bytes(std::initializer_list<uint32_t> values) {
        for (uint32_t value : values) {
            const auto byte = static_cast<uint8_t>(value);
            good_ = good_ && out_.append(&byte, 1);
        }
    }

    // Metadata and comments; quantisers too, turned where the picture is.
    void copy_segments() {
        for (uint64_t at = 2; good_ && in_[at] == 0xFF && in_[at + 1] != 0xDA;) {
            const Bytes segment = in_.part(at, uint64_t{2} + in_.be16(at + 2));
            const uint8_t marker = in_[at + 1];
            if ((marker >= 0xE0 && marker <= 0xEF) || marker == 0xFE)
                good_ = out_.append(segment);
            else if (marker == 0xDB)
                quantisers(segment);
            at += segment.size();
        }
    }

    void quantisers(Bytes segment) {
        good_ = good_ && out_.append(segment.part(0, 4));
        for (uint64_t at = 4; segment.has(at, 65); at += 65) {
            uint8_t rows[64], list[65];
            for (uint32_t i = 0; i < 64; ++i)
                rows[zigzag[i]] = segment[at + 1 + i];
            list[0] = segment[at];
            for (uint32_t i = 0; i < 64; ++i)
                list[1 + i] = rows[transpose_ ? zigzag[i] % 8 * 8 + zigzag[i] / 8 : zigzag[i]];
            good_ = good_ && out_.append(list, sizeof list);
        }
    }

    void tables() {
        for (uint32_t i = 0; i < (headers_.components > 1 ? 2u : 1u); ++i)
            for (uint32_t kind = 0; kind < 2; ++kind) {
                const Bytes table = usual_huffman_table(kind, i);
                code_[kind][i].make(table);
                bytes({0xFF, 0xC4});
                good_ = good_ && out_.append_be16(static_cast<uint32_t>(table.size()) + 3);
                bytes({kind << 4 | i});
                good_ = good_ && out_.append(table);
            }
    }

    void frame() {
        bytes({0xFF, 0xC0, 0, 8 + 3 * headers_.components, 8});
        good_ = good_ && out_.append_be16(headers_.height) && out_.append_be16(headers_.width);
        bytes({headers_.components});
        for (uint32_t i = 0; i < headers_.components; ++i)
            bytes({headers_.component[i].id,
                   planes_[i].per_mcu_across << 4 | planes_[i].per_mcu_down,
                   headers_.component[i].quantiser});
        bytes({0xFF, 0xDA, 0, 6 + 2 * headers_.components, headers_.components});
        for (uint32_t i = 0; i < headers_.components; ++i)
            bytes({headers_.component[i].id, i != 0 ? 0x11u : 0u});
        bytes({0, 63, 0});
    }

    void scan() {
        int16_t last_dc[3] = {};
        for (uint32_t y = 0; y < headers_.mcus_down(); ++y)
            for (uint32_t x = 0; x < headers_.mcus_across(); ++x)
                for (uint32_t i = 0; i < headers_.components; ++i)
                    for (uint32_t row = 0; row < planes_[i].per_mcu_down; ++row)
                        for (uint32_t column = 0; column < planes_[i].per_mcu_across; ++column) {
                            const int16_t* values =
                                planes_[i].block(x * planes_[i].per_mcu_across + column,
                                                 y * planes_[i].per_mcu_down + row);
                            block(values, values[0] - last_dc[i], i != 0 ? 1 : 0);
                            last_dc[i] = values[0];
                        }
        put(0x7F, 7); // the last byte is filled with ones
        bytes({0xFF, 0xD9});
    }

    static uint32_t size_of(int32_t value) {
        uint32_t magnitude = static_cast<uint32_t>(value < 0 ? -value : value), size = 0;
        while (magnitude != 0) {
            magnitude >>= 1;
            ++size;
        }
        return size;
    }

    void put_value(int32_t value, uint32_t size) {
        put(static_cast<uint32_t>(value < 0 ? value - 1 : value) & ((1u << size) - 1), size);
    }

    void put_symbol(const HuffmanCode& code, uint32_t symbol) {
        uncoded_ |= symbol > 255 || code.lengths[symbol & 255] == 0;
        put(code.bits[symbol & 255], code.lengths[symbol & 255]);
    }

    void block(const int16_t* values, int32_t difference, uint32_t table) {
        const uint32_t size = size_of(difference);
        put_symbol(code_[0][table], size);
        put_value(difference, size);
        uint32_t run = 0;
        for (uint32_t k = 1; k < 64; ++k) {
            const int32_t value = values[zigzag[k]];
            if (value == 0) {
                ++run;
                continue;
            }
            for (; run > 15; run -= 16)
                put_symbol(code_[1][table], 0xF0);
            const uint32_t bits = size_of(value);
            put_symbol(code_[1][table], run << 4 | bits);
            put_value(value, bits);
            run = 0;
        }
        if (run != 0)
            put_symbol(code_[1][table], 0);
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
    const Plane (&planes_)[3];
    Buffer& out_;
    HuffmanCode code_[2][2];
    uint64_t held_ = 0;
    uint32_t held_count_ = 0;
    bool good_ = true, uncoded_ = false;
};

} // namespace

Status turn_coefficients(Bytes in, const JpegHeaders& headers, const TurnPlan& plan, Buffer& out) {
    if (headers.frame != 0xC0 || headers.precision != 8 || headers.wide_quantisers ||
        headers.components > 3 || headers.odd_segments ||
        headers.scan_components != headers.components)
        return KIRVO_FILES_NO_CODEC;
    JpegHeaders turned = headers;
    turned.width = plan.width;
    turned.height = plan.height;
    if (plan.transpose) {
        std::swap(turned.most_across, turned.most_down);
        for (JpegComponent& component : turned.component)
            std::swap(component.across, component.down);
    }
    Plane from[3], to[3];
    if (!make_planes(headers, from) || !make_planes(turned, to))
        return KIRVO_FILES_NO_MEMORY;
    if (!read_coefficients(in, headers, &from).complete)
        return KIRVO_FILES_DAMAGED;
    for (uint32_t i = 0; i < headers.components; ++i) {
        turn_plane(from[i], plan, turned, to[i]);
        from[i] = Plane();
    }
    return Writer(in, turned, plan.transpose, to, out).write();
}

} // namespace kirvo_files
