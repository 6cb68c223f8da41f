// What a stream says of itself, and what the last decode has left behind.
#include "jpeg/decode/markers.hpp"
#include "jpeg/session.hpp"

namespace kirvo {

namespace {

// The input is the whole file.
Status read_stream_information(DecodeState& state) {
    if (!find_start_of_image(state))
        return Status::jpeg_no_soi;
    state.header = HeaderState::reading_segments;
    if (read_segments(state, false).kind != Step::done)
        return Status::jpeg_header;
    state.header = HeaderState::scan_header_read;
    return Status::ok;
}

JpgDecSpec describe(const DecodeState& state) {
    return {static_cast<uint32_t>(state.frame.width),
            static_cast<uint32_t>(state.frame.height),
            static_cast<uint32_t>(state.frame.components),
            static_cast<uint32_t>(state.frame.layout->luma_blocks),
            state.restart_interval,
            static_cast<uint32_t>(state.comments.count),
            static_cast<uint32_t>(state.input.size)};
}

// From zigzag to row-major order.
void copy_natural(const uint16_t* table, uint16_t* natural) {
    if (natural == nullptr)
        return;
    for (size_t k = 0; k < zigzag.size(); ++k)
        natural[zigzag[k]] = table[k];
}

} // namespace

} // namespace kirvo

using namespace kirvo;

// A decode under way shares the state, and loses it.
int32_t WINAPI JpgDecGetSpecEx(LPCSTR name, JpgDecSpec* spec) {
    DecodeState& state = session.decoder;
    if (state.running)
        return code(Status::busy);
    state.reset();
    state.input.discard();
    if (!state.picture.done)
        state.picture.discard();
    OwnedBlock file;
    uint32_t size = 0;
    Status status = read_file(name, file, size);
    if (status == Status::ok) {
        state.input.replace(std::move(file), size);
        status = read_stream_information(state);
    }
    if (status == Status::ok)
        report(spec, describe(state));
    state.input.discard();
    return code(status);
}

int32_t WINAPI JpgDecGetSpec(LPCSTR name, uint32_t* width, uint32_t* height, uint32_t* components,
                             uint32_t* luma_blocks) {
    JpgDecSpec spec;
    const int32_t status = JpgDecGetSpecEx(name, &spec);
    if (status != KIRVO_OK)
        return status;
    report(width, spec.width);
    report(height, spec.height);
    report(components, spec.components);
    report(luma_blocks, spec.lumaBlocks);
    return status;
}

void WINAPI JpgDecGetCommentEnable(int32_t enable) {
    session.decoder.comments.enabled = enable == 1;
}

int32_t WINAPI JpgDecCommentCounts(void) { return session.decoder.comments.count; }

HGLOBAL WINAPI JpgDecGetComment(int32_t index) {
    const Comments& comments = session.decoder.comments;
    const bool there = comments.enabled && index >= 0 && index < comments.count;
    return there ? comments.stored[index] : nullptr;
}

void WINAPI JpgDecCommentFree(void) { session.decoder.comments.discard(); }

int32_t WINAPI JpgDecGetQtable(uint16_t* luma, uint16_t* chroma) {
    const QuantisationTables& tables = session.decoder.quantisation;
    if (!tables.available)
        return 0;
    copy_natural(tables.widened[0], luma);
    copy_natural(tables.widened[1], chroma);
    return 1;
}

int32_t WINAPI JpgDecGetQtableEx(int32_t number, uint16_t* table) {
    const QuantisationTables& tables = session.decoder.quantisation;
    if (!tables.available)
        return KIRVO_NO_MEMORY;
    if (number < 0 || number > 3)
        return KIRVO_BAD_PARAMETER;
    if (!tables.defined[number])
        return KIRVO_NULL_HANDLE;
    copy_natural(tables.widened[number], table);
    return KIRVO_OK;
}

uint16_t WINAPI JpgDecGetLastUexMarker(uint32_t* position) {
    report(position, session.decoder.unexpected.position);
    return session.decoder.unexpected.marker;
}
