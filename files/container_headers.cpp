// PNG, GIF, WebP and TIFF: what their headers say, and their metadata. The pixels are for the
// codec.
#include "codec.hpp"
#include "exif.hpp"
#include "formats.hpp"

namespace kirvo_files {
namespace {

// The codec's turn, when the headers have been read.
Status decode_pixels(int32_t format, Job& job, const char* name = nullptr) {
    const Status status = decode(format, job);
    if (status == KIRVO_FILES_NO_CODEC)
        return job.known.fail(status, Text::format("this system has no decoder for %s files",
                                                   name != nullptr ? name : format_name(format)));
    if (status == KIRVO_FILES_OK && job.known.text(KIRVO_FILES_TEXT_DECODER).empty())
        job.known.text(KIRVO_FILES_TEXT_DECODER) = Text::format("%s", decoder_name(format));
    return status;
}

void note_first_frame(Job& job, const char* what) {
    // Of an icon the best image is taken: nothing is lost that is to be told.
    const int32_t format = job.known.numbers.format;
    const bool is_icon = format == KIRVO_FILES_ICON || format == KIRVO_FILES_CURSOR;
    if (job.known.numbers.frames > 1 && !is_icon)
        job.known.note(KIRVO_FILES_NOTE_FRAMES,
                       Text::format("%s: number %u of %u", what, job.known.numbers.frame,
                                    job.known.numbers.frames));
}

bool wants_other_frame(Job& job, Status& status) {
    if (job.options.frame <= 1)
        return false;
    status =
        job.known.fail(KIRVO_FILES_NO_FRAME, Text::format("only the first of its %u frames is read",
                                                          job.known.numbers.frames));
    return true;
}

// ---- PNG ----

void png_chunk(Job& job, uint64_t at, Bytes body) {
    Known& known = job.known;
    const Bytes& bytes = job.bytes;
    if (bytes.begins("PLTE", at)) {
        known.numbers.colours = static_cast<uint32_t>(body.size() / 3);
        for (uint64_t i = 0; i + 2 < body.size(); i += 3) {
            const uint8_t entry[] = {body[i + 2], body[i + 1], body[i], 0};
            if (!known.palette.append(entry, 4))
                return;
        }
    } else if (bytes.begins("tRNS", at)) {
        known.set(KIRVO_FILES_HAS_ALPHA);
    } else if (bytes.begins("iCCP", at)) {
        known.text(KIRVO_FILES_TEXT_PROFILE) = Text::cleaned(body.part(0, 79));
    } else if (bytes.begins("pHYs", at) && body[8] == 1) {
        known.numbers.dpiAcross = body.be32(0) * 0.0254;
        known.numbers.dpiDown = body.be32(4) * 0.0254;
    } else if (bytes.begins("acTL", at) && body.be32(0) > 1) {
        known.numbers.frames = body.be32(0);
    } else if (bytes.begins("eXIf", at) && known.exif.empty()) {
        known.exif.assign(body);
        read_exif(known, body);
    } else if (bytes.begins("iTXt", at) && body.begins("XML:com.adobe.xmp\0\0") &&
               known.xmp.empty()) {
        uint64_t text = 20; // behind keyword, compression flag and method: language and translation
        for (uint32_t words = 0; words < 2 && text < body.size(); ++text)
            words += body[text] == 0 ? 1 : 0;
        known.xmp.assign(body.part(text));
    } else if (bytes.begins("tEXtSoftware\0", at)) {
        known.text(KIRVO_FILES_TEXT_SOFTWARE) = Text::cleaned(body.part(9));
    } else if (bytes.begins("tEXtTitle\0", at)) {
        known.text(KIRVO_FILES_TEXT_TITLE) = Text::cleaned(body.part(6));
    }
}

// ---- WebP ----

void webp_size(Job& job, Bytes body, bool lossless, uint32_t& width, uint32_t& height) {
    if (lossless) {
        const uint32_t packed = body.le32(1);
        width = (packed & 0x3FFF) + 1;
        height = (packed >> 14 & 0x3FFF) + 1;
        job.known.set(KIRVO_FILES_LOSSLESS);
        job.known.set(KIRVO_FILES_HAS_ALPHA, (packed >> 28 & 1) != 0);
    } else {
        width = body.le16(6) & 0x3FFFu;
        height = body.le16(8) & 0x3FFFu;
    }
}

} // namespace

Status read_png(Job& job) {
    const Bytes& bytes = job.bytes;
    Known& known = job.known;
    if (!bytes.has(8, 25))
        return job.ends_early_in_headers();
    if (!bytes.begins("IHDR", 12))
        return known.fail(KIRVO_FILES_DAMAGED, Text::format("a PNG without its header"));
    const uint32_t width = bytes.be32(16), height = bytes.be32(20), depth = bytes[24];
    const uint32_t type = bytes[25];
    static const uint8_t channels[] = {1, 0, 3, 1, 2, 0, 4};
    static const char* const types[] = {"grey",           "", "true colour",          "palette",
                                        "grey and alpha", "", "true colour and alpha"};
    if (type > 6 || channels[type] == 0)
        return known.fail(KIRVO_FILES_DAMAGED, Text::format("a PNG of an unknown kind"));
    known.numbers.channels = channels[type];
    known.numbers.fileBits = depth * channels[type];
    known.set(KIRVO_FILES_LOSSLESS);
    known.set(KIRVO_FILES_TOP_DOWN);
    known.set(KIRVO_FILES_PROGRESSIVE, bytes[28] != 0);
    known.set(KIRVO_FILES_HAS_ALPHA, type >= 4);
    known.text(KIRVO_FILES_TEXT_VARIANT) = Text::format(
        "%s, %u bits a channel%s", types[type], depth, bytes[28] != 0 ? ", interlaced" : "");
    job.cut_off = true;
    for (uint64_t at = 33; bytes.has(at, 12);) {
        const uint64_t length = bytes.be32(at);
        png_chunk(job, at + 4, bytes.part(at + 8, length));
        job.cut_off = job.cut_off && !bytes.begins("IEND", at + 4);
        at += 12 + length;
    }
    Status status;
    if (known.numbers.frames > 1 && wants_other_frame(job, status))
        return status;
    note_first_frame(job, "animation");
    if (!job.claim(width, height, type == 3 || type == 0 ? 8 : 24, status))
        return status;
    return decode_pixels(KIRVO_FILES_PNG, job);
}

Status read_gif(Job& job) {
    const Bytes& bytes = job.bytes;
    Known& known = job.known;
    if (!bytes.has(0, 13))
        return job.ends_early_in_headers();
    const auto table = [](uint32_t flags) {
        return (flags & 0x80) != 0 ? uint64_t{3} << ((flags & 7) + 1) : 0;
    };
    uint64_t at = 13 + table(bytes[10]);
    uint32_t frames = 0, interlaced = 0;
    bool transparent = false;
    known.numbers.colours = (bytes[10] & 0x80) != 0 ? 2u << (bytes[10] & 7) : 0;
    while (bytes.has(at, 2) && bytes[at] != 0x3B) {
        const uint8_t kind = bytes[at];
        if (kind == 0x2C) {
            interlaced |= frames++ == 0 ? bytes[at + 9] & 0x40u : 0;
            at += 10 + table(bytes[at + 9]) + 1;
        } else if (kind == 0x21) {
            if (bytes[at + 1] == 0xF9 && frames == 0)
                transparent |= (bytes[at + 3] & 1) != 0;
            at += 2;
        } else {
            break; // what follows is nobody's
        }
        while (bytes.has(at, 1) && bytes[at] != 0)
            at += uint64_t{1} + bytes[at];
        ++at;
    }
    job.cut_off = !bytes.has(at, 1);
    known.numbers.frames = frames != 0 ? frames : 1;
    known.numbers.channels = 1;
    known.numbers.fileBits = (bytes[10] & 7u) + 1;
    known.set(KIRVO_FILES_LOSSLESS);
    known.set(KIRVO_FILES_TOP_DOWN);
    known.set(KIRVO_FILES_PROGRESSIVE, interlaced != 0);
    known.set(KIRVO_FILES_HAS_ALPHA, transparent);
    known.text(KIRVO_FILES_TEXT_VARIANT) = Text::format(
        "%s%s", bytes.begins("GIF87a") ? "87a" : "89a", interlaced != 0 ? ", interlaced" : "");
    Status status;
    if (wants_other_frame(job, status))
        return status;
    note_first_frame(job, "animation");
    if (!job.claim(bytes.le16(6), bytes.le16(8), 8, status))
        return status;
    return decode_pixels(KIRVO_FILES_GIF, job);
}

Status read_webp(Job& job) {
    const Bytes& bytes = job.bytes;
    Known& known = job.known;
    uint32_t width = 0, height = 0, frames = 0;
    bool canvas = false;
    for (uint64_t at = 12; bytes.has(at, 8);) {
        const uint64_t length = bytes.le32(at + 4);
        const Bytes body = bytes.part(at + 8, length);
        if (bytes.begins("VP8X", at)) {
            canvas = true;
            width = (body.le32(4) & 0xFFFFFF) + 1;
            height = (body.le32(6) >> 8) + 1;
            known.set(KIRVO_FILES_HAS_ALPHA, (body[0] & 0x10) != 0);
        } else if (bytes.begins("VP8 ", at) || bytes.begins("VP8L", at)) {
            const bool lossless = bytes[at + 3] == 'L';
            uint32_t inner_width, inner_height;
            webp_size(job, body, lossless, inner_width, inner_height);
            if (!canvas) {
                width = inner_width;
                height = inner_height;
            }
        } else if (bytes.begins("ANMF", at)) {
            ++frames;
            known.set(KIRVO_FILES_LOSSLESS, body.begins("VP8L", 16));
        } else if (bytes.begins("ICCP", at)) {
            known.icc.assign(body);
            known.text(KIRVO_FILES_TEXT_PROFILE) = profile_name(body);
        } else if (bytes.begins("EXIF", at)) {
            const Bytes exif = body.begins("Exif\0\0") ? body.part(6) : body;
            known.exif.assign(exif);
            read_exif(known, exif);
        } else if (bytes.begins("XMP ", at)) {
            known.xmp.assign(body);
        }
        at += 8 + length + length % 2;
    }
    job.cut_off = uint64_t{8} + bytes.le32(4) > bytes.size();
    const bool alpha = known.is(KIRVO_FILES_HAS_ALPHA);
    known.numbers.frames = frames != 0 ? frames : 1;
    known.numbers.channels = alpha ? 4 : 3;
    known.numbers.fileBits = alpha ? 32 : 24;
    known.set(KIRVO_FILES_TOP_DOWN);
    known.text(KIRVO_FILES_TEXT_VARIANT) = Text::format(
        "%s%s", known.is(KIRVO_FILES_LOSSLESS) ? "lossless" : "lossy", alpha ? ", with alpha" : "");
    if (width == 0)
        return job.ends_early_in_headers();
    Status status;
    if (wants_other_frame(job, status))
        return status;
    note_first_frame(job, "animation");
    if (!job.claim(width, height, alpha ? 32 : 24, status))
        return status;
    return decode_pixels(KIRVO_FILES_WEBP, job);
}

namespace {

const char* tiff_compression(uint32_t number) {
    switch (number) {
    case 1:
        return "uncompressed";
    case 2:
        return "CCITT";
    case 3:
        return "Group 3 fax";
    case 4:
        return "Group 4 fax";
    case 5:
        return "LZW";
    case 6:
    case 7:
        return "JPEG";
    case 8:
    case 32946:
        return "Deflate";
    case 32773:
        return "PackBits";
    case 34925:
        return "LZMA";
    case 50000:
        return "Zstandard";
    case 50001:
        return "WebP";
    default:
        return "an unusual compression";
    }
}

} // namespace

Status read_tiff(Job& job) {
    Known& known = job.known;
    const Tiff tiff(job.bytes);
    uint64_t directory = tiff.first_directory(), found = 0;
    uint32_t pages = 0;
    const uint32_t wanted = job.options.frame != 0 ? job.options.frame : 1;
    while (tiff.entries(directory) != 0 && pages < 65535) {
        if (++pages == wanted)
            found = directory;
        directory = tiff.offset(tiff.next_directory_at(directory));
    }
    known.numbers.frames = pages != 0 ? pages : 1;
    known.numbers.frame = wanted;
    if (pages == 0)
        return job.ends_early_in_headers();
    if (found == 0)
        return known.fail(KIRVO_FILES_NO_FRAME,
                          Text::format("it has %u pages, no number %u", pages, wanted));
    if ((tiff.number_of(found, 254) & 1) != 0 && tiff.find(found, 330).count != 0)
        return job.unsupported("a camera's own format"); // the first picture is its preview
    const uint32_t bits = tiff.number_of(found, 258, 1), samples = tiff.number_of(found, 277, 1);
    const uint32_t model = tiff.number_of(found, 262);
    read_exif(known, job.bytes, found);
    exif_of_tiff(job.bytes, found, known.exif);
    known.icc.assign(tiff.find(found, 34675).value);
    known.text(KIRVO_FILES_TEXT_PROFILE) = profile_name(known.icc.bytes());
    known.xmp.assign(tiff.find(found, 700).value);
    known.numbers.channels = samples;
    known.numbers.fileBits = bits * samples;
    known.numbers.colours = model == 3 ? 1u << (bits & 15) : 0;
    const uint32_t compression = tiff.number_of(found, 259, 1);
    known.set(KIRVO_FILES_LOSSLESS, compression != 6 && compression != 7);
    known.set(KIRVO_FILES_CMYK, model == 5);
    known.set(KIRVO_FILES_TOP_DOWN);
    known.set(KIRVO_FILES_HAS_ALPHA, tiff.find(found, 338).count != 0);
    known.text(KIRVO_FILES_TEXT_VARIANT) =
        Text::format("%s%s, %u x %u bits", tiff.big() ? "BigTIFF, " : "",
                     tiff_compression(compression), samples, bits);
    note_first_frame(job, "several pages");
    Status status;
    if (!job.claim(tiff.number_of(found, 256), tiff.number_of(found, 257),
                   samples == 1 && bits <= 8 ? 8 : 32, status))
        return status;
    return decode_pixels(KIRVO_FILES_TIFF, job, tiff.big() ? "BigTIFF" : "TIFF");
}

Status read_by_system(Job& job) {
    const int32_t format = job.known.numbers.format;
    const Status status = decode(format, job);
    if (status == KIRVO_FILES_NO_CODEC)
        return job.known.fail(
            status, Text::format("this system has no decoder for %s files",
                                 format == KIRVO_FILES_HEIF ? "HEIC and AVIF" : "this camera's"));
    return status;
}

} // namespace kirvo_files
