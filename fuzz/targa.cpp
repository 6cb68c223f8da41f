// A Targa file.
#include "structure.hpp"

using namespace kirvo_fuzz;

static void run(Input& input) {
    static const File file("a.tga");
    draw_surroundings(input);
    file.write(input.rest());
    uint32_t width, height;
    int32_t status = 1;
    check_answer(Targa24Read(file.name(), &width, &height, &status), status);
}

static const Target target("targa", run, mutate_targa);
