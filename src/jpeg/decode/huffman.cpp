#include "jpeg/decode/huffman.hpp"

#include <cstring>
#include <numeric>

namespace kirvo {

bool DecodeTable::set(const uint8_t* count_of_length, const uint8_t* listed) {
    const uint32_t total = std::accumulate(count_of_length, count_of_length + longest_code, 0u);
    if (std::memcmp(counts + 1, count_of_length, longest_code) == 0 &&
        std::memcmp(symbols, listed, total) == 0)
        return false;
    uint32_t code = 0, listed_before = 0;
    for (uint32_t length = 1; length <= longest_code; ++length, code <<= 1) {
        counts[length] = count_of_length[length - 1];
        first_symbol[length] = static_cast<uint8_t>(listed_before);
        first_code[length] = static_cast<uint16_t>(code);
        code += counts[length];
        listed_before += counts[length];
    }
    std::memcpy(symbols, listed, total);
    return true;
}

SymbolWalk::Outcome SymbolWalk::step(const DecodeTable& table, int32_t row, uint32_t bit,
                                     uint8_t& symbol) {
    ++length;
    code = static_cast<uint16_t>(2 * code + bit);
    if (leading_ones && bit == 1)
        return length < longest_code ? Outcome::go_on : Outcome::no_such_code;
    leading_ones = false;
    if (length > longest_code)
        return Outcome::no_such_code;
    const int32_t index = code - table.first_code[length];
    if (table.counts[length] == 0 || index >= table.counts[length])
        return Outcome::go_on;
    // An over-full table may put the first code of a length above codes that still occur.
    if (index < 0 || index >= row)
        return Outcome::no_such_code;
    symbol = table.symbols[static_cast<uint8_t>(table.first_symbol[length] + index)];
    return Outcome::found;
}

} // namespace kirvo
