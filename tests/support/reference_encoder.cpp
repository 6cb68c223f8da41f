#include "support/reference_encoder.hpp"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <string>

namespace kirvo_test {

namespace {

// clang-format off
const int luminance_tables[5][64] = {
    {2, 2, 2, 3, 3, 3, 2, 2, 2, 2, 3, 3, 3, 2, 2, 2,
     2, 3, 3, 3, 3, 2, 2, 2, 3, 3, 3, 3, 2, 2, 2, 2,
     3, 3, 3, 2, 2, 2, 2, 2, 3, 2, 2, 2, 2, 2, 2, 2,
     2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2},
    {8, 9, 8, 8, 7, 6, 5, 3, 9, 9, 8, 7, 6, 5, 4, 3,
     8, 8, 7, 7, 6, 5, 3, 3, 8, 7, 7, 6, 5, 4, 3, 3,
     7, 6, 6, 5, 5, 3, 3, 3, 6, 5, 5, 4, 3, 3, 3, 3,
     5, 4, 3, 3, 3, 3, 3, 2, 3, 3, 3, 3, 3, 3, 2, 2},
    {9, 9, 10, 10, 11, 13, 15, 17, 9, 10, 10, 10, 12, 14, 15, 18,
     10, 10, 10, 11, 12, 14, 16, 19, 10, 10, 11, 12, 14, 15, 17, 20,
     11, 12, 12, 14, 15, 16, 19, 23, 13, 14, 14, 15, 16, 17, 21, 27,
     15, 15, 16, 17, 19, 21, 26, 34, 17, 18, 19, 20, 23, 27, 34, 45},
    {9, 11, 13, 15, 20, 34, 51, 68, 11, 12, 14, 17, 22, 35, 54, 72,
     13, 14, 17, 19, 25, 38, 58, 77, 15, 17, 19, 21, 29, 43, 63, 83,
     20, 22, 25, 29, 33, 47, 68, 89, 34, 35, 38, 43, 47, 52, 73, 97,
     51, 54, 58, 63, 68, 73, 79, 105, 68, 72, 77, 83, 89, 97, 105, 113},
    {18, 21, 25, 28, 37, 63, 95, 126, 21, 23, 26, 32, 40, 65, 102, 135,
     25, 26, 32, 35, 47, 72, 109, 144, 28, 32, 35, 39, 54, 81, 117, 154,
     37, 40, 47, 54, 61, 88, 126, 166, 63, 65, 72, 81, 88, 96, 137, 180,
     95, 102, 109, 117, 126, 137, 147, 196, 126, 135, 144, 154, 166, 180, 196, 210},
};
const int chrominance_tables[5][64] = {
    {2, 2, 3, 3, 3, 3, 2, 2, 2, 3, 3, 3, 3, 2, 2, 2,
     3, 3, 3, 3, 3, 2, 2, 2, 3, 3, 3, 3, 2, 2, 2, 2,
     3, 3, 3, 2, 2, 2, 2, 2, 3, 2, 2, 2, 2, 2, 2, 2,
     2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2},
    {10, 9, 8, 8, 7, 6, 5, 3, 9, 9, 8, 7, 6, 5, 4, 3,
     8, 8, 7, 7, 6, 5, 3, 3, 8, 7, 7, 6, 5, 4, 3, 3,
     7, 6, 6, 5, 5, 3, 3, 3, 6, 5, 5, 4, 3, 3, 3, 3,
     5, 4, 3, 3, 3, 3, 3, 2, 3, 3, 3, 3, 3, 3, 2, 2},
    {12, 10, 11, 11, 13, 14, 16, 19, 10, 11, 11, 11, 13, 15, 17, 20,
     11, 11, 11, 13, 14, 16, 18, 21, 11, 11, 13, 13, 15, 17, 19, 23,
     13, 13, 14, 15, 16, 18, 21, 25, 14, 15, 16, 17, 18, 19, 24, 30,
     16, 17, 18, 19, 21, 24, 29, 38, 19, 20, 21, 23, 25, 30, 38, 50},
    {11, 13, 15, 17, 22, 38, 57, 77, 13, 14, 16, 19, 24, 39, 62, 82,
     15, 16, 19, 21, 29, 44, 66, 87, 17, 19, 21, 23, 33, 49, 71, 94,
     22, 24, 29, 33, 37, 53, 77, 101, 38, 39, 44, 49, 53, 58, 83, 109,
     57, 62, 66, 71, 77, 83, 89, 119, 77, 82, 87, 94, 101, 109, 119, 128},
    {20, 24, 28, 32, 42, 72, 108, 144, 24, 26, 30, 36, 46, 74, 116, 154,
     28, 30, 36, 40, 54, 82, 124, 164, 32, 36, 40, 44, 62, 92, 134, 176,
     42, 46, 54, 62, 70, 100, 144, 190, 72, 74, 82, 92, 100, 110, 156, 206,
     108, 116, 124, 134, 144, 156, 168, 224, 144, 154, 164, 176, 190, 206, 224, 240},
};
// clang-format on

// Tables K.3, K.4, K.5 and K.6 of T.81 as a DHT segment lists them: class and number, 16 counts, the
// symbols. In hexadecimal.
const char* const huffman_lists[4] = {
    "0000010501010101010100000000000000000102030405060708090a0b",
    "0100030101010101010101010000000000000102030405060708090a0b",
    "100002010303020403050504040000017d01020300041105122131410613516107227114328191a1082342b1c1"
    "1552d1f02433627282090a161718191a25262728292a3435363738393a434445464748494a535455565758595a"
    "636465666768696a737475767778797a838485868788898a92939495969798999aa2a3a4a5a6a7a8a9aab2b3b4"
    "b5b6b7b8b9bac2c3c4c5c6c7c8c9cad2d3d4d5d6d7d8d9dae1e2e3e4e5e6e7e8e9eaf1f2f3f4f5f6f7f8f9fa",
    "1100020102040403040705040400010277000102031104052131061241510761711322328108144291a1b1c109"
    "233352f0156272d10a162434e125f11718191a262728292a35363738393a434445464748494a53545556575859"
    "5a636465666768696a737475767778797a82838485868788898a92939495969798999aa2a3a4a5a6a7a8a9aab2"
    "b3b4b5b6b7b8b9bac2c3c4c5c6c7c8c9cad2d3d4d5d6d7d8d9dae2e3e4e5e6e7e8e9eaf2f3f4f5f6f7f8f9fa",
};

using Bytes = std::vector<uint8_t>;
using Block = std::array<int, 64>;
using Codes = std::map<int, std::string>; // symbol to code word, as '0' and '1'

Bytes from_hex(const std::string& digits) {
    Bytes bytes;
    for (size_t i = 0; i < digits.size(); i += 2)
        bytes.push_back(static_cast<uint8_t>(std::stoi(digits.substr(i, 2), nullptr, 16)));
    return bytes;
}

std::string binary(int value, int length) {
    std::string digits;
    for (int bit = length - 1; bit >= 0; --bit)
        digits += value >> bit & 1 ? '1' : '0';
    return digits;
}

// T.81, Annex C: codes of one length count upwards, a longer one goes on at twice the next number.
Codes codes_of(const char* list) {
    const Bytes bytes = from_hex(list);
    Codes codes;
    int code = 0;
    size_t symbol = 17;
    for (int length = 1; length <= 16; ++length) {
        for (int i = 0; i < bytes[static_cast<size_t>(length)]; ++i)
            codes[bytes[symbol++]] = binary(code++, length);
        code *= 2;
    }
    return codes;
}

// Walks the diagonals, as Figure A.6 of T.81 draws it.
std::array<int, 64> zigzag_order() {
    std::array<int, 64> order;
    size_t next = 0;
    for (int diagonal = 0; diagonal < 15; ++diagonal) {
        for (int i = 0; i <= diagonal; ++i) {
            const int row = diagonal % 2 == 0 ? diagonal - i : i, column = diagonal - row;
            if (row < 8 && column < 8)
                order[next++] = row * 8 + column;
        }
    }
    return order;
}

int floor_shift(int value, int count) { // rounds towards minus infinity
    const int divisor = 1 << count;
    return value >= 0 ? value / divisor : -((-value + divisor - 1) / divisor);
}

struct Sample {
    int y, cb, cr;
};

Sample to_sample(int red, int green, int blue) {
    return {floor_shift(77 * red + 150 * green + 29 * blue + 128, 8) - 128,
            floor_shift(128 * blue - 85 * green - 43 * red + 127, 8),
            floor_shift(128 * red - 107 * green - 21 * blue + 127, 8)};
}

// The factor of input x in output u of the one-dimensional transform.
int factor(int u, int x) {
    static const int scaled_cosines[8] = {23169, 32137, 30272, 27244, 23169, 18204, 12539, 6392};
    if (u == 0)
        return scaled_cosines[4];
    int angle = (2 * x + 1) * u % 32; // in sixteenths of pi
    if (angle > 16)
        angle = 32 - angle;
    if (angle == 8)
        return 0;
    return angle < 8 ? scaled_cosines[angle] : -scaled_cosines[16 - angle];
}

Block transform(const Block& samples) {
    Block work, coefficients;
    for (int row = 0; row < 8; ++row) {
        for (int u = 0; u < 8; ++u) {
            int sum = 0;
            for (int x = 0; x < 8; ++x)
                sum += factor(u, x) * samples[static_cast<size_t>(row * 8 + x)];
            work[static_cast<size_t>(row * 8 + u)] = floor_shift(sum, 13);
        }
    }
    for (int column = 0; column < 8; ++column) {
        for (int v = 0; v < 8; ++v) {
            int sum = 262144;
            for (int y = 0; y < 8; ++y)
                sum += factor(v, y) * work[static_cast<size_t>(y * 8 + column)];
            coefficients[static_cast<size_t>(v * 8 + column)] = floor_shift(sum, 19);
        }
    }
    return coefficients;
}

int quantise(int coefficient, int quantiser) {
    const int magnitude = (std::abs(coefficient) + quantiser / 2) / quantiser;
    return coefficient < 0 ? -magnitude : magnitude;
}

int bit_length(int value) {
    int length = 0;
    for (value = std::abs(value); value != 0; value /= 2)
        ++length;
    return length;
}

std::string magnitude_bits(int value) {
    const int length = bit_length(value);
    return binary(value < 0 ? value - 1 : value, length); // the low bits
}

struct Component {
    const int* quantisers; // natural order
    Codes dc, ac;
    int predictor = 0;
};

class Pipeline {
  public:
    explicit Pipeline(const ReferenceJob& job) : job_(job) {
        const auto* luminance =
            job.level == 0 ? job.luminance.data() : luminance_tables[job.level - 1];
        const auto* chrominance =
            job.level == 0 ? job.chrominance.data() : chrominance_tables[job.level - 1];
        count_ = job.level == 0 ? job.count : job.level == 5 ? 21 : 64;
        component_[0] = {luminance, codes_of(huffman_lists[0]), codes_of(huffman_lists[2])};
        component_[1] = {chrominance, codes_of(huffman_lists[1]), codes_of(huffman_lists[3])};
        component_[2] = component_[1];
    }

    Bytes run() {
        headers();
        const int mcu_width = job_.grey || job_.mode == 1 ? 8 : 16;
        const int mcu_height = !job_.grey && job_.mode == 4 ? 16 : 8;
        for (int y = 0; y < job_.height; y += mcu_height) {
            for (int x = 0; x < job_.width; x += mcu_width)
                encode_mcu(x, y, mcu_width, mcu_height);
        }
        entropy_bytes();
        append({0xFF, 0xD9});
        return stream_;
    }

  private:
    void append(const Bytes& bytes) { stream_.insert(stream_.end(), bytes.begin(), bytes.end()); }

    void quantisers(uint8_t id, const int* table) {
        append({0xFF, 0xDB, 0, 67, id});
        for (int natural : zigzag_)
            stream_.push_back(static_cast<uint8_t>(table[natural]));
    }

    void headers() {
        const auto high = [](int v) { return static_cast<uint8_t>(v / 256); };
        const auto low = [](int v) { return static_cast<uint8_t>(v % 256); };
        append({0xFF, 0xD8});
        append({0xFF, 0xE0, 0, 16, 0x4A, 0x46, 0x49, 0x46, 0, 1, 0, 0, 0, 1, 0, 1, 0, 0});
        append(job_.comment_segment);
        quantisers(0, component_[0].quantisers);
        if (!job_.grey)
            quantisers(1, component_[1].quantisers);
        append({0xFF, 0xC0, 0, static_cast<uint8_t>(job_.grey ? 11 : 17), 8, high(job_.height),
                low(job_.height), high(job_.width), low(job_.width)});
        const uint8_t sampling = job_.grey || job_.mode == 1 ? 0x11 : job_.mode == 2 ? 0x21 : 0x22;
        if (job_.grey)
            append({1, 1, sampling, 0});
        else
            append({3, 1, sampling, 0, 2, 0x11, 1, 3, 0x11, 1});
        append({0xFF, 0xC4, 418 / 256, 418 % 256});
        for (const char* list : huffman_lists)
            append(from_hex(list));
        if (job_.grey)
            append({0xFF, 0xDA, 0, 8, 1, 1, 0x00, 0, 63, 0});
        else
            append({0xFF, 0xDA, 0, 12, 3, 1, 0x00, 2, 0x11, 3, 0x11, 0, 63, 0});
    }

    // Coordinates past the region give its last row and column.
    Sample sample(int x, int y) const {
        x = std::min(x, job_.width - 1);
        y = std::min(y, job_.height - 1);
        const ReferencePixel pixel = job_.pixel(x, y);
        if (job_.grey)
            return {pixel.blue - 128, 0, 0};
        return to_sample(pixel.red, pixel.green, pixel.blue);
    }

    void encode_mcu(int x0, int y0, int width, int height) {
        for (int y = 0; y < height; y += 8) {
            for (int x = 0; x < width; x += 8)
                encode_block(0, [&](int column, int row) {
                    return sample(x0 + x + column, y0 + y + row).y;
                });
        }
        if (job_.grey)
            return;
        const int across = width / 8, down = height / 8;
        for (int c = 1; c <= 2; ++c) {
            encode_block(c, [&](int column, int row) {
                int sum = 0;
                for (int j = 0; j < down; ++j) {
                    for (int i = 0; i < across; ++i) {
                        const Sample s = sample(x0 + column * across + i, y0 + row * down + j);
                        sum += c == 1 ? s.cb : s.cr;
                    }
                }
                switch (across * down) {
                case 1:
                    return sum;
                case 2:
                    return floor_shift(sum + 1, 1);
                default:
                    return floor_shift(sum + 2, 2);
                }
            });
        }
    }

    template<typename SampleAt>
    void encode_block(int c, SampleAt sample_at) {
        Block samples;
        for (int row = 0; row < 8; ++row) {
            for (int column = 0; column < 8; ++column)
                samples[static_cast<size_t>(row * 8 + column)] = sample_at(column, row);
        }
        Component& component = component_[c];
        const Block coefficients = transform(samples);
        Block levels = {};
        for (int k = 0; k < count_; ++k) {
            const auto natural = static_cast<size_t>(zigzag_[static_cast<size_t>(k)]);
            levels[static_cast<size_t>(k)] =
                quantise(coefficients[natural], component.quantisers[natural]);
        }
        const int difference = levels[0] - component.predictor;
        component.predictor = levels[0];
        bits_ += component.dc.at(bit_length(difference)) + magnitude_bits(difference);
        int run = 0;
        for (size_t k = 1; k < 64; ++k) {
            if (levels[k] == 0) {
                ++run;
                continue;
            }
            for (; run > 15; run -= 16)
                bits_ += component.ac.at(0xF0);
            bits_ += component.ac[run * 16 + bit_length(levels[k])] + magnitude_bits(levels[k]);
            run = 0;
        }
        if (run > 0)
            bits_ += component.ac.at(0);
    }

    void entropy_bytes() {
        while (bits_.size() % 8 != 0)
            bits_ += '1';
        for (size_t i = 0; i < bits_.size(); i += 8) {
            int byte = 0;
            for (size_t j = i; j < i + 8; ++j)
                byte = byte * 2 + (bits_[j] == '1');
            stream_.push_back(static_cast<uint8_t>(byte));
            if (byte == 0xFF)
                stream_.push_back(0);
        }
    }

    const ReferenceJob& job_;
    const std::array<int, 64> zigzag_ = zigzag_order();
    Component component_[3];
    int count_;
    std::string bits_;
    Bytes stream_;
};

} // namespace

std::vector<uint8_t> reference_stream(const ReferenceJob& job) { return Pipeline(job).run(); }

} // namespace kirvo_test
