// A BMP file.
#include "structure.hpp"

using namespace kirvo_fuzz;

static void run(Input& input) {
    static const File file("a.bmp");
    draw_surroundings(input);
    file.write(input.rest());
    uint32_t width, height, bits;
    int32_t status = 1;
    check_answer(DibReadEx(file.name(), &width, &height, &bits, &status), status);
    check_answer(Dib24Read(file.name(), &width, &height, &status), status);
}

static const Target target("bmp", run, mutate_bmp);
