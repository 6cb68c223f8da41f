#include "jpeg/decode_state.hpp"

namespace kirvo {

constinit const Layout grey_layout = {0x11, 0x00, 8, 8, 1, 0};

constinit const Layout colour_layouts[6] = {
    {0x11, 0x11, 8, 8, 1, 1},   {0x21, 0x11, 16, 8, 2, 1},  {0x12, 0x11, 8, 16, 2, 1},
    {0x22, 0x11, 16, 16, 4, 1}, {0x22, 0x21, 16, 16, 4, 2}, {0x22, 0x12, 16, 16, 4, 2},
};

namespace {

constexpr const Layout* initial_layout = &colour_layouts[3];

constexpr DecodeState initial_state() {
    DecodeState state = {};
    state.frame = {0, 0, 3, FrameMode::none, initial_layout};
    state.scan.spectral_end = 63;
    return state;
}

void discard_block(HGLOBAL& block) {
    OwnedBlock freed(block);
    block = nullptr;
}

} // namespace

constinit DecodeState decode_state = initial_state();

void Comments::discard() {
    for (HGLOBAL& comment : stored)
        discard_block(comment);
    count = 0;
}

void Picture::discard() {
    if (!done)
        discard_block(image);
    image = nullptr;
    done = false;
    discard_coefficients();
}

void Picture::discard_coefficients() {
    discard_block(coefficients);
}

void DecodeState::reset() {
    header = HeaderState::seeking_start;
    start_prefix = marker_prefix = false;
    leading_fill = 0;
    frame = {0, 0, frame.components, FrameMode::none, initial_layout};
    restart_interval = 0;
    entropy.predictor[0] = entropy.predictor[1] = entropy.predictor[2] = 0;
    entropy.eob_run = 0;
    stop = scan_marker = false;
    comments.discard();
}

} // namespace kirvo
