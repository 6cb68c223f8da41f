// A JPEG stream in memory, under every circumstance.
#include "jpeg.hpp"
#include "structure.hpp"

using namespace kirvo_fuzz;

static void run(Input& input) {
    reset_decoder();
    draw_surroundings(input);
    JpgDecGetCommentEnable(input.once_in(2));
    const Bytes stream = input.rest();
    const kirvo::OwnedBlock data = block_of(stream);
    uint32_t width = 0, height = 0;
    int32_t error = 1;
    check_answer(
        JpgDecMainHGLOBAL(data.get(), static_cast<int32_t>(stream.size()), &width, &height, &error),
        error);
    for (int32_t i = -1; i <= JpgDecCommentCounts(); ++i) {
        if (HGLOBAL comment = JpgDecGetComment(i))
            require(bytes_of(comment).back() == 0, "a zero ends a comment");
    }
}

static const Target target("jpeg_whole", run, mutate_jpeg);
