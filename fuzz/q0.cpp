// The companion of a Q0 file, which gives its size; the pixels are as many as the case says.
#include "support.hpp"

using namespace kirvo_fuzz;

static void run(Input& input) {
    static const File file("a.q0"), companion("a.IPR");
    draw_surroundings(input);
    file.write(Bytes(input.below(4096), 0xA5));
    companion.write(input.rest());
    uint32_t width, height, bits;
    int32_t status = 1;
    check_answer(Q0Read(file.name(), &width, &height, &bits, &status), status);
}

static const Target target("q0", run);
