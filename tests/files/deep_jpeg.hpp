// JPEG of 12 or 8 bits a channel, written by the formulas of ITU-T T.81.
#pragma once

#include "files/opened.hpp"

#include <array>
#include <cmath>
#include <numbers>

namespace kirvo_test {

// Codes of one length: 5 bits for the sizes of DC, 9 for every symbol of AC.
class DeepJpeg {
  public:
    // Components of this sampling; 1 for grey.
    DeepJpeg(uint32_t width, uint32_t height, uint32_t components, uint32_t across, uint32_t down,
             uint8_t bits = 12)
        : width_(width), height_(height), components_(components), across_(across), down_(down),
          bits_(bits) {}

    // Level 0 to 4095, or 255, of a component at a place of the whole picture.
    template<typename Level>
    Bytes write(Level level, uint32_t restart = 0) {
        header(0xC1, restart);
        scan(0, components_, 0, 63, 0);
        const uint32_t mcu_width = 8 * across_, mcu_height = 8 * down_;
        uint32_t mcus = 0;
        for (uint32_t y = 0; y < height_; y += mcu_height)
            for (uint32_t x = 0; x < width_; x += mcu_width, ++mcus) {
                if (restart != 0 && mcus != 0 && mcus % restart == 0)
                    put_restart(mcus / restart - 1);
                for (uint32_t i = 0; i < components_; ++i)
                    for (uint32_t k = 0; k < (i == 0 ? across_ * down_ : 1); ++k) {
                        const uint32_t step_x = i == 0 ? 1 : across_, step_y = i == 0 ? 1 : down_;
                        block(i, [&](uint32_t column, uint32_t row) {
                            return level(i, x + k % across_ * 8 + column * step_x,
                                         y + k / across_ * 8 + row * step_y);
                        });
                    }
            }
        return ended();
    }

    // The same as a progressive file: each component's first bits and what refines them, bands with
    // runs of blocks that end, one of them in two passes. Without sampling.
    template<typename Level>
    Bytes write_progressive(Level level) {
        header(0xC2, 0);
        std::vector<Block> blocks[3];
        for (uint32_t i = 0; i < components_; ++i)
            for (uint32_t y = 0; y < height_; y += 8)
                for (uint32_t x = 0; x < width_; x += 8)
                    blocks[i].push_back(quantised([&](uint32_t column, uint32_t row) {
                        return level(i, x + column, y + row);
                    }));
        scan(0, components_, 0, 0, 0x01);
        for (size_t n = 0; n < blocks[0].size(); ++n)
            for (uint32_t i = 0; i < components_; ++i)
                first(i, blocks[i][n][0] >> 1);
        for (uint32_t i = 0; i < components_; ++i) {
            scan(i, 1, 1, 5, 0);
            band(blocks[i], 1, 5, 0);
            scan(i, 1, 6, 63, 0x02);
            band(blocks[i], 6, 63, 2);
            scan(i, 1, 6, 63, 0x21);
            finer_band(blocks[i], 6, 63, 1);
        }
        scan(0, components_, 0, 0, 0x10);
        for (size_t n = 0; n < blocks[0].size(); ++n)
            for (uint32_t i = 0; i < components_; ++i)
                put(blocks[i][n][0] & 1, 1);
        for (uint32_t i = 0; i < components_; ++i) {
            scan(i, 1, 6, 63, 0x10);
            finer_band(blocks[i], 6, 63, 0);
        }
        return ended();
    }

  private:
    using Block = std::array<int32_t, 64>; // in the order of the stream

    Bytes ended() {
        fill_byte();
        out_.insert(out_.end(), {0xFF, 0xD9});
        return out_;
    }

    void fill_byte() {
        while (held_count_ != 0)
            put(1, 1);
    }

    // Components from one on.
    void scan(uint32_t component, uint32_t count, uint8_t first, uint8_t last, uint8_t bits) {
        fill_byte();
        std::fill(last_, last_ + 3, 0);
        const auto byte = [](uint32_t value) { return static_cast<uint8_t>(value); };
        out_.insert(out_.end(), {0xFF, 0xDA, 0, byte(6 + 2 * count), byte(count)});
        for (uint32_t i = component; i < component + count; ++i)
            out_.insert(out_.end(), {byte(i + 1), 0});
        out_.insert(out_.end(), {first, last, bits});
    }

    void header(uint8_t frame, uint32_t restart) {
        out_ = {0xFF, 0xD8, 0xFF, 0xDB, 0, 67, 0};
        out_.insert(out_.end(), 64, step);
        const auto byte = [](uint32_t value) { return static_cast<uint8_t>(value); };
        out_.insert(out_.end(),
                    {0xFF, frame, 0, byte(8 + 3 * components_), bits_, byte(height_ >> 8),
                     byte(height_), byte(width_ >> 8), byte(width_), byte(components_)});
        for (uint32_t i = 0; i < components_; ++i)
            out_.insert(out_.end(), {byte(i + 1), byte(i == 0 ? across_ << 4 | down_ : 0x11), 0});
        table(0x00, 4, 16);
        table(0x10, 8, 256);
        if (restart != 0)
            out_.insert(out_.end(), {0xFF, 0xDD, 0, 4, 0, byte(restart)});
    }

    // All symbols from 0 on, with codes of the same length. A count has 8 bits: 256 symbols are 255
    // and one longer code.
    void table(uint8_t kind, uint32_t length_index, uint32_t symbols) {
        out_.insert(out_.end(), {0xFF, 0xC4, static_cast<uint8_t>((19 + symbols) >> 8),
                                 static_cast<uint8_t>(19 + symbols), kind});
        for (uint32_t i = 0; i < 16; ++i)
            out_.push_back(i == length_index       ? static_cast<uint8_t>(std::min(symbols, 255u))
                           : i == length_index + 1 ? static_cast<uint8_t>(symbols > 255)
                                                   : uint8_t{0});
        for (uint32_t i = 0; i < symbols; ++i)
            out_.push_back(static_cast<uint8_t>(i));
    }

    template<typename Sample>
    Block quantised(Sample sample) const {
        Block values;
        int32_t row = 0, column = 0;
        for (int32_t& value : values) {
            double sum = 0;
            for (uint32_t y = 0; y < 8; ++y)
                for (uint32_t x = 0; x < 8; ++x)
                    sum += (sample(x, y) - (1 << (bits_ - 1))) *
                           std::cos((2 * x + 1) * column * std::numbers::pi / 16) *
                           std::cos((2 * y + 1) * row * std::numbers::pi / 16);
            const double scale = (column == 0 ? std::numbers::sqrt2 / 2 : 1) *
                                 (row == 0 ? std::numbers::sqrt2 / 2 : 1) / 4;
            value = static_cast<int32_t>(std::lround(sum * scale / step));
            next_place(row, column);
        }
        return values;
    }

    template<typename Sample>
    void block(uint32_t i, Sample sample) {
        const Block values = quantised(sample);
        first(i, values[0]);
        uint32_t run = 0;
        for (uint32_t k = 1; k < 64; ++k) {
            if (values[k] == 0) {
                ++run;
                continue;
            }
            for (; run > 15; run -= 16)
                put(0xF0, 9);
            number(values[k], run << 4, 9);
            run = 0;
        }
        if (run != 0)
            put(0, 9);
    }

    void first(uint32_t i, int32_t value) {
        number(value - last_[i], 0, 5);
        last_[i] = value;
    }

    // What a value is before its last bits come: nearer to 0.
    static int32_t without(int32_t value, uint32_t bits) {
        return value < 0 ? -(-value >> bits) : value >> bits;
    }

    void band(const std::vector<Block>& blocks, uint32_t from, uint32_t to, uint32_t bits) {
        uint32_t ended = 0;
        for (const Block& values : blocks) {
            uint32_t run = 0;
            for (uint32_t k = from; k <= to; ++k) {
                const int32_t value = without(values[k], bits);
                if (value == 0) {
                    ++run;
                    continue;
                }
                put_ended(ended);
                for (; run > 15; run -= 16)
                    put(0xF0, 9);
                number(value, run << 4, 9);
                run = 0;
            }
            ended += run != 0 ? 1 : 0;
        }
        put_ended(ended);
    }

    void put_ended(uint32_t& blocks) {
        if (blocks == 0)
            return;
        uint32_t bits = 0;
        while (blocks >> (bits + 1) != 0)
            ++bits;
        put(bits << 4, 9);
        put(blocks & ((1u << bits) - 1), bits);
        blocks = 0;
    }

    // One bit more of what there is, and what becomes 1 or -1 by it.
    void finer_band(const std::vector<Block>& blocks, uint32_t from, uint32_t to, uint32_t bits) {
        for (const Block& values : blocks) {
            uint32_t run = 0, newest = 0;
            std::vector<uint32_t> corrections;
            const auto put_corrections = [&] {
                for (uint32_t bit : corrections)
                    put(bit, 1);
                corrections.clear();
                run = 0;
            };
            for (uint32_t k = from; k <= to; ++k)
                newest = std::abs(without(values[k], bits)) == 1 ? k : newest;
            for (uint32_t k = from; k <= to; ++k) {
                const int32_t value = without(values[k], bits);
                if (std::abs(value) > 1) {
                    corrections.push_back(static_cast<uint32_t>(std::abs(value)) & 1);
                } else if (value != 0) {
                    put(run << 4 | 1, 9);
                    put(value > 0 ? 1 : 0, 1);
                    put_corrections();
                } else if (++run == 16 && k < newest) {
                    put(0xF0, 9);
                    put_corrections();
                }
            }
            if (run != 0 || !corrections.empty()) {
                put(0, 9);
                put_corrections();
            }
        }
    }

    // Diagonals, one up and one down.
    static void next_place(int32_t& row, int32_t& column) {
        const bool up = (row + column) % 2 == 0;
        if (up && column == 7)
            ++row;
        else if (up && row == 0)
            ++column;
        else if (!up && row == 7)
            ++column;
        else if (!up && column == 0)
            ++row;
        else {
            row += up ? -1 : 1;
            column += up ? 1 : -1;
        }
    }

    void number(int32_t value, uint32_t high, uint32_t code_length) {
        uint32_t size = 0;
        for (auto left = static_cast<uint32_t>(std::abs(value)); left != 0; left >>= 1)
            ++size;
        put(high | size, code_length);
        put(static_cast<uint32_t>(value < 0 ? value - 1 : value) & ((1u << size) - 1), size);
    }

    void put(uint32_t value, uint32_t count) {
        for (uint32_t i = count; i-- > 0;) {
            held_ = held_ << 1 | (value >> i & 1);
            if (++held_count_ == 8) {
                out_.push_back(static_cast<uint8_t>(held_));
                if ((held_ & 255) == 255)
                    out_.push_back(0);
                held_ = held_count_ = 0;
            }
        }
    }

    void put_restart(uint32_t number) {
        fill_byte();
        out_.insert(out_.end(), {0xFF, static_cast<uint8_t>(0xD0 | (number & 7))});
        std::fill(last_, last_ + 3, 0);
    }

    static constexpr uint8_t step = 2;
    uint32_t width_, height_, components_, across_, down_;
    uint8_t bits_;
    int32_t last_[3] = {};
    uint32_t held_ = 0, held_count_ = 0;
    Bytes out_;
};

} // namespace kirvo_test
