#include "formats/answer.hpp"

namespace kirvo {

HGLOBAL answer(OwnedBlock image, Status result, uint32_t* width, uint32_t* height, uint32_t* bits,
               int32_t* status) {
    report(status, result);
    if (result != Status::ok)
        return nullptr;
    const LockedDib dib(image.get());
    report(width, static_cast<uint32_t>(dib.width()));
    report(height, static_cast<uint32_t>(dib.height()));
    report(bits, static_cast<uint32_t>(dib.bits()));
    return image.release();
}

} // namespace kirvo
