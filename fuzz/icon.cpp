// An icon or cursor file: its lists and one of its images.
#include "structure.hpp"

#include <algorithm>

using namespace kirvo_fuzz;

static void run(Input& input) {
    static const File file("a.ico");
    draw_surroundings(input);
    const uint32_t size = input.below(200);
    const int32_t index = input.between(0, 255) - 1;
    file.write(input.rest());

    const int32_t count = IcoGetInfo(file.name(), nullptr, 0);
    Bytes records(size, 0xEE);
    const int32_t listed = IcoGetInfo(file.name(), records.data(), size);
    require(listed < 0 || size < 6 || listed == count, "the count does not depend on the room");
    Bytes wide_records(12 * std::max(size / 6, (size + 11) / 12), 0xEE);
    IcoGetInfoEx(file.name(), wide_records.data(), size);

    uint32_t width, height, bits;
    int32_t status = 1;
    HGLOBAL mask = nullptr;
    check_answer(IcoGetData(file.name(), index, &width, &height, &bits, &status, &mask), status);
    require((mask != nullptr) == (status == KIRVO_OK), "a mask comes with an image");
    look_at(mask);
    GlobalFree(mask);
}

static const Target target("icon", run, mutate_icon);
