// From the first scan header to the finished image.
#pragma once

#include "jpeg/decode/careful.hpp"
#include "jpeg/decode/render.hpp"

namespace kirvo {

// Makes the image and sets out to decode the first scan; need_more as long as that cannot begin.
Step start_decoding(DecodeState& state);

// Decodes as far as the input goes: done with the whole image, need_more when there is to be more
// input first. A failure frees the image.
Step decode_scans(DecodeState& state);

// The two ways of decoding.
Step decode_baseline(DecodeState& state, Renderer& renderer);
Step decode_progressive(DecodeState& state, Renderer& renderer);

// Nothing waits inside an MCU, so decoding goes on only while plenty of input is there, or all.
constexpr size_t input_reserve = 512;

inline bool may_go_on(const DecodeState& state) {
    return state.final != 0 || state.input.remaining() >= input_reserve;
}

// The image is complete.
Step finish_picture(DecodeState& state);

inline const uint16_t* quantisation_of(const DecodeState& state, uint32_t id) {
    return state.quantisation.widened[state.quantisation_of[id]];
}

// What decodes the blocks of a component with the given tables, dequantised as component id.
inline BlockCoding coding_of(DecodeState& state, int32_t component, uint32_t id, uint32_t dc,
                             uint32_t ac) {
    return {&state.dc_tables[dc], &state.ac_tables[ac],
            quantisation_of(state, id),
            &state.entropy.predictor[component]};
}

} // namespace kirvo
