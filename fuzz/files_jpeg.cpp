// KirvoFiles' reading of a JPEG's segments, and its walk along the entropy-coded data.
#include "files.hpp"

#include "jpeg_headers.hpp"

using namespace kirvo_fuzz;

static void run(Input& input) {
    const kirvo_fuzz::Bytes rest = input.rest();
    const kirvo_files::Bytes bytes(rest.data(), rest.size());
    kirvo_files::Known known;
    kirvo_files::JpegHeaders headers;
    if (kirvo_files::read_jpeg_headers(bytes, known, headers) != KIRVO_FILES_OK ||
        kirvo_files::beyond_kirvo(headers) != nullptr)
        return;
    const kirvo_files::Walk walk = kirvo_files::walk_scan(bytes, headers);
    require(walk.whole_rows <= headers.height, "no more rows than there are");
    require(walk.end <= rest.size(), "the data ends in the file");
    require(!walk.complete || walk.whole_rows == headers.height, "all rows are whole");
}

static const Target target("files_jpeg", run);
