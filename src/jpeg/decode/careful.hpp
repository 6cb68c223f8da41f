// The literal entropy decoder: one bit and one byte at a time, at home with markers, fill bytes,
// the end of the input and tables of any kind. It defines what the fast one may do.
#pragma once

#include "jpeg/decode/block.hpp"
#include "jpeg/decode/state.hpp"

namespace kirvo {

constexpr bool is_restart(uint8_t marker) { return marker >= 0xD0 && marker <= 0xD7; }

// What decodes one block.
struct BlockCoding {
    const DecodeTable* dc;
    const DecodeTable* ac;
    const uint16_t* quantisation; // in zigzag order
    int16_t* predictor;
};

class CarefulReader {
  public:
    explicit CarefulReader(DecodeState& state)
        : state_(state), input_(state.input), entropy_(state.entropy) {}

    // Fetches the first byte of entropy-coded data, which must not be a marker.
    Status prime();
    // Fills a block, or adds to it in a refinement scan.
    Status read_block(const BlockCoding& coding, Block& block);

  private:
    enum class Read { ok, restarted, marker, no_such_code };

    Read load_byte();
    Read next_bit(uint32_t& bit);
    Read receive(uint32_t count, uint32_t& value);
    Read read_symbol(const DecodeTable& table, int32_t row, uint8_t& symbol);
    Read read_dc(const BlockCoding& coding, Block& block);
    Read read_ac(const BlockCoding& coding, int32_t first, Block& block);
    Read try_block(const BlockCoding& coding, Block& block);
    Read unexpected_marker(uint8_t marker);
    void restart();
    void put(Block& block, int32_t k, int16_t value) const;

    DecodeState& state_;
    DecodeInput& input_;
    EntropyState& entropy_;
    SymbolWalk walk_ = SymbolWalk::begin();
};

} // namespace kirvo
