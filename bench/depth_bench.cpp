// Depth conversion. Both sides allocate their result inside the measured time.
#include "support/pictures.hpp"
#include "support/row.hpp"

namespace {

using namespace kirvo_bench;

using Convert = HGLOBAL(WINAPI*)(HGLOBAL, int32_t*);

auto ours(Convert convert, int from_bits) {
    return [convert, from_bits] {
        return [convert, from = photo_of(from_bits)] {
            int32_t status;
            GlobalFree(convert(from, &status));
        };
    };
}

const Row from16to24("depth/16to24/ours", ours(DibConvert24bit, 16));
const Row from32to24("depth/32to24/ours", ours(DibConvert24bit, 32));
const Row from24to16("depth/24to16/ours", ours(DibConvert16bit, 24));
const Row from32to16("depth/32to16/ours", ours(DibConvert16bit, 32));
const Row from16to32("depth/16to32/ours", ours(DibConvert32bit, 16));
const Row from24to32("depth/24to32/ours", ours(DibConvert32bit, 24));
const Row cut("depth/cut/ours", [] {
    return [photo = photo_dib()] {
        int32_t status;
        GlobalFree(DibCutDepth(photo, 5, 6, 5, &status));
    };
});

} // namespace
