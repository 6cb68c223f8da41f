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

} // namespace

Status turn_jpeg(Bytes in, const JpegHeaders& headers, uint32_t orientation, bool trim, Buffer& out,
                 Known& known) {
    tjhandle handle = tjInitTransform();
    if (handle == nullptr)
        return KIRVO_FILES_NO_MEMORY;
    tjtransform transform = {};
    transform.op = operation(orientation);
    transform.options = trim ? TJXOPT_TRIM : 0;
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
