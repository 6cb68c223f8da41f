// PNG by libspng.
#include "codecs/codecs.hpp"

#include <cstdio>
#include <cstdlib>

#include <spng.h>

namespace kirvo_files {
namespace {

class Context {
  public:
    explicit Context(int flags) : context_(spng_ctx_new(flags)) {}
    ~Context() { spng_ctx_free(context_); }
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;
    operator spng_ctx*() const { return context_; }

  private:
    spng_ctx* context_;
};

// Of a profile, or a text, which may be a thousandth of that in the file.
constexpr size_t largest_chunk = 16 << 20;

bool is_short(int error) { return error == SPNG_IO_EOF || error == SPNG_IO_ERROR; }

Status failed(Job& job, int error) {
    if (error == SPNG_EMEM)
        return KIRVO_FILES_NO_MEMORY;
    // Behind the end of the data every other question is one too many.
    const bool early = is_short(error) || (error == SPNG_EBADSTATE && job.cut_off);
    return early ? job.known.fail(KIRVO_FILES_ENDS_EARLY,
                                  Text::format("ends early: within its headers"))
                 : job.known.fail(KIRVO_FILES_DAMAGED,
                                  Text::format("damaged: %s", spng_strerror(error)));
}

class Decoder {
  public:
    explicit Decoder(Job& job) : job_(job) {}

    Status run() {
        if (context_ == nullptr)
            return KIRVO_FILES_NO_MEMORY;
        spng_set_crc_action(context_, SPNG_CRC_USE, SPNG_CRC_USE); // a wrong sum spoils no pixel
        spng_set_chunk_limits(context_, largest_chunk, 2 * largest_chunk);
        if (!close_cut_chunk())
            return KIRVO_FILES_NO_MEMORY;
        const Bytes all = closed_.empty() ? job_.bytes : closed_.bytes();
        spng_set_png_buffer(context_, all.data(), all.size());
        int error = spng_get_ihdr(context_, &header_);
        if (error != 0)
            return failed(job_, error);
        spng_set_image_limits(context_, 0x7FFFFFFF, 0x7FFFFFFF);
        spng_iccp profile = {};
        error = spng_get_iccp(context_, &profile); // reads all that comes before the rows
        if (error == SPNG_ECHUNK_LIMITS)
            return job_.known.fail(KIRVO_FILES_TOO_LARGE,
                                   Text::format("a profile or text above 16 MB"));
        if (error == 0)
            job_.known.icc.append(profile.profile, profile.profile_len);
        const bool palette = header_.color_type == SPNG_COLOR_TYPE_INDEXED;
        spng_trns transparency = {};
        const bool alpha = (header_.color_type & 4) != 0 ||
                           (!palette && spng_get_trns(context_, &transparency) == 0);
        grey_ = (header_.color_type & 2) == 0;
        // The library does not make 8 bits of grey with alpha: such rows come as true colour.
        if (palette || (grey_ && !alpha && header_.bit_depth <= 8))
            return indexed();
        return true_colour(alpha);
    }

  private:
    // The library takes a chunk as a whole or not at all: pixels that are cut off in the middle of
    // one become a shorter one.
    bool close_cut_chunk() {
        const Bytes& in = job_.bytes;
        uint64_t at = 8;
        while (in.has(at, 12 + uint64_t{in.be32(at)}))
            at += 12 + uint64_t{in.be32(at)};
        if (!in.begins("IDAT", at + 4))
            return true;
        const uint64_t left = in.size() - (at + 8), length = in.be32(at);
        const uint64_t kept = left < length ? left : length;
        if (!closed_.assign(in.part(0, at + 8 + kept)) || !closed_.append("\0\0\0", 4))
            return false;
        for (uint32_t i = 0; i < 4; ++i)
            closed_[static_cast<size_t>(at + i)] = static_cast<uint8_t>(kept >> (24 - 8 * i));
        return true;
    }

    Status indexed() {
        const bool palette = header_.color_type == SPNG_COLOR_TYPE_INDEXED;
        spng_plte colours = {};
        int error = palette ? spng_get_plte(context_, &colours) : 0;
        if (error != 0)
            return failed(job_, error);
        const uint32_t depth = header_.bit_depth == 2 ? 4u : header_.bit_depth;
        Status status = job_.dib.make(header_.width, header_.height, depth, 1u << depth);
        if (status != KIRVO_FILES_OK)
            return status;
        const uint32_t steps = (1u << header_.bit_depth) - 1;
        for (uint32_t i = 0; i <= steps; ++i)
            if (palette)
                job_.dib.set_colour(i, colours.entries[i].red, colours.entries[i].green,
                                    colours.entries[i].blue);
            else
                job_.dib.set_colour(i, i * 255 / steps, i * 255 / steps, i * 255 / steps);
        // Rows arrive packed as in the file.
        status = rows(SPNG_FMT_RAW, [&](uint32_t y, const uint8_t* row) {
            for (uint32_t x = 0; x < header_.width; ++x) {
                const uint32_t per_byte = 8u / header_.bit_depth;
                line_[x] = static_cast<uint8_t>(
                    row[x / per_byte] >> (per_byte - 1 - x % per_byte) * header_.bit_depth & steps);
            }
            std::memset(job_.dib.row(y), 0, job_.dib.stride());
            put_indices(job_.dib, y, line_.data());
        });
        spng_trns transparency = {};
        if (status == KIRVO_FILES_OK && palette && spng_get_trns(context_, &transparency) == 0)
            status =
                apply_palette_alpha(job_, transparency.type3_alpha, transparency.n_type3_entries);
        return status;
    }

    Status true_colour(bool alpha) {
        Raster raster(job_);
        const bool narrow = grey_ && !alpha;
        Status status = raster.make(narrow  ? Pixels::grey
                                    : alpha ? Pixels::rgba
                                            : Pixels::rgb,
                                    header_.width, header_.height);
        if (status != KIRVO_FILES_OK)
            return status;
        if (header_.bit_depth == 16)
            job_.known.note(KIRVO_FILES_NOTE_REDUCED,
                            Text::format("16 bits a channel reduced to 8"));
        const bool wide = header_.bit_depth == 16;
        flags_ = alpha ? SPNG_DECODE_TRNS : 0;
        status = rows(wide ? SPNG_FMT_RGBA16 : SPNG_FMT_RGBA8, [&](uint32_t y, const uint8_t* row) {
            uint8_t* out = line_.data();
            for (uint32_t x = 0; x < header_.width; ++x)
                for (uint32_t i = 0; i < 4; ++i) {
                    uint32_t value = row[4 * x + i];
                    if (wide) {
                        uint16_t sample;
                        std::memcpy(&sample, row + 8 * size_t{x} + 2 * i, 2);
                        value = (sample * 255u + 32767) / 65535;
                    }
                    if (narrow ? i == 0 : alpha || i < 3)
                        *out++ = static_cast<uint8_t>(value);
                }
            raster.put(y, line_.data());
        });
        raster.finish();
        return status;
    }

    template<typename Put>
    Status rows(int format, Put put) {
        size_t size = 0;
        int error =
            spng_decode_image(context_, nullptr, 0, format, flags_ | SPNG_DECODE_PROGRESSIVE);
        spng_decoded_image_size(context_, format, &size);
        if (error != 0)
            return failed(job_, error);
        const size_t stride = size / header_.height;
        Buffer row, all;
        const bool interlaced = header_.interlace_method != 0;
        if (!row.resize(stride) || !line_.resize(uint64_t{8} * header_.width) ||
            (interlaced && !all.resize(size)))
            return KIRVO_FILES_NO_MEMORY;
        uint32_t whole = 0;
        spng_row_info info = {};
        while ((error = spng_get_row_info(context_, &info)) == 0) {
            uint8_t* to = interlaced ? &all[stride * info.row_num] : row.data();
            error = spng_decode_row(context_, to, stride);
            if (error != 0 && error != SPNG_EOI)
                break;
            if (!interlaced)
                put(info.row_num, to);
            whole = interlaced ? whole : info.row_num + 1;
            if (error == SPNG_EOI)
                break;
        }
        for (uint32_t y = 0; interlaced && y < header_.height; ++y)
            put(y, &all[stride * y]);
        if (error == SPNG_EOI)
            return KIRVO_FILES_OK;
        return is_short(error)
                   ? job_.ends_early(whole)
                   : job_.damaged(Text::format("damaged: %s", spng_strerror(error)), whole);
    }

    Job& job_;
    Context context_{0};
    spng_ihdr header_ = {};
    Buffer line_, closed_;
    int flags_ = 0;
    bool grey_ = false;
};

// The rows of a file of this kind.
void fill_row(const Saving& saving, uint32_t y, uint32_t type, uint8_t* out) {
    const View& view = saving.view;
    const uint32_t width = view.width();
    if (type == SPNG_COLOR_TYPE_TRUECOLOR)
        view.rgb_row(y, out);
    else if (type == SPNG_COLOR_TYPE_TRUECOLOR_ALPHA)
        view.rgba_row(y, out);
    else
        std::memcpy(out, view.row(y), (width * view.bits() + 7) / 8);
}

Status encode_with(Saving& saving, spng_ctx* context) {
    const View& view = saving.view;
    spng_set_option(context, SPNG_ENCODE_TO_BUFFER, 1);
    spng_ihdr header = {};
    header.width = view.width();
    header.height = view.height();
    const bool grey = view.is_grey_ramp();
    header.color_type = static_cast<uint8_t>(grey               ? SPNG_COLOR_TYPE_GRAYSCALE
                                             : view.bits() <= 8 ? SPNG_COLOR_TYPE_INDEXED
                                             : saving.alpha()   ? SPNG_COLOR_TYPE_TRUECOLOR_ALPHA
                                                                : SPNG_COLOR_TYPE_TRUECOLOR);
    header.bit_depth = static_cast<uint8_t>(view.bits() <= 8 ? view.bits() : 8);
    int error = spng_set_ihdr(context, &header);
    if (error == 0 && header.color_type == SPNG_COLOR_TYPE_INDEXED) {
        spng_plte palette = {};
        palette.n_entries = 1u << view.bits();
        for (uint32_t i = 0; i < palette.n_entries; ++i) {
            const RGBQUAD& colour = view.colour(i);
            palette.entries[i] = {colour.rgbRed, colour.rgbGreen, colour.rgbBlue, 255};
        }
        error = spng_set_plte(context, &palette);
    }
    if (error == 0)
        error = spng_encode_image(context, nullptr, 0, SPNG_FMT_PNG,
                                  SPNG_ENCODE_PROGRESSIVE | SPNG_ENCODE_FINALIZE);
    Buffer row;
    if (!row.resize(uint64_t{4} * view.width()))
        return KIRVO_FILES_NO_MEMORY;
    const size_t size = header.color_type == SPNG_COLOR_TYPE_TRUECOLOR ? size_t{3} * view.width()
                        : header.color_type == SPNG_COLOR_TYPE_TRUECOLOR_ALPHA
                            ? size_t{4} * view.width()
                            : (size_t{view.width()} * view.bits() + 7) / 8;
    for (uint32_t y = 0; y < view.height() && error == 0; ++y) {
        fill_row(saving, y, header.color_type, row.data());
        error = spng_encode_row(context, row.data(), size);
    }
    if (error != SPNG_EOI)
        return KIRVO_FILES_NO_MEMORY; // nothing else can go wrong with a picture that is good
    size_t count = 0;
    void* made = spng_get_png_buffer(context, &count, &error);
    const bool kept = made != nullptr && saving.out.assign({static_cast<uint8_t*>(made), count});
    std::free(made);
    return kept ? KIRVO_FILES_OK : KIRVO_FILES_NO_MEMORY;
}

} // namespace

Status png_decode(Job& job) { return Decoder(job).run(); }

Status png_encode(Saving& saving) {
    const Context context(SPNG_CTX_ENCODER);
    return context != nullptr ? encode_with(saving, context) : KIRVO_FILES_NO_MEMORY;
}

const char* png_name() {
    static char name[40];
    static const int length = std::snprintf(name, sizeof name, "libspng %s", spng_version_string());
    return length > 0 ? name : "libspng";
}

} // namespace kirvo_files
