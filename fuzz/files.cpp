#include "files.hpp"

namespace kirvo_fuzz {

using namespace kirvo_files;

static void check_result(Job& job, Status status, uint32_t orientation) {
    require(status == KIRVO_FILES_OK || status <= KIRVO_FILES_BAD_PARAMETER, "a status of its own");
    if (status != KIRVO_FILES_OK || job.headers_only)
        return;
    require(static_cast<bool>(job.dib), "a picture comes with success");
    Dib turned_dib;
    if (turned(job.dib, orientation, turned_dib) == KIRVO_FILES_OK)
        require(turned_dib.bits() == job.dib.bits(), "a turn keeps the depth");
    HGLOBAL image = job.dib.hand_over();
    View view;
    require(view.open(image) == KIRVO_FILES_OK, "what is opened can be saved");
    look_at(image);
    GlobalFree(image);
}

void read_with(Input& input, Status (*read)(Job& job)) {
    const uint32_t memory = input.below(256), failing = failing_allocation(memory, input);
    OpenOptions options;
    const uint32_t choices = input.below(256);
    options.flags = choices % 32;
    const uint32_t orientation = 8 - choices / 32 % 8;
    options.frame = input.below(4);
    const bool headers_only = input.below(8) == 7;
    const Bytes rest = input.rest();
    fail_allocation(failing);
    // Pictures of some thousand pixels mostly: turning large ones takes most of the time.
    limit_allocation(memory % 8 == 7 ? 256 * 1024 : 32 * 1024);
    {
        Known known;
        Job job{{rest.data(), rest.size()}, options, headers_only, known, {}, false};
        check_result(job, read(job), orientation);
    }
    fail_allocation(0);
}

} // namespace kirvo_fuzz
