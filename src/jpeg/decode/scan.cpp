#include "jpeg/decode/scan.hpp"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace kirvo {

namespace {

// Every pixel of it will be written. The size of the rows is not stated.
OwnedBlock make_image(const Frame& frame) {
    OwnedBlock block = new_dib(frame.width, frame.height, 24, Content::any);
    if (const LockedBlock lock(block.get()); lock) {
        constexpr DWORD none = 0;
        std::memcpy(lock.data() + offsetof(BITMAPINFOHEADER, biSizeImage), &none, sizeof none);
    }
    return block;
}

void measure(Picture& picture, const Frame& frame) {
    const Layout& layout = *frame.layout;
    picture.frame = frame;
    picture.mcus_across = (frame.width + layout.mcu_width - 1) / layout.mcu_width;
    picture.mcus =
        picture.mcus_across * ((frame.height + layout.mcu_height - 1) / layout.mcu_height);
    picture.next_mcu = picture.rendered_mcus = 0;
    picture.coverage = 0;
}

void widen_quantisation(DecodeState& state) {
    for (size_t i = 0; i < state.slots.size(); ++i)
        std::copy(state.slots[i].begin(), state.slots[i].end(), state.quantisation.widened[i]);
    state.quantisation.available = true;
}

// A 0xFF says nothing without the byte after it. What has been looked at is not looked at again.
bool first_byte_is_here(DecodeState& state) {
    const DecodeInput& input = state.input;
    size_t& fill = state.leading_fill;
    while (fill < input.remaining() && input.bytes[input.position + fill] == 0xFF)
        ++fill;
    return fill < input.remaining();
}

Step failed(DecodeState& state, Status status) {
    state.picture.discard();
    return Step::failure(status);
}

// Baseline blocks are multiplied when they are rendered, others while they are being read.
Step decode_picture(DecodeState& state) {
    const Picture& picture = state.picture;
    if (picture.frame.mode == FrameMode::baseline) {
        Renderer renderer(picture.frame, picture.image,
                          {quantisation_of(state, 1), quantisation_of(state, 2),
                           quantisation_of(state, 3)});
        return decode_baseline(state, renderer);
    }
    constexpr const uint16_t* done = no_quantisation.data();
    Renderer renderer(picture.frame, picture.image, {done, done, done});
    return decode_progressive(state, renderer);
}

} // namespace

Step start_decoding(DecodeState& state) {
    Picture& picture = state.picture;
    picture.discard();
    if (state.final == 0 && !first_byte_is_here(state))
        return Step::starved();
    if (state.frame.width == 0 || state.frame.height == 0)
        return Step::failure(Status::jpeg_header);
    picture.image = make_image(state.frame).release();
    if (picture.image == nullptr)
        return Step::failure(Status::no_memory);
    widen_quantisation(state);
    measure(picture, state.frame);
    const Status status = CarefulReader(state).prime();
    if (status != Status::ok)
        return failed(state, status);
    state.header = HeaderState::decoding;
    state.progress.start();
    return state.abandoned ? failed(state, Status::abandoned) : Step::finished();
}

Step decode_scans(DecodeState& state) {
    const Step step = decode_picture(state);
    return step.kind == Step::failed ? failed(state, step.status) : step;
}

Step finish_picture(DecodeState& state) {
    state.progress.finish();
    if (state.abandoned)
        return Step::failure(Status::abandoned);
    state.picture.done = true;
    return Step::finished();
}

} // namespace kirvo
