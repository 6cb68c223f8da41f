// Decoding a JPEG stream into a 24-bit image: whole, or piece by piece as the bytes arrive.
#include "jpeg/decode_markers.hpp"
#include "jpeg/decode_scan.hpp"
#include "jpeg/session.hpp"

namespace kirvo {

namespace {

constexpr int32_t finished = 1;
constexpr int32_t abandon = -1;

// From one phase to the next while input remains.
Step decode_phases(DecodeState& state) {
    if (state.header == HeaderState::seeking_start) {
        for (int i = 0; i < 4; ++i)
            state.quantisation.defined[i] = state.dc_defined[i] = state.ac_defined[i] = false;
        if (!find_start_of_image(state))
            return state.is_final() ? Step::failure(Status::jpeg_no_soi) : Step::starved();
        state.header = HeaderState::reading_segments;
        if (state.input.empty())
            return Step::starved();
    }
    if (state.header == HeaderState::reading_segments) {
        const Step step = read_segments(state, state.comments.enabled);
        if (step.kind != Step::done)
            return state.is_final() ? Step::failure(Status::jpeg_header) : step;
        state.header = HeaderState::scan_header_read;
        if (state.input.empty())
            return Step::starved();
    }
    if (state.header == HeaderState::scan_header_read) {
        const Step step = start_decoding(state);
        if (step.kind != Step::done)
            return step;
    }
    return decode_scans(state);
}

// Whatever way a decode has ended.
void end_decode(DecodeState& state) {
    if (!state.under_way)
        return;
    state.input.discard();
    if (!state.picture.done)
        state.picture.discard();
    state.under_way = state.abandoned = false;
}

int32_t end_with(DecodeState& state, Status status) {
    end_decode(state);
    return code(status);
}

int32_t advance(DecodeState& state, HGLOBAL* image) {
    state.running = true;
    const Step step = decode_phases(state);
    state.running = false;
    if (step.kind == Step::need_more)
        return 0;
    if (step.kind == Step::failed)
        return end_with(state, step.status);
    report(image, state.picture.image);
    end_decode(state);
    return finished;
}

// The caller's bytes: none (-3), a size that is not theirs (-1).
Status check_piece(const BorrowedBlock& data, int32_t size) {
    if (!data)
        return Status::null_handle;
    if (size < 0 || static_cast<size_t>(size) > data.size())
        return Status::bad_parameter;
    return Status::ok;
}

void begin_decode(DecodeState& state) {
    state.under_way = true;
    state.reset();
    state.input.discard();
    state.picture.discard();
    state.final = 0;
}

// A progress handler may end the decode that it is told of, once that looks, and nothing else.
int32_t answer_handler(DecodeState& state, int32_t final) {
    if (final != abandon)
        return code(Status::busy);
    state.abandoned = true;
    return code(Status::abandoned);
}

// Goes on to the end after a First call; the size is reported with the image.
HGLOBAL decode_rest(int32_t result, HGLOBAL image, uint32_t* width, uint32_t* height,
                    int32_t* error) {
    if (result == 0)
        result = JpgDecNext(nullptr, 0, 1, &image);
    if (result != finished) {
        report(error, result);
        return nullptr;
    }
    const Frame& frame = session.decoder.picture.frame;
    report(width, static_cast<uint32_t>(frame.width));
    report(height, static_cast<uint32_t>(frame.height));
    return image;
}

} // namespace

} // namespace kirvo

using namespace kirvo;

int32_t WINAPI JpgDecFirst(HGLOBAL data, int32_t size, HGLOBAL* image) {
    DecodeState& state = session.decoder;
    if (session.busy())
        return code(Status::busy);
    const BorrowedBlock piece(data);
    const Status status = check_piece(piece, size);
    if (status != Status::ok)
        return code(status);
    begin_decode(state);
    if (!state.input.append(piece.data(), static_cast<size_t>(size)))
        return end_with(state, Status::no_memory);
    report(image, HGLOBAL{nullptr});
    return advance(state, image);
}

int32_t WINAPI JpgDecNext(HGLOBAL data, int32_t size, int32_t final, HGLOBAL* image) {
    DecodeState& state = session.decoder;
    report(image, HGLOBAL{nullptr});
    if (state.running)
        return answer_handler(state, final);
    if (final == abandon)
        return end_with(state, Status::abandoned);
    if (state.picture.done) {
        report(image, state.picture.image);
        return finished;
    }
    if (!state.under_way)
        return code(Status::null_handle);
    state.final = final;
    if (data != nullptr && size != 0) {
        const BorrowedBlock piece(data);
        const Status status = check_piece(piece, size);
        if (status != Status::ok)
            return end_with(state, status);
        if (!state.input.append(piece.data(), static_cast<size_t>(size)))
            return end_with(state, Status::no_memory);
    } else if (!state.is_final()) {
        return end_with(state, Status::null_handle);
    }
    if (!may_go_on(state))
        return 0;
    return advance(state, image);
}

HGLOBAL WINAPI JpgDecMainEx(LPCSTR name, uint32_t* width, uint32_t* height, int32_t* error) {
    OwnedBlock data;
    uint32_t size = 0;
    Status status = read_file(name, data, size);
    if (status == Status::ok && session.busy())
        status = Status::busy;
    report(error, status);
    if (status != Status::ok)
        return nullptr;
    begin_decode(session.decoder);
    session.decoder.input.replace(std::move(data), size);
    HGLOBAL image = nullptr;
    const int32_t result = advance(session.decoder, &image);
    return decode_rest(result, image, width, height, error);
}

HGLOBAL WINAPI JpgDecMainHGLOBAL(HGLOBAL data, int32_t size, uint32_t* width, uint32_t* height,
                                 int32_t* error) {
    report(error, Status::ok);
    HGLOBAL image = nullptr;
    const int32_t result = JpgDecFirst(data, size, &image);
    return decode_rest(result, image, width, height, error);
}

void WINAPI JpgDecSetNoblock(int32_t, int32_t, int32_t) {}
