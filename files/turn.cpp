// The functions that turn a JPEG without loss.
#include "codec.hpp"
#include "exif.hpp"
#include "formats.hpp"
#include "job.hpp"
#include "jpeg_coefficients.hpp"
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
    while (good && stream.has(at, 4)) {
        const uint64_t start = at;
        const JpegSegment segment = next_jpeg_segment(stream, at);
        const uint8_t marker = segment.marker;
        if (marker == 0xDA || !segment.is_whole) {
            at = start;
            break;
        }
        const bool is_exif = marker == 0xE1 && segment.body().begins("Exif\0");
        const bool metadata =
            (marker >= 0xE1 && marker <= 0xEF && marker != 0xEE) || marker == 0xFE;
        const bool thumbnail = marker == 0xE0 && segment.body().begins("JFXX");
        if (thumbnail || (strip && metadata) || (is_exif && done))
            continue;
        if (is_exif && exif.size() + 8 <= 65535) {
            good = out.append("\xFF\xE1", 2) &&
                   out.append_be16(static_cast<uint32_t>(exif.size() + 8)) &&
                   out.append("Exif\0", 6) && out.append(exif.bytes());
            done = true;
        } else {
            good = out.append(segment.bytes);
        }
    }
    return good && out.append(stream.part(at)) ? KIRVO_FILES_OK : KIRVO_FILES_NO_MEMORY;
}

struct Turn {
    int32_t turning, edges;
    uint32_t flags;
};

// Pixels beyond the last whole MCU of edges that would come first.
struct Loose {
    uint32_t across = 0, down = 0;
};

Loose loose_edges(const JpegHeaders& headers, uint32_t orientation) {
    const bool grey = headers.components == 1;
    const bool across =
        orientation == 2 || orientation == 3 || orientation == 7 || orientation == 8;
    const bool down = orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7;
    return {across ? headers.width % (grey ? 8 : 8 * headers.most_across) : 0,
            down ? headers.height % (grey ? 8 : 8 * headers.most_down) : 0};
}

// A file in Huffman codes by the room itself, every other by a library.
Status turned_stream(Bytes in, const JpegHeaders& headers, uint32_t orientation, bool trim,
                     const Loose& loose, Buffer& out, Known& known) {
    TurnPlan plan;
    const Matrix& matrix = matrices[orientation];
    plan.transpose = matrix.a == 0;
    plan.flip_across = matrix.a + matrix.b < 0;
    plan.flip_down = matrix.c + matrix.d < 0;
    plan.width = headers.width - (trim ? loose.across : 0);
    plan.height = headers.height - (trim ? loose.down : 0);
    if (plan.transpose)
        std::swap(plan.width, plan.height);
    const Status status = turn_coefficients(in, headers, plan, out);
    if (status == KIRVO_FILES_DAMAGED)
        return known.fail(status, Text::format("damaged: it cannot be turned without loss"));
    if (status != KIRVO_FILES_NO_CODEC)
        return status;
    out.clear();
    return turn_jpeg(in, headers, orientation, trim, out, known);
}

Status turned_file(Bytes in, const Turn& turn, Known& known, Buffer& out) {
    if (in.empty())
        return known.fail(KIRVO_FILES_EMPTY, Text::format("the file is empty"));
    if (recognise(in, "") != KIRVO_FILES_JPEG)
        return known.fail(KIRVO_FILES_UNSUPPORTED,
                          Text::format("only JPEG files are turned without loss"));
    JpegHeaders headers;
    Status status = read_jpeg_headers(in, known, headers);
    if (status != KIRVO_FILES_OK)
        return status;
    if (out_of_proportion(uint64_t{3} * headers.width * headers.height, in.size()))
        return known.fail(KIRVO_FILES_CLAIM_TOO_LARGE,
                          Text::format("it claims %u x %u pixels, out of all proportion to the size"
                                       " of the file",
                                       headers.width, headers.height));
    if (headers.width == 0 || headers.height == 0)
        return known.fail(KIRVO_FILES_UNSUPPORTED, Text::format("its headers tell no size"));
    static const uint8_t orientations[] = {1, 6, 3, 8, 4, 2};
    const uint32_t orientation = composed(known.numbers.orientation, orientations[turn.turning]);
    const Loose loose = loose_edges(headers, orientation);
    const bool any_loose = loose.across != 0 || loose.down != 0;
    const bool trim = turn.edges == KIRVO_FILES_EDGES_TRIM && any_loose;
    if (any_loose && turn.edges == KIRVO_FILES_EDGES_FAIL)
        return known.fail(KIRVO_FILES_EDGE,
                          Text::format("%u x %u pixels are no multiple of its blocks",
                                       headers.width, headers.height));
    if (trim && (loose.across == headers.width || loose.down == headers.height))
        return known.fail(KIRVO_FILES_EDGE, Text::format("nothing would be left of it"));
    Buffer stream;
    status = orientation == 1 ? (stream.append(in) ? KIRVO_FILES_OK : KIRVO_FILES_NO_MEMORY)
                              : turned_stream(in, headers, orientation, trim, loose, stream, known);
    if (status == KIRVO_FILES_NO_CODEC)
        return known.fail(status, Text::format("JPEG of this kind is not turned here: %s",
                                               known.text(KIRVO_FILES_TEXT_VARIANT).c_str()));
    if (status != KIRVO_FILES_OK)
        return status;
    const bool across = orientation >= 5;
    const uint32_t width = headers.width - (trim ? loose.across : 0);
    const uint32_t height = headers.height - (trim ? loose.down : 0);
    known.numbers.format = KIRVO_FILES_JPEG;
    known.numbers.width = across ? height : width;
    known.numbers.height = across ? width : height;
    known.numbers.orientation = 1;
    update_exif(known.exif, known.numbers.width, known.numbers.height, true);
    if (trim)
        known.note(
            KIRVO_FILES_NOTE_REDUCED,
            Text::format("%u columns and %u rows cut off at the edges", loose.across, loose.down));
    else if (any_loose)
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
