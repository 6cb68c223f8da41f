// JPEG: Kirvo's decoder where the file is one it is made for, another one elsewhere.
#include "codec.hpp"
#include "formats.hpp"
#include "jpeg_deep.hpp"
#include "jpeg_planes.hpp"

namespace kirvo_files {
namespace {

// Other decoders answer a picture for coefficients that do not fit together, some for missing ones.
Status verify(Job& job, const JpegHeaders& headers) {
    if (!has_huffman_codes(headers) || job.known.numbers.wholeRows < headers.height)
        return KIRVO_FILES_OK; // cannot be, or has been told
    Plane planes[4];
    if (!make_planes(headers, planes))
        return KIRVO_FILES_NO_MEMORY;
    const Walk walk = read_coefficients(job.bytes, headers, planes);
    return walk.complete || walk.unknown ? KIRVO_FILES_OK : not_whole(job, walk);
}

Status decode_elsewhere(Job& job, const JpegHeaders& headers, const char* why) {
    const Status status = decode(KIRVO_FILES_JPEG, job, &headers);
    if (status == KIRVO_FILES_NO_CODEC)
        return job.known.fail(
            KIRVO_FILES_UNSUPPORTED,
            Text::format("Kirvo's decoder is not made for it (%s), and there is no"
                         " other",
                         why));
    if (status != KIRVO_FILES_OK)
        return status;
    job.known.note(KIRVO_FILES_NOTE_DECODER,
                   Text::format("decoded by %s: %s", decoder_name(KIRVO_FILES_JPEG), why));
    return verify(job, headers);
}

Status by_kirvo_alone(Job& job, const char* why) {
    if (why != nullptr)
        job.known.note(KIRVO_FILES_NOTE_REDUCED,
                       Text::format("decoded by Kirvo alone, which is not made for it: %s", why));
    const Status status = kirvo_decode(job, job.known.numbers.channels == 1);
    return status != KIRVO_FILES_NO_CODEC
               ? status
               : job.known.fail(KIRVO_FILES_UNSUPPORTED,
                                Text::format("Kirvo's decoder does not take it%s%s",
                                             why != nullptr ? ": " : "",
                                             why != nullptr ? why : ""));
}

// A baseline file whose data is not all there.
Status decode_broken(Job& job, const JpegHeaders& headers, const Walk& walk) {
    const Status status = not_whole(job, walk);
    if (status != KIRVO_FILES_OK)
        return status; // the caller does not want it
    if (!job.options.has(KIRVO_FILES_KIRVO_ONLY)) {
        Known unheard;
        Job again{job.bytes, job.options, false, unheard, {}, false};
        unheard.numbers = job.known.numbers;
        if (decode(KIRVO_FILES_JPEG, again, &headers) == KIRVO_FILES_OK) {
            job.dib = std::move(again.dib);
            job.known.text(KIRVO_FILES_TEXT_DECODER) =
                Text::format("%s", decoder_name(KIRVO_FILES_JPEG));
            return KIRVO_FILES_OK;
        }
    }
    const Status last = kirvo_decode(job, headers.components == 1);
    return last == KIRVO_FILES_NO_CODEC
               ? job.known.fail(KIRVO_FILES_DAMAGED, Text::format("no decoder takes it"))
               : last;
}

} // namespace

// Those of further scans may still come.
static bool lacks_quantisers(const JpegHeaders& headers, const JpegTables& tables) {
    for (uint32_t i = 0; i < headers.components; ++i)
        if (!tables.present[headers.component[i].quantiser])
            return is_deep(headers) || headers.scan_components == headers.components;
    return false;
}

static Status read_pixels(Job& job, const JpegHeaders& headers) {
    const char* why = beyond_kirvo(headers);
    if (why != nullptr && job.options.has(KIRVO_FILES_KIRVO_ONLY))
        return by_kirvo_alone(job, why);
    if (is_deep(headers))
        return deep_decode(job, headers);
    if (headers.precision != 8)
        return job.known.fail(KIRVO_FILES_UNSUPPORTED,
                              Text::format("this kind of JPEG is not read: %s",
                                           job.known.text(KIRVO_FILES_TEXT_VARIANT).c_str()));
    if (why != nullptr)
        return decode_elsewhere(job, headers, why);
    const Walk walk = walk_scan(job.bytes, headers);
    if (!walk.complete)
        return decode_broken(job, headers, walk);
    const Status status = kirvo_decode(job, headers.components == 1);
    if (status != KIRVO_FILES_NO_CODEC)
        return status;
    return job.options.has(KIRVO_FILES_KIRVO_ONLY)
               ? by_kirvo_alone(job, nullptr)
               : decode_elsewhere(job, headers, "Kirvo's decoder is busy or refuses it");
}

// Decoders want the height in the frame.
static Status read_with_height(Job& job, const JpegHeaders& headers) {
    Buffer whole;
    if (!whole.assign(job.bytes))
        return KIRVO_FILES_NO_MEMORY;
    whole[headers.height_at] = static_cast<uint8_t>(headers.height >> 8);
    whole[headers.height_at + 1] = static_cast<uint8_t>(headers.height);
    Job again{whole.bytes(), job.options, false, job.known, {}, job.cut_off};
    const Status status = read_pixels(again, headers);
    job.dib = std::move(again.dib);
    return status;
}

Status read_jpeg(Job& job) {
    JpegHeaders headers;
    Status status = read_jpeg_headers(job.bytes, job.known, headers);
    if (status != KIRVO_FILES_OK)
        return status;
    if (headers.height == 0)
        return job.known.fail(KIRVO_FILES_ENDS_EARLY,
                              Text::format("ends early: its height would follow its first scan"));
    if (!job.claim(headers.width, headers.height, headers.components == 1 ? 8 : 24, status))
        return status;
    if (lacks_quantisers(headers, job.known.jpeg))
        return job.known.fail(KIRVO_FILES_DAMAGED, Text::format("a quantisation table is missing"));
    return job.bytes.be16(headers.height_at) == 0 ? read_with_height(job, headers)
                                                  : read_pixels(job, headers);
}

} // namespace kirvo_files
