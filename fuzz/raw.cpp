// A RAW file.
#include "structure.hpp"

using namespace kirvo_fuzz;

static void run(Input& input) {
    static const File file("a.raw");
    draw_surroundings(input);
    file.write(input.rest());
    uint32_t width, height, bits;
    int32_t status = 1;
    check_answer(RawRead(file.name(), &width, &height, &bits, &status), status);
}

static const Target target("raw", run, mutate_raw);
