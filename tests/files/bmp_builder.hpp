// BMP files of any variant, put together field by field.
#pragma once

#include "files/opened.hpp"

namespace kirvo_test {

struct Bmp {
    uint32_t header = 40;
    int32_t width = 5, height = 3;
    uint32_t bits = 24, compression = 0, colours = 0;
    std::vector<uint32_t> masks;   // red, green, blue, alpha
    std::vector<uint32_t> palette; // 0xRRGGBB
    uint32_t gap = 0;              // bytes before the pixels
    Bytes pixels;

    Bytes file() const {
        Bytes head;
        const bool os2 = header == 12;
        if (os2) {
            add32(head, {12});
            add16(head, {static_cast<uint32_t>(width), static_cast<uint32_t>(height), 1, bits});
        } else {
            add32(head, {header, static_cast<uint32_t>(width), static_cast<uint32_t>(height),
                         1 | bits << 16, compression, static_cast<uint32_t>(pixels.size()), 2835,
                         2835, colours, 0});
            for (uint32_t mask : masks)
                add32(head, {mask});
            if (header > 40 && head.size() < header)
                head.resize(header);
            head.resize(header > head.size() ? header : head.size());
        }
        for (uint32_t colour : palette)
            for (uint32_t i = 0; i < (os2 ? 3u : 4u); ++i)
                head.push_back(static_cast<uint8_t>(i < 3 ? colour >> 8 * i : 0xA5));
        head.resize(head.size() + gap, 0xEE);
        Bytes file = {'B', 'M'};
        const auto offset = static_cast<uint32_t>(14 + head.size());
        add32(file, {offset + static_cast<uint32_t>(pixels.size()), 0, offset});
        file.insert(file.end(), head.begin(), head.end());
        file.insert(file.end(), pixels.begin(), pixels.end());
        return file;
    }
};

// Rows of pixels that a formula gives, padded, in the order of the file.
template<typename Formula>
Bytes packed_rows(uint32_t width, uint32_t height, uint32_t bits, bool top_down, Formula formula) {
    Bytes rows;
    for (uint32_t i = 0; i < height; ++i) {
        const uint32_t y = top_down ? i : height - 1 - i;
        Bytes row((width * bits + 31) / 32 * 4);
        for (uint32_t x = 0; x < width; ++x) {
            const uint32_t value = formula(x, y);
            for (uint32_t bit = 0; bit < bits; ++bit)
                if (bits < 8) { // the left pixel in the high bits
                    if ((value >> (bits - 1 - bit) & 1) != 0)
                        row[(x * bits + bit) / 8] |=
                            static_cast<uint8_t>(0x80 >> (x * bits + bit) % 8);
                } else if ((value >> bit & 1) != 0) {
                    row[(x * bits + bit) / 8] |= static_cast<uint8_t>(1 << (x * bits + bit) % 8);
                }
        }
        rows.insert(rows.end(), row.begin(), row.end());
    }
    return rows;
}

} // namespace kirvo_test
