// The functions that turn a JPEG without loss.
#include "codec.hpp"
#include "exif.hpp"
#include "formats.hpp"
#include "system.hpp"

namespace kirvo_files {
namespace {

// What a turn does to a direction, y pointing down, in the order of EXIF's orientations.
struct Matrix {
    int a, b, c, d;
};
constexpr Matrix matrices[] = {{1, 0, 0, 1},   {1, 0, 0, 1},   {-1, 0, 0, 1},
                               {-1, 0, 0, -1}, {1, 0, 0, -1},  {0, 1, 1, 0},
                               {0, -1, 1, 0},  {0, -1, -1, 0}, {0, 1, -1, 0}};

// The orientation that does both, the first one first.
uint32_t composed(uint32_t first, uint32_t second) {
    const Matrix &m = matrices[second], &n = matrices[first];
    const Matrix both = {m.a * n.a + m.b * n.c, m.a * n.b + m.b * n.d, m.c * n.a + m.d * n.c,
                         m.c * n.b + m.d * n.d};
    uint32_t found = 1;
    for (uint32_t i = 1; i <= 8; ++i)
        if (matrices[i].a == both.a && matrices[i].b == both.b && matrices[i].c == both.c &&
            matrices[i].d == both.d)
            found = i;
    return found;
}

// The stream with its segments of metadata as they are to be: EXIF brought up to date, thumbnails
// and, where asked for, everything left out.
Status copy_segments(Bytes stream, const Buffer& exif, bool strip, Buffer& out) {
    uint64_t at = 2;
    bool good = out.append(stream.part(0, 2)), done = false;
    while (good && stream[at] == 0xFF && stream[at + 1] != 0xDA && stream.has(at, 4)) {
        const uint8_t marker = stream[at + 1];
        const Bytes segment = stream.part(at, uint64_t{2} + stream.be16(at + 2));
        const bool is_exif = marker == 0xE1 && segment.begins("Exif\0", 4);
        const bool metadata =
            (marker >= 0xE1 && marker <= 0xEF && marker != 0xEE) || marker == 0xFE;
        const bool thumbnail = marker == 0xE0 && segment.begins("JFXX", 4);
        at += segment.size();
        if (thumbnail || (strip && metadata) || (is_exif && done))
            continue;
        if (is_exif && exif.size() + 8 <= 65535) {
            good = out.append("\xFF\xE1", 2) &&
                   out.append_be16(static_cast<uint32_t>(exif.size() + 8)) &&
                   out.append("Exif\0", 6) && out.append(exif.bytes());
            done = true;
        } else {
            good = out.append(segment);
        }
    }
    return good && out.append(stream.part(at)) ? KIRVO_FILES_OK : KIRVO_FILES_NO_MEMORY;
}

struct Turn {
    int32_t turning, edges;
    uint32_t flags;
};

Status turned_file(Bytes in, const Turn& turn, Known& known, Buffer& out) {
    if (recognise(in, "") != KIRVO_FILES_JPEG)
        return known.fail(in.empty() ? KIRVO_FILES_EMPTY : KIRVO_FILES_UNSUPPORTED,
                          Text::format("only JPEG files are turned without loss"));
    JpegHeaders headers;
    Status status = read_jpeg_headers(in, known, headers);
    if (status != KIRVO_FILES_OK)
        return status;
    static const uint8_t orientations[] = {1, 6, 3, 8, 4, 2};
    const uint32_t orientation = composed(known.numbers.orientation, orientations[turn.turning]);
    TurnResult result;
    Buffer stream;
    status = orientation == 1
                 ? (stream.append(in) ? KIRVO_FILES_OK : KIRVO_FILES_NO_MEMORY)
                 : turn_jpeg(in, headers, orientation, turn.edges, stream, result, known);
    if (status == KIRVO_FILES_NO_CODEC)
        return known.fail(status, Text::format("this system has no transform of JPEG files"));
    if (status != KIRVO_FILES_OK)
        return status;
    const bool across = orientation >= 5;
    const uint32_t width = headers.width - result.cut_across;
    const uint32_t height = headers.height - result.cut_down;
    known.numbers.format = KIRVO_FILES_JPEG;
    known.numbers.width = across ? height : width;
    known.numbers.height = across ? width : height;
    known.numbers.orientation = 1;
    update_exif(known.exif, known.numbers.width, known.numbers.height, true);
    if (result.cut_across != 0 || result.cut_down != 0)
        known.note(KIRVO_FILES_NOTE_REDUCED,
                   Text::format("%u columns and %u rows cut off at the edges", result.cut_across,
                                result.cut_down));
    if (result.kept)
        known.note(KIRVO_FILES_NOTE_REDUCED,
                   Text::format("blocks at the edges stay unturned where they are"));
    status = copy_segments(stream.bytes(), known.exif, (turn.flags & KIRVO_FILES_STRIP) != 0, out);
    known.numbers.fileBytes = static_cast<uint32_t>(out.size());
    return status;
}

int32_t turn_file(const char* in, const char* out, const Turn& turn, KirvoFile* file) {
    if (file != nullptr)
        *file = nullptr;
    if (turn.turning < KIRVO_FILES_TURN_UPRIGHT || turn.turning > KIRVO_FILES_TURN_MIRROR ||
        turn.edges < KIRVO_FILES_EDGES_FAIL || turn.edges > KIRVO_FILES_EDGES_KEEP ||
        (turn.flags & ~uint32_t{KIRVO_FILES_STRIP | KIRVO_FILES_NEW_ONLY}) != 0)
        return KIRVO_FILES_BAD_PARAMETER;
    Known* known = make<Known>();
    if (known == nullptr)
        return KIRVO_FILES_NO_MEMORY;
    Buffer content, made;
    Status status = read_file(in, content, *known);
    if (status == KIRVO_FILES_OK)
        status = turned_file(content.bytes(), turn, *known, made);
    if (status != KIRVO_FILES_OK)
        return answer(status, in, known, file);
    status = write_file(out, made.bytes(), (turn.flags & KIRVO_FILES_NEW_ONLY) != 0, *known);
    return answer(status, out, known, file);
}

} // namespace
} // namespace kirvo_files

using namespace kirvo_files;

int32_t WINAPI KirvoFilesTurn(const char* in, const char* out, int32_t turning, int32_t edges,
                              uint32_t flags, KirvoFile* file) {
    return in != nullptr && out != nullptr ? turn_file(in, out, {turning, edges, flags}, file)
                                           : KIRVO_FILES_BAD_PARAMETER;
}

int32_t WINAPI KirvoFilesTurnW(const KirvoWide* in, const KirvoWide* out, int32_t turning,
                               int32_t edges, uint32_t flags, KirvoFile* file) {
    if (in == nullptr || out == nullptr)
        return KIRVO_FILES_BAD_PARAMETER;
    const Text from = utf8_of(in), to = utf8_of(out);
    if ((from.empty() && in[0] != 0) || (to.empty() && out[0] != 0))
        return KIRVO_FILES_NO_MEMORY;
    return turn_file(from.c_str(), to.c_str(), {turning, edges, flags}, file);
}
