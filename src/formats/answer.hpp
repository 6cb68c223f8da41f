// How the readers of this folder answer, and what its writers are given.
#pragma once

#include "image/dib.hpp"

namespace kirvo {

// Reports the status and, on success, the image's size and depth, and hands the image over.
HGLOBAL answer(OwnedBlock image, Status result, uint32_t* width, uint32_t* height, uint32_t* bits,
               int32_t* status);

// An image and a rectangle of it, -1 by -1 for all: what is no image and no rectangle is answered, all
// else is for write(dib, rectangle).
template<typename Write>
Status with_rectangle(HGLOBAL handle, Rect rect, Write write) {
    if (handle == nullptr || rect.x < 0 || rect.y < 0)
        return Status::bad_parameter;
    const LockedDib dib(handle);
    if (!dib)
        return Status::null_handle;
    if (rect.width == -1 && rect.height == -1) {
        rect.width = dib.width();
        rect.height = dib.height();
    }
    return write(dib, rect);
}

} // namespace kirvo
