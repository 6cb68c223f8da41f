// KirvoFiles' reading of a JPEG's segments, its walk along the entropy-coded data, its turns of the
// coefficients, and its decoding of 12 bits a channel.
#include "files.hpp"
#include "structure.hpp"

#include "jpeg_coefficients.hpp"
#include "jpeg_deep.hpp"

using namespace kirvo_fuzz;

static void run(Input& input) {
    kirvo_files::TurnPlan plan;
    plan.transpose = input.below(2) != 0;
    plan.flip_across = input.below(2) != 0;
    plan.flip_down = input.below(2) != 0;
    const kirvo_fuzz::Bytes rest = input.rest();
    const kirvo_files::Bytes bytes(rest.data(), rest.size());
    kirvo_files::Known known;
    kirvo_files::JpegHeaders headers;
    if (kirvo_files::read_jpeg_headers(bytes, known, headers) != KIRVO_FILES_OK)
        return;
    if (kirvo_files::is_deep(headers) && headers.width != 0 && headers.height != 0) {
        const kirvo_files::OpenOptions options{KIRVO_FILES_KEEP_GOING};
        kirvo_files::Job job{bytes, options, false, known, {}, false};
        kirvo_files::limit_allocation(1 << 20);
        if (kirvo_files::deep_decode(job, headers) == KIRVO_FILES_OK)
            require(job.known.numbers.wholeRows <= headers.height, "no more rows than there are");
        return;
    }
    if (kirvo_files::beyond_kirvo(headers) != nullptr)
        return;
    const kirvo_files::Walk walk = kirvo_files::walk_scan(bytes, headers);
    require(walk.whole_rows <= headers.height, "no more rows than there are");
    require(walk.end <= rest.size(), "the data ends in the file");
    plan.width = plan.transpose ? headers.height : headers.width;
    plan.height = plan.transpose ? headers.width : headers.height;
    kirvo_files::limit_allocation(1 << 20);
    kirvo_files::Buffer out;
    if (headers.width != 0 &&
        kirvo_files::turn_coefficients(bytes, headers, plan, out) == KIRVO_FILES_OK) {
        require(walk.complete, "only what is whole is turned");
        kirvo_files::Known again;
        kirvo_files::JpegHeaders turned;
        require(kirvo_files::read_jpeg_headers(out.bytes(), again, turned) == KIRVO_FILES_OK &&
                    turned.width == plan.width && turned.height == plan.height &&
                    kirvo_files::walk_scan(out.bytes(), turned).complete,
                "what is turned is whole");
    }
    require(!walk.complete || walk.whole_rows == headers.height, "all rows are whole");
}

static const Target target("files_jpeg", run, mutate_jpeg);
