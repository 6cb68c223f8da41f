// Code words, entropy coding of blocks that pictures can and cannot yield, stuffing.

#include "jpeg/encode/entropy.hpp"

#include "jpeg/encode/headers.hpp"
#include "support/random.hpp"

#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

using namespace kirvo;
using namespace kirvo_test;

namespace {

std::string binary(int value, int length) {
    std::string digits;
    for (int bit = length - 1; bit >= 0; --bit)
        digits += value >> bit & 1 ? '1' : '0';
    return digits;
}

std::string digits(Bits bits) {
    return binary(static_cast<int>(bits_word(bits)), static_cast<int>(bits_length(bits)));
}

// Symbols to code words of the table at that place of the DHT segment.
std::map<int, std::string> words_at(size_t at) {
    std::map<int, std::string> words;
    int code = 0;
    size_t symbol = at + 17;
    for (int length = 1; length <= 16; ++length, code *= 2) {
        for (int i = 0; i < dht_segment[at + static_cast<size_t>(length)]; ++i)
            words[dht_segment[symbol++]] = binary(code++, length);
    }
    return words;
}

struct TablePlace {
    const EntropyCodes& codes;
    size_t dc, ac; // where the segment has the class and number
};
const EntropyCodes luminance_codes = entropy_codes(luminance_dc, luminance_ac);
const EntropyCodes chrominance_codes = entropy_codes(chrominance_dc, chrominance_ac);

const TablePlace luminance = {luminance_codes, 4, 4 + 2 * 29};
const TablePlace chrominance = {chrominance_codes, 4 + 29, 4 + 2 * 29 + 179};

int bit_length(int value) {
    int length = 0;
    for (value = std::abs(value); value != 0; value /= 2)
        ++length;
    return length;
}

std::string magnitude(int value) {
    return binary(value < 0 ? value - 1 : value, bit_length(value));
}

struct Block {
    int level[64] = {}; // zigzag order

    BlockGroup group() const { // as the third of its group
        BlockGroup made = {};
        for (size_t k = 0; k < 64; ++k) {
            const size_t n = zigzag[k];
            const bool is_small = level[k] >= -64 && level[k] < 64;
            made.level[n / 8][16 + n % 8] = static_cast<int16_t>(level[k]);
            made.small[2][k] = static_cast<uint8_t>(is_small ? level[k] + 64 : 200);
            made.nonzero[2] |= uint64_t{level[k] != 0} << k;
        }
        return made;
    }
    std::string expected(const TablePlace& place, int difference) const {
        std::map<int, std::string> dc = words_at(place.dc), ac = words_at(place.ac);
        std::string bits = dc[bit_length(difference)] + magnitude(difference);
        int run = 0;
        for (int k = 1; k < 64; ++k) {
            if (level[k] == 0) {
                ++run;
                continue;
            }
            for (; run > 15; run -= 16)
                bits += ac[0xF0];
            bits += ac[run * 16 + bit_length(level[k])] + magnitude(level[k]);
            run = 0;
        }
        return run > 0 ? bits + ac[0x00] : bits;
    }
};

std::string written(const BlockGroup& group, const TablePlace& place, int16_t predictor,
                    bool* good = nullptr, int16_t* new_predictor = nullptr) {
    uint8_t bytes[longest_block + 100] = {};
    BitWriter writer(bytes);
    const McuPart part = {&group, 1, &place.codes, &predictor};
    const bool result = put_mcu(writer, &part, 1, 2);
    if (good != nullptr)
        *good = result;
    if (new_predictor != nullptr)
        *new_predictor = predictor;
    writer.finish();
    std::string bits;
    for (const uint8_t* at = bytes; at != writer.at(); ++at)
        bits += binary(*at, 8);
    return bits;
}

std::string padded(std::string bits) {
    while (bits.size() % 8 != 0)
        bits += '1';
    return bits;
}

} // namespace

TEST(EncodeCodes, segment_has_its_length_and_four_tables) {
    EXPECT_EQ(dht_segment[0], 0xFF);
    EXPECT_EQ(dht_segment[1], 0xC4);
    EXPECT_EQ(dht_segment[2] * 256 + dht_segment[3], 418);
    EXPECT_EQ(dht_segment[luminance.dc], 0x00);
    EXPECT_EQ(dht_segment[chrominance.dc], 0x01);
    EXPECT_EQ(dht_segment[luminance.ac], 0x10);
    EXPECT_EQ(dht_segment[chrominance.ac], 0x11);
}

TEST(EncodeCodes, code_words_are_those_of_the_segment) {
    for (const TablePlace& place : {luminance, chrominance}) {
        std::map<int, std::string> dc = words_at(place.dc), ac = words_at(place.ac);
        EXPECT_EQ(dc.size(), 12u);
        EXPECT_EQ(ac.size(), 162u);
        for (int symbol = 0; symbol < 12; ++symbol)
            EXPECT_EQ(digits(place.codes.dc[static_cast<size_t>(symbol)]), dc[symbol]);
        for (int symbol = 0; symbol < 256; ++symbol) // none where the table has none
            EXPECT_EQ(digits(place.codes.ac[static_cast<size_t>(symbol)]), ac[symbol]);
        for (int value = -64; value < 64; ++value) {
            const auto index = static_cast<size_t>(value + 64);
            EXPECT_EQ(digits(place.codes.small_dc[index]),
                      dc[bit_length(value)] + magnitude(value));
            for (int run = 0; run < 63 && value != 0; ++run) {
                const std::string word = ac[run * 16 + bit_length(value)] + magnitude(value);
                const bool ready = run < 16 && word.size() <= longest_at_once;
                EXPECT_EQ(digits(place.codes.small_ac[static_cast<size_t>(run + 1) << 8 | index]),
                          ready ? word : "");
            }
        }
    }
}

TEST(EncodeCodes, some_words_of_the_tables_in_t81) {
    EXPECT_EQ(digits(luminance_codes.dc[0]), "00");
    EXPECT_EQ(digits(luminance_codes.dc[6]), "1110");
    EXPECT_EQ(digits(luminance_codes.dc[11]), "111111110");
    EXPECT_EQ(digits(chrominance_codes.dc[2]), "10");
    EXPECT_EQ(digits(chrominance_codes.dc[11]), "11111111110");
    EXPECT_EQ(digits(luminance_codes.ac[0x00]), "1010");
    EXPECT_EQ(digits(luminance_codes.ac[0xF0]), "11111111001");
    EXPECT_EQ(digits(luminance_codes.ac[0x31]), "111010");
    EXPECT_EQ(digits(luminance_codes.ac[0xFA]), "1111111111111110");
    EXPECT_EQ(digits(chrominance_codes.ac[0x00]), "00");
    EXPECT_EQ(digits(chrominance_codes.ac[0xF0]), "1111111010");
    EXPECT_EQ(digits(chrominance_codes.ac[0xE1]), "11111111100000");
    EXPECT_EQ(digits(chrominance_codes.ac[0x0B]), ""); // there is no category 11
}

// None where the level is not small.
TEST(EncodeCodes, there_are_no_words_for_other_levels) {
    for (const TablePlace& place : {luminance, chrominance}) {
        for (size_t at = 0; at < place.codes.small_ac.size(); ++at) {
            const bool is_small = at >= 256 && at % 256 < 128;
            EXPECT_TRUE(is_small || place.codes.small_ac[at] == 0) << at;
        }
    }
}

// Beside each number of bits that wait.
TEST(EncodeEntropy, the_same_value_again_and_again) {
    for (const TablePlace& place : {luminance, chrominance}) {
        for (const int value : {1, -2, 7, -8, 15, -31, 63, -64, 64, -65, 127, 128, -1023}) {
            for (size_t distance = 1; distance < 64; ++distance) {
                Block block;
                for (size_t k = distance; k < 64; k += distance)
                    block.level[k] = value;
                for (int dc = 0; dc < 2048; dc = 2 * dc + 1) {
                    block.level[0] = dc;
                    EXPECT_EQ(written(block.group(), place, 0), padded(block.expected(place, dc)))
                        << value << " every " << distance << " after " << dc;
                }
            }
        }
    }
}

TEST(EncodeEntropy, random_blocks) {
    Random random(1);
    for (int round = 0; round < 3000; ++round) {
        const TablePlace& place = round % 2 ? luminance : chrominance;
        Block block;
        const int32_t one_in = random.between(1, 40),
                      highest = random.pick({1, 3, 63, 64, 200, 1023, 2047});
        for (int& level : block.level) {
            if (random.once_in(one_in))
                level = random.between(-highest, highest);
        }
        block.level[0] = random.between(-1000, 1000);
        const auto predictor = static_cast<int16_t>(random.between(-1000, 1000));
        bool good = false;
        int16_t new_predictor = 0;
        const std::string bits = written(block.group(), place, predictor, &good, &new_predictor);
        ASSERT_TRUE(good);
        ASSERT_EQ(new_predictor, block.level[0]);
        ASSERT_EQ(bits, padded(block.expected(place, block.level[0] - predictor)));
    }
}

TEST(EncodeEntropy, the_longest_block_fits) {
    Block block;
    for (int k = 0; k < 64; ++k)
        block.level[k] = k % 2 ? 1023 : -1023;
    EXPECT_EQ(written(block.group(), luminance, 1023), padded(block.expected(luminance, -2046)));
}

TEST(EncodeEntropy, runs_of_zeros) {
    for (int position = 1; position < 64; ++position) {
        Block block;
        block.level[position] = -5;
        EXPECT_EQ(written(block.group(), chrominance, 0), padded(block.expected(chrominance, 0)))
            << position;
    }
    // 62 zeros, then the last: three runs of sixteen, run 14, no end of block.
    Block last;
    last.level[63] = 1;
    EXPECT_EQ(written(last.group(), luminance, 0), padded("00"
                                                          "11111111001"
                                                          "11111111001"
                                                          "11111111001"
                                                          "1111111111101011"
                                                          "1"));
    // None at all: the difference and the end of block.
    EXPECT_EQ(written(Block().group(), luminance, 0), padded("00"
                                                             "1010"));
}

TEST(EncodeEntropy, an_ac_value_of_category_11_has_magnitude_bits_alone) {
    for (int value : {1024, 2047, -1024, -2047}) {
        Block block;
        block.level[3] = value;
        bool good = false;
        EXPECT_EQ(written(block.group(), luminance, 0, &good),
                  padded("00" + magnitude(value) + "1010"));
        EXPECT_TRUE(good);
    }
}

TEST(EncodeEntropy, categories_above_11_are_refused) {
    for (int value : {2048, -2048, 32767, -32768}) {
        Block block;
        block.level[5] = value;
        bool good = true;
        EXPECT_EQ(written(block.group(), luminance, 0, &good), ""); // the writer as it was
        EXPECT_FALSE(good);
        Block dc;
        dc.level[0] = value;
        EXPECT_EQ(written(dc.group(), chrominance, 0, &good), "");
        EXPECT_FALSE(good);
    }
    Block block;
    block.level[0] = 2047;
    bool good = false;
    written(block.group(), luminance, 0, &good);
    EXPECT_TRUE(good);
    written(block.group(), luminance, -1, &good); // a difference of 2048
    EXPECT_FALSE(good);
}

TEST(EncodeEntropy, differences_wrap_in_16_bits) {
    Block block;
    block.level[0] = -32768;
    bool good = false;
    EXPECT_EQ(written(block.group(), luminance, 32767, &good), padded("010"
                                                                      "1"
                                                                      "1010"));
    EXPECT_TRUE(good);
}

TEST(EncodeStuffing, zero_bytes_follow_ones_and_nothing_passes_the_end) {
    Random random(2);
    for (int round = 0; round < 2000; ++round) {
        std::vector<uint8_t> bytes(static_cast<size_t>(random.between(0, 60)));
        const int32_t ones_in = random.between(1, 30);
        std::vector<uint8_t> expected;
        for (uint8_t& byte : bytes) {
            byte = random.once_in(ones_in)
                       ? 0xFF
                       : random.pick({uint8_t{0xFE}, uint8_t{0}, uint8_t{0x7F}, random.byte()});
            expected.push_back(byte);
            if (byte == 0xFF)
                expected.push_back(0);
        }
        const size_t room = expected.size() + static_cast<size_t>(random.between(0, 2)) -
                            (expected.empty() ? 0 : static_cast<size_t>(random.between(0, 1)));
        std::vector<uint8_t> block(room + 8, 0xA5);
        OutputStream stream = {block.data(), static_cast<uint32_t>(room), 0};
        const bool fits = stream.append_stuffed(bytes.data(), bytes.size());
        EXPECT_EQ(fits, room >= expected.size());
        if (fits) {
            EXPECT_EQ(stream.position, expected.size());
            block.resize(expected.size());
            EXPECT_EQ(block, expected);
        } else {
            EXPECT_EQ(std::vector<uint8_t>(block.end() - 8, block.end()),
                      std::vector<uint8_t>(8, 0xA5));
        }
    }
}
