#include "job.hpp"

namespace kirvo_files {

// Pictures below this size are made whatever their file's; above it, each byte of the file stands
// for so many at most.
constexpr uint64_t modest_bytes = 64 << 20;
constexpr uint64_t most_bytes_per_byte = 1500;

bool out_of_proportion(uint64_t picture_bytes, uint64_t file_bytes) {
    return picture_bytes > modest_bytes && picture_bytes / most_bytes_per_byte > file_bytes;
}

bool Job::claim(uint64_t width, uint64_t height, uint32_t bits, Status& status) {
    status = KIRVO_FILES_OK;
    if (width == 0 || height == 0 || width > UINT32_MAX || height > UINT32_MAX) {
        status = known.fail(KIRVO_FILES_DAMAGED, Text::format("it says it has no pixels"));
        return false;
    }
    known.numbers.width = static_cast<uint32_t>(width);
    known.numbers.height = static_cast<uint32_t>(height);
    known.numbers.wholeRows = known.numbers.height;
    if (headers_only)
        return false;
    const uint64_t row = row_bytes(width, bits);
    const bool impossible = row > max_bytes / height;
    const uint64_t size = impossible ? 0 : row * height;
    if (impossible ||
        (out_of_proportion(size, bytes.size()) && !options.has(KIRVO_FILES_NO_LIMITS))) {
        status = known.fail(
            KIRVO_FILES_CLAIM_TOO_LARGE,
            Text::format("it claims %u x %u pixels, %s", known.numbers.width, known.numbers.height,
                         impossible ? "more than a picture in memory can have"
                                    : "out of all proportion to the size of the file"));
        return false;
    }
    return true;
}

Status Job::ends_early(uint32_t whole_rows, bool bottom_up) {
    known.numbers.wholeRows = whole_rows;
    Text words = bottom_up ? Text::format("ends early: only %u of %u rows, from the bottom up",
                                          whole_rows, known.numbers.height)
                           : Text::format("ends early: whole to row %u of %u", whole_rows,
                                          known.numbers.height);
    if (!options.has(KIRVO_FILES_KEEP_GOING))
        return known.fail(KIRVO_FILES_ENDS_EARLY, std::move(words));
    known.note(KIRVO_FILES_NOTE_ENDS_EARLY, std::move(words));
    return KIRVO_FILES_OK;
}

Status Job::ends_early_in_headers() {
    known.numbers.wholeRows = 0;
    return known.fail(KIRVO_FILES_ENDS_EARLY, Text::format("ends early: within its headers"));
}

Status Job::damaged(Text what, uint32_t whole_rows) {
    known.numbers.wholeRows = whole_rows;
    if (!options.has(KIRVO_FILES_KEEP_GOING))
        return known.fail(KIRVO_FILES_DAMAGED, std::move(what));
    known.note(KIRVO_FILES_NOTE_DAMAGED, std::move(what));
    return KIRVO_FILES_OK;
}

Status Job::damaged_below(uint32_t whole_rows) {
    return damaged(
        Text::format("damaged: at most %u of %u rows are whole", whole_rows, known.numbers.height),
        whole_rows);
}

Status Job::damaged_somewhere() {
    return damaged(Text::format("damaged: bytes of its data are left over"), 0);
}

Status Job::unsupported(const char* what) {
    return known.fail(KIRVO_FILES_UNSUPPORTED, Text::format("%s is not read", what));
}

static bool has_alpha(Pixels pixels) {
    return pixels == Pixels::grey_alpha || pixels == Pixels::rgba;
}

Status Raster::make(Pixels pixels, uint32_t width, uint32_t height) {
    pixels_ = pixels;
    job_.known.set(KIRVO_FILES_HAS_ALPHA, has_alpha(pixels));
    if (pixels == Pixels::grey) {
        const Status status = job_.dib.make(width, height, 8, 256);
        if (status == KIRVO_FILES_OK)
            job_.dib.set_greys();
        return status;
    }
    const bool wide = has_alpha(pixels) && job_.options.has(KIRVO_FILES_KEEP_ALPHA);
    return job_.dib.make(width, height, wide ? 32 : 24);
}

static uint8_t mixed(uint32_t colour, uint32_t alpha, uint32_t behind) {
    return static_cast<uint8_t>((colour * alpha + behind * (255 - alpha) + 127) / 255);
}

void Raster::put(uint32_t y, const uint8_t* in) {
    uint8_t* out = job_.dib.row(y);
    const uint32_t width = job_.dib.width(), step = job_.dib.bits() / 8;
    if (pixels_ == Pixels::grey) {
        std::memcpy(out, in, width);
        return;
    }
    const bool grey = pixels_ == Pixels::grey_alpha;
    const bool alpha = has_alpha(pixels_);
    const uint32_t in_step = grey ? 2 : alpha ? 4 : 3;
    const uint32_t behind = job_.options.background;
    for (uint32_t x = 0; x < width; ++x, in += in_step, out += step) {
        const uint8_t red = in[0], green = grey ? in[0] : in[1], blue = grey ? in[0] : in[2];
        const uint8_t opacity = alpha ? in[in_step - 1] : uint8_t{255};
        transparent_ |= opacity != 255;
        if (step == 4 || opacity == 255) {
            out[0] = blue;
            out[1] = green;
            out[2] = red;
            if (step == 4)
                out[3] = opacity;
        } else {
            out[0] = mixed(blue, opacity, behind >> 16 & 255);
            out[1] = mixed(green, opacity, behind >> 8 & 255);
            out[2] = mixed(red, opacity, behind & 255);
        }
    }
}

void Raster::finish() {
    if (transparent_ && job_.dib.bits() != 32)
        job_.known.note(KIRVO_FILES_NOTE_ALPHA, Text::format("alpha laid over the background"));
}

void put_indices(const Dib& dib, uint32_t y, const uint8_t* indices) {
    uint8_t* out = dib.row(y);
    const uint32_t width = dib.width(), bits = dib.bits(), per_byte = 8 / bits;
    if (bits == 8) {
        std::memcpy(out, indices, width);
        return;
    }
    for (uint32_t x = 0; x < width; ++x) {
        const uint32_t shift = (per_byte - 1 - x % per_byte) * bits;
        const uint32_t pixel = (indices[x] & ((1u << bits) - 1)) << shift;
        out[x / per_byte] = static_cast<uint8_t>(out[x / per_byte] | pixel);
    }
}

static uint32_t index_at(const uint8_t* row, uint32_t x, uint32_t bits) {
    const uint32_t per_byte = 8 / bits;
    return row[x / per_byte] >> (per_byte - 1 - x % per_byte) * bits & ((1u << bits) - 1);
}

static Status widened(Job& job, const uint8_t* alpha, uint32_t count) {
    Dib narrow = std::move(job.dib);
    const Status status = job.dib.make(narrow.width(), narrow.height(), 32);
    if (status != KIRVO_FILES_OK)
        return status;
    for (uint32_t y = 0; y < narrow.height(); ++y) {
        uint8_t* out = job.dib.row(y);
        for (uint32_t x = 0; x < narrow.width(); ++x, out += 4) {
            const uint32_t index = index_at(narrow.row(y), x, narrow.bits());
            std::memcpy(out, &narrow.palette()[index], 3);
            out[3] = index < count ? alpha[index] : uint8_t{255};
        }
    }
    return KIRVO_FILES_OK;
}

Status apply_palette_alpha(Job& job, const uint8_t* alpha, uint32_t count) {
    bool transparent = false;
    for (uint32_t i = 0; i < count; ++i)
        transparent |= alpha[i] != 255;
    job.known.set(KIRVO_FILES_HAS_ALPHA, transparent);
    if (!transparent)
        return KIRVO_FILES_OK;
    if (job.options.has(KIRVO_FILES_KEEP_ALPHA))
        return widened(job, alpha, count);
    const uint32_t behind = job.options.background;
    for (uint32_t i = 0; i < count && i < job.dib.colours(); ++i) {
        const RGBQUAD entry = job.dib.palette()[i];
        job.dib.set_colour(i, mixed(entry.rgbRed, alpha[i], behind & 255),
                           mixed(entry.rgbGreen, alpha[i], behind >> 8 & 255),
                           mixed(entry.rgbBlue, alpha[i], behind >> 16 & 255));
    }
    job.known.note(KIRVO_FILES_NOTE_ALPHA, Text::format("alpha laid over the background"));
    return KIRVO_FILES_OK;
}

void keep_palette(Job& job, uint32_t colours) {
    if (job.dib && job.dib.colours() != 0)
        job.known.palette.assign(
            {reinterpret_cast<uint8_t*>(job.dib.palette()),
             size_t{4} * (colours < job.dib.colours() ? colours : job.dib.colours())});
}

} // namespace kirvo_files
