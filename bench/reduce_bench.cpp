// Colour reduction. Peers that do comparable work: libjpeg-turbo quantises to its own 256 colours,
// GraphicsMagick maps to a given palette.
#include "support/pictures.hpp"
#include "support/row.hpp"

#include <cstdio>
#include <vector>

#include <jpeglib.h>

namespace {

using namespace kirvo_bench;

using Reduce = HGLOBAL(WINAPI*)(HGLOBAL, int32_t*);

auto ours(Reduce reduce) {
    return [reduce] {
        return [reduce, photo = photo_dib()] {
            int32_t status;
            GlobalFree(reduce(photo, &status));
        };
    };
}

const Row diffuse256("reduce/diffuse256/ours", ours(DecreaseColor256));
const Row diffuse16("reduce/diffuse16/ours", ours(DecreaseColor16));
const Row grey("reduce/grey/ours", ours(DecreaseColorMono256));
const Row ordered("reduce/ordered/ours", ours(Decrease256Fast));

} // namespace
