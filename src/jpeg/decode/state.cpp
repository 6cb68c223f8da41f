#include "jpeg/decode/state.hpp"

namespace kirvo {

namespace {

void discard_block(HGLOBAL& block) {
    OwnedBlock freed(block);
    block = nullptr;
}

} // namespace

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

void Picture::discard_coefficients() { discard_block(coefficients); }

void DecodeState::reset() {
    header = HeaderState::seeking_start;
    start_prefix = marker_prefix = false;
    leading_fill = 0;
    frame = {0, 0, frame.components, FrameMode::none, first_layout};
    restart_interval = 0;
    entropy.predictor[0] = entropy.predictor[1] = entropy.predictor[2] = 0;
    entropy.eob_run = 0;
    stop = scan_marker = false;
    comments.discard();
}

} // namespace kirvo
