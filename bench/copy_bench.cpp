// Copies: what every operation that makes a new image pays at least.
#include "support/pictures.hpp"
#include "support/row.hpp"

namespace {

using namespace kirvo_bench;

const Row duplicate("copy/duplicate/ours", [] {
    return [photo = photo_dib()] {
        int32_t status;
        GlobalFree(Dib24DupEx(photo, 0, 0, photo_width, photo_height, &status));
    };
});

} // namespace
