// How the readers of this folder answer.
#pragma once

#include "image/dib.hpp"

namespace kirvo {

// Reports the status and, on success, the image's size and depth, and hands the image over.
HGLOBAL answer(OwnedBlock image, Status result, uint32_t* width, uint32_t* height, uint32_t* bits,
               int32_t* status);

} // namespace kirvo
