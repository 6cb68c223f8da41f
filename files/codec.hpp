// What does the work: Kirvo, each format's library, or the system. Which of them there are is
// settled when the room is built.
#pragma once

#include "job.hpp"
#include "jpeg_headers.hpp"

namespace kirvo_files {

// ---- reading: the headers have been read and the claim has been accepted ----

// JPEG by Kirvo; #KIRVO_FILES_NO_CODEC where it is busy or will not have the file.
Status kirvo_decode(Job& job, bool grey);
// A file by its name, in a format that only Kirvo reads.
Status kirvo_read_named(int32_t format, const char* name, Job& job);

// Decodes by another's library or the system. #KIRVO_FILES_NO_CODEC where there is none.
Status decode(int32_t format, Job& job, const JpegHeaders* headers = nullptr);
// A word for the decoder, "libspng 0.7.3"; null where there is none.
const char* decoder_name(int32_t format);

// ---- saving ----

struct SaveOptions {
    uint32_t flags = 0, quality = 0, level = 0, subsample = 0, size_limit = 0, bits = 0;
    int32_t format = 0, compression = 0;
    double dpi_across = 0, dpi_down = 0;
    bool has(uint32_t flag) const { return (flags & flag) != 0; }
};

// A picture to be saved.
struct Saving {
    const View& view;
    const Known* source; // null without one
    const SaveOptions& options;
    Known& known;
    Buffer& out;
    bool alpha() const { return view.bits() == 32 && options.has(KIRVO_FILES_WITH_ALPHA); }
};

const char* encoder_name(int32_t format);
// PNG, TIFF and WebP: the pixels; metadata is added by the room.
Status encode(int32_t format, Saving& saving, uint32_t quality);

// How a JPEG stream is to be coded.
struct JpegPlan {
    bool grey = false;
    uint16_t tables[4][64] = {}; // row by row
    uint8_t table_of[3] = {0, 1, 1};
    uint8_t across[3] = {1, 1, 1}, down[3] = {1, 1, 1};
    uint32_t coefficients = 64;
    bool for_kirvo() const; // whether Kirvo's encoder has such tables and sampling
};
// #KIRVO_FILES_NO_CODEC where Kirvo is busy, its block is too small, or a coefficient has no code.
Status kirvo_encode(const View& view, const JpegPlan& plan, Buffer& out);
// The tables of Kirvo's levels 1 to 5.
Status kirvo_level(uint32_t level, JpegPlan& plan);
Status encode_jpeg(Saving& saving, const JpegPlan& plan, uint32_t quality);

// Turns a JPEG by an EXIF orientation without decoding it; what is left over at an edge that would
// come first is cut off or stays where it is. #KIRVO_FILES_NO_CODEC where no library does it.
Status turn_jpeg(Bytes in, const JpegHeaders& headers, uint32_t orientation, bool trim, Buffer& out,
                 Known& known);

} // namespace kirvo_files
