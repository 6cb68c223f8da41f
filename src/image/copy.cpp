// Rectangle copies between images of one depth, and duplicates.
#include "image/duplicate.hpp"

using namespace kirvo;

int32_t WINAPI Dib24Copy(HGLOBAL to, HGLOBAL from, int32_t left, int32_t top, int32_t width,
                         int32_t height) {
    return code(copy_out(to, LockedDib(from), {left, top, width, height}));
}

int32_t WINAPI Dib24CopyEx(HGLOBAL to, int32_t to_left, int32_t to_top, HGLOBAL from,
                           int32_t from_left, int32_t from_top, int32_t width, int32_t height) {
    return code(copy_rect(LockedDib(to), to_left, to_top, LockedDib(from),
                          {from_left, from_top, width, height}));
}

HGLOBAL WINAPI Dib24DupEx(HGLOBAL from, int32_t left, int32_t top, int32_t width, int32_t height,
                          int32_t* status) {
    OwnedBlock result;
    report(status, duplicate(LockedDib(from), {left, top, width, height}, result));
    return result.release();
}
