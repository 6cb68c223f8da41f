// The encoder's entry points.
#include "jpeg/session.hpp"

using namespace kirvo;

namespace {

constexpr int32_t from_table = 1;
constexpr int32_t abort_control = -1;
constexpr int32_t all_mcus = -1;
constexpr int32_t finished = 1;

EncodeRequest colour_request(HGLOBAL dib, const Rect& region, int32_t mcus_per_call) {
    return {EncodeFamily::colour, dib, region, false, mcus_per_call};
}

EncodeRequest grey_request(HGLOBAL dib, const Rect& region, int32_t mode, int32_t mcus_per_call) {
    return {EncodeFamily::grey, dib, region, mode == from_table, mcus_per_call};
}

Status start(const EncodeRequest& request, HGLOBAL* output) {
    if (session.busy())
        return Status::busy;
    return session.encoder.start(request, session.settings, session.slots, output);
}

HGLOBAL first(const EncodeRequest& request, int32_t* status) {
    HGLOBAL output = nullptr;
    const Status result = start(request, &output);
    report(status, result);
    return result == Status::ok ? output : nullptr;
}

int32_t next(EncodeFamily family, int32_t control, uint32_t* stream_bytes) {
    if (control == abort_control) {
        session.encoder.abandon();
        return code(Status::abandoned);
    }
    EncodeProgress progress = EncodeProgress::more;
    const Status status = session.encoder.advance(family, &progress, stream_bytes);
    if (status != Status::ok)
        return code(status);
    return progress == EncodeProgress::done ? finished : 0;
}

// The stream in a block; its length goes to the library's own variable.
Status encode_whole(const EncodeRequest& request, OwnedBlock* stream) {
    HGLOBAL output = nullptr;
    const Status status = start(request, &output);
    if (status != Status::ok)
        return status;
    int32_t result;
    do
        result = next(request.family, 0, &session.settings.output_bytes);
    while (result == 0);
    if (result < 0)
        return static_cast<Status>(result);
    stream->reset(output);
    return Status::ok;
}

Status write_stream(const char* path, const OwnedBlock& stream) {
    OutputFile file;
    if (!file.create(path))
        return Status::cannot_open;
    const LockedBlock bytes(stream.get());
    const bool written = bytes && file.write(bytes.data(), session.settings.output_bytes);
    return written && file.close() ? Status::ok : Status::write_error;
}

int32_t encode_to_file(const char* path, const EncodeRequest& request) {
    if (path == nullptr || *path == 0)
        return code(Status::bad_parameter);
    OwnedBlock stream;
    const Status status = encode_whole(request, &stream);
    return code(status == Status::ok ? write_stream(path, stream) : status);
}

HGLOBAL encode_to_block(const EncodeRequest& request, uint32_t* stream_bytes, int32_t* status) {
    OwnedBlock stream;
    const Status result = encode_whole(request, &stream);
    report(status, result);
    if (result == Status::ok)
        report(stream_bytes, session.settings.output_bytes);
    return stream.release();
}

} // namespace

HGLOBAL WINAPI JpgCodFirst(HGLOBAL dib, int32_t left, int32_t top, int32_t width, int32_t height,
                           int32_t mcus_per_call, int32_t* status) {
    return first(colour_request(dib, {left, top, width, height}, mcus_per_call), status);
}

int32_t WINAPI JpgCodNext(int32_t control, uint32_t* stream_bytes) {
    return next(EncodeFamily::colour, control, stream_bytes);
}

int32_t WINAPI JpgCodMainEx(LPCSTR path, HGLOBAL dib, int32_t left, int32_t top, int32_t width,
                            int32_t height, int32_t, int32_t) {
    return encode_to_file(path, colour_request(dib, {left, top, width, height}, all_mcus));
}

HGLOBAL WINAPI JpgCodMainHGLOBAL(HGLOBAL dib, int32_t left, int32_t top, int32_t width,
                                 int32_t height, uint32_t* stream_bytes, int32_t* status) {
    return encode_to_block(colour_request(dib, {left, top, width, height}, all_mcus), stream_bytes,
                           status);
}

HGLOBAL WINAPI JpgCodFirst_M(HGLOBAL dib, int32_t left, int32_t top, int32_t width, int32_t height,
                             int32_t grey_mode, int32_t mcus_per_call, int32_t* status) {
    return first(grey_request(dib, {left, top, width, height}, grey_mode, mcus_per_call), status);
}

int32_t WINAPI JpgCodNext_M(int32_t control, uint32_t* stream_bytes) {
    return next(EncodeFamily::grey, control, stream_bytes);
}

int32_t WINAPI JpgCodMainEx_M(LPCSTR path, HGLOBAL dib, int32_t left, int32_t top, int32_t width,
                              int32_t height, int32_t grey_mode) {
    return encode_to_file(path, grey_request(dib, {left, top, width, height}, grey_mode, all_mcus));
}

HGLOBAL WINAPI JpgCodMainHGLOBAL_M(HGLOBAL dib, int32_t left, int32_t top, int32_t width,
                                   int32_t height, int32_t grey_mode, uint32_t* stream_bytes,
                                   int32_t* status) {
    return encode_to_block(grey_request(dib, {left, top, width, height}, grey_mode, all_mcus),
                           stream_bytes, status);
}
