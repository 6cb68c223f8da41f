// A JPEG file: what its header says, and its image.
#include "jpeg.hpp"
#include "structure.hpp"

using namespace kirvo_fuzz;

static void run(Input& input) {
    static const File file("a.jpg");
    reset_decoder();
    draw_surroundings(input);
    file.write(input.rest());
    JpgDecSpec spec = {};
    const int32_t status = JpgDecGetSpecEx(file.name(), &spec);
    require(status <= 0, "a code");
    uint32_t width = 0, height = 0;
    int32_t error = 1;
    const kirvo::OwnedBlock image(JpgDecMainEx(file.name(), &width, &height, &error));
    require(image ? error == KIRVO_OK : error < 0, "an image or a code");
    if (image && status == KIRVO_OK)
        require(spec.width == width && spec.height == height, "the image is as its header says");
    look_at(image.get());
}

static const Target target("jpeg_file", run, mutate_jpeg);
