// KirvoFiles' reading of a JPEG's segments, its walk along the entropy-coded data, its turns of the
// coefficients, and its decoding of 12 bits a channel.
#include "files.hpp"
#include "structure.hpp"

#include "jpeg_coefficients.hpp"
#include "jpeg_deep.hpp"

using namespace kirvo_fuzz;

// A walk or a turn, seldom both, and now and then what is turned is read again: each makes all tables
// anew and takes about as long as the headers do.
static void run(Input& input) {
    const uint32_t choice = input.below(256);
    const bool both = choice / 4 % 8 == 0, turns = choice / 2 % 2 == 0,
               again_too = choice / 32 % 4 == 0;
    kirvo_files::TurnPlan plan;
    plan.transpose = choice % 2 != 0;
    plan.flip_across = input.below(2) != 0;
    plan.flip_down = input.below(2) != 0;
    const kirvo_fuzz::Bytes rest = input.rest();
    const kirvo_files::Bytes bytes(rest.data(), rest.size());
    // Pictures of some thousand pixels mostly: filling large ones takes most of the time.
    kirvo_files::limit_allocation(rest.size() % 32 == 31 ? 1024 * 1024 : 16 * 1024);
    kirvo_files::Known known;
    kirvo_files::JpegHeaders headers;
    if (kirvo_files::read_jpeg_headers(bytes, known, headers) != KIRVO_FILES_OK)
        return;
    if (kirvo_files::is_deep(headers) && headers.width != 0 && headers.height != 0) {
        const kirvo_files::OpenOptions options{KIRVO_FILES_KEEP_GOING};
        kirvo_files::Job job{bytes, options, false, known, {}, false};
        if (kirvo_files::deep_decode(job, headers) == KIRVO_FILES_OK)
            require(job.known.numbers.wholeRows <= headers.height, "no more rows than there are");
        return;
    }
    const bool plain = kirvo_files::beyond_kirvo(headers) == nullptr;
    bool complete = true;
    if (plain && (both || !turns)) {
        const kirvo_files::Walk walk = kirvo_files::walk_scan(bytes, headers);
        complete = walk.complete;
        require(walk.whole_rows <= headers.height, "no more rows than there are");
        require(walk.end <= rest.size(), "the data ends in the file");
        require(!complete || walk.whole_rows == headers.height, "all rows are whole");
    }
    plan.width = plan.transpose ? headers.height : headers.width;
    plan.height = plan.transpose ? headers.width : headers.height;
    kirvo_files::Buffer out, again;
    if (!(both || turns) || headers.width == 0 || headers.height == 0 ||
        kirvo_files::turn_coefficients(bytes, headers, plan, out) != KIRVO_FILES_OK)
        return;
    require(complete, "only what is whole is turned");
    if (!again_too)
        return;
    kirvo_files::limit_allocation(1024 * 1024);
    kirvo_files::Known known_then;
    kirvo_files::JpegHeaders turned;
    require(kirvo_files::read_jpeg_headers(out.bytes(), known_then, turned) == KIRVO_FILES_OK &&
                turned.width == plan.width && turned.height == plan.height,
            "what is turned has headers");
    kirvo_files::TurnPlan none;
    none.width = turned.width;
    none.height = turned.height;
    require(kirvo_files::turn_coefficients(out.bytes(), turned, none, again) == KIRVO_FILES_OK,
            "what is turned is whole");
    const kirvo_files::Bytes first = out.bytes(), second = again.bytes();
    require(first.size() == second.size() &&
                std::memcmp(first.data(), second.data(), first.size()) == 0,
            "not turned at all it stays as it is");
}

static const Target target("files_jpeg", run, mutate_jpeg);
