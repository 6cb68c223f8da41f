// The Photo CD library, in whose place a stand-in answers as the case says and hands over any
// block.
#include "formats/standin/photo_cd.hpp"

#include "structure.hpp"

#include <dlfcn.h>

using namespace kirvo_fuzz;

static PhotoCdStandIn& stand_in() {
    static void* const library =
        dlopen(KIRVO_FUZZ_PHOTO_CD, RTLD_NOW); // and found by name from now
    require(library != nullptr, "the stand-in is there");
    return *reinterpret_cast<PhotoCdStandInFunction>(dlsym(library, "photo_cd_stand_in"))();
}

static void run(Input& input) {
    PhotoCdStandIn& answers = stand_in();
    answers = {};
    for (uint32_t* answer :
         {&answers.open, &answers.read_image_info, &answers.set_progress, &answers.get_rotation,
          &answers.set_transform, &answers.set_resolution, &answers.load_image, &answers.close})
        *answer = input.pick({0u, 0u, 0u, 0u, 0u, 1u, 0x10000u, 0xFFFFFFFFu});
    answers.rotation = input.between(0, 255);
    const uint32_t kind = input.below(8);
    const int32_t resolution = input.between(0, 255) - 8;
    const uint32_t progress = input.below(3);
    const bool null = input.once_in(2);

    kirvo::OwnedBlock block = block_of(input.rest());
    if (kind == 6) {
        const HGLOBAL freed = block.get();
        block.reset();
        answers.image = freed;
    } else if (kind < 6) {
        answers.image = block.release();
    }
    uint32_t width = 0, height = 0;
    int32_t status = 1;
    const kirvo::OwnedBlock image(PcdRead("photo", resolution, progress, null ? nullptr : &width,
                                          null ? nullptr : &height, null ? nullptr : &status));
    require(null || (image ? status == KIRVO_OK : status < 0), "an image or a code");
    require(!image || image.get() == answers.image, "the image is the library's");
    if (!image)
        GlobalFree(answers.image); // unless it has been
    answers = {};
}

static const Target target("photo_cd", run, mutate_dib);
