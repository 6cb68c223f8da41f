// libjpeg-turbo's transform of coefficients.
#include "codecs/codecs.hpp"

#include <turbojpeg.h>

namespace kirvo_files {
namespace {

// The transform that brings a picture of this EXIF orientation upright.
int operation(uint32_t orientation) {
    static const int operations[] = {TJXOP_NONE,   TJXOP_NONE,       TJXOP_HFLIP,
                                     TJXOP_ROT180, TJXOP_VFLIP,      TJXOP_TRANSPOSE,
                                     TJXOP_ROT90,  TJXOP_TRANSVERSE, TJXOP_ROT270};
    return operations[orientation];
}

// Whether the last column or row of blocks of the file would come first.
bool across_moves(uint32_t orientation) {
    return orientation == 2 || orientation == 3 || orientation == 7 || orientation == 8;
}
bool down_moves(uint32_t orientation) {
    return orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7;
}

} // namespace

Status turn_jpeg(Bytes in, const JpegHeaders& headers, uint32_t orientation, int32_t edges,
                 Buffer& out, TurnResult& result, Known& known) {
    const bool grey = headers.components == 1;
    const uint32_t across = 8 * (grey ? 1 : headers.most_across);
    const uint32_t down = 8 * (grey ? 1 : headers.most_down);
    const uint32_t loose_across = across_moves(orientation) ? headers.width % across : 0;
    const uint32_t loose_down = down_moves(orientation) ? headers.height % down : 0;
    if (loose_across != 0 || loose_down != 0) {
        if (edges == KIRVO_FILES_EDGES_FAIL)
            return known.fail(KIRVO_FILES_EDGE,
                              Text::format("%u x %u pixels are no multiple of its blocks of %u x"
                                           " %u",
                                           headers.width, headers.height, across, down));
        if (edges == KIRVO_FILES_EDGES_TRIM) {
            if (loose_across == headers.width || loose_down == headers.height)
                return known.fail(KIRVO_FILES_EDGE, Text::format("nothing would be left of it"));
            result.cut_across = loose_across;
            result.cut_down = loose_down;
        }
        result.kept = edges == KIRVO_FILES_EDGES_KEEP;
    }
    tjhandle handle = tjInitTransform();
    if (handle == nullptr)
        return KIRVO_FILES_NO_MEMORY;
    tjtransform transform = {};
    transform.op = operation(orientation);
    transform.options = edges == KIRVO_FILES_EDGES_TRIM ? TJXOPT_TRIM : 0;
    if (headers.frame == 0xC2)
        transform.options |= TJXOPT_PROGRESSIVE;
    unsigned char* made = nullptr;
    unsigned long count = 0;
    Status status = KIRVO_FILES_OK;
    if (tjTransform(handle, in.data(), static_cast<unsigned long>(in.size()), 1, &made, &count,
                    &transform, TJFLAG_STOPONWARNING | TJFLAG_LIMITSCANS) != 0)
        status = known.fail(KIRVO_FILES_DAMAGED, Text::format("%s", tjGetErrorStr2(handle)));
    else if (!out.assign({made, count}))
        status = KIRVO_FILES_NO_MEMORY;
    tjFree(made);
    tjDestroy(handle);
    return status;
}

} // namespace kirvo_files
