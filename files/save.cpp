// The functions that save and turn.
#include "codec.hpp"
#include "exif.hpp"
#include "formats.hpp"
#include "jpeg_write.hpp"
#include "metadata.hpp"
#include "plain_write.hpp"
#include "system.hpp"

namespace kirvo_files {
namespace {

bool in_range(double dpi) {
    return dpi >= 0 && dpi <= 100000; // false for what is no number too
}

bool read_options(const KirvoFilesSaveOptions* given, SaveOptions& options) {
    if (given == nullptr)
        return true;
    const uint32_t bits = given->bits, sampling = given->subsample;
    if (given->size != sizeof *given || given->flags >= KIRVO_FILES_FRESH * 2 ||
        given->format < 0 || given->format >= KIRVO_FILES_FORMATS || given->quality > 100 ||
        given->level > 5 || (sampling != 0 && sampling != 1 && sampling != 2 && sampling != 4) ||
        (bits != 0 && bits != 8 && bits != 16 && bits != 24 && bits != 32) ||
        given->compression < 0 || given->compression > KIRVO_FILES_COMPRESSION_PACKBITS ||
        !in_range(given->dpiAcross) || !in_range(given->dpiDown))
        return false;
    options.format = given->format;
    options.flags = given->flags;
    options.quality = given->quality;
    options.level = given->level;
    options.subsample = sampling;
    options.size_limit = given->sizeLimit;
    options.bits = bits;
    options.compression = given->compression;
    options.dpi_across = given->dpiAcross;
    options.dpi_down = given->dpiDown;
    return true;
}

void choose_resolution(const View& view, const Known* source, SaveOptions& options) {
    if (options.dpi_across <= 0 && source != nullptr && !options.has(KIRVO_FILES_STRIP)) {
        options.dpi_across = source->numbers.dpiAcross;
        options.dpi_down = source->numbers.dpiDown;
    }
    if (options.dpi_across <= 0) {
        options.dpi_across = view.dpi_across();
        options.dpi_down = view.dpi_down();
    }
    if (options.dpi_down <= 0)
        options.dpi_down = options.dpi_across;
    if (!in_range(options.dpi_across) || !in_range(options.dpi_down))
        options.dpi_across = options.dpi_down = 0;
}

// The picture at another depth: from palettes to more, and between 16, 24 and 32 bits. Or grey.
Status converted(const View& view, uint32_t bits, bool grey, Dib& dib) {
    const Status status = dib.make(view.width(), view.height(), bits, bits == 8 ? 256 : 0,
                                   bits == 16 ? masks_565 : masks_888);
    Buffer line;
    if (status != KIRVO_FILES_OK || !line.resize(uint64_t{4} * view.width()))
        return KIRVO_FILES_NO_MEMORY;
    if (grey)
        dib.set_greys();
    else if (bits == 8)
        for (uint32_t i = 0; i < view.colours(); ++i)
            dib.palette()[i] = view.colour(i);
    for (uint32_t y = 0; y < view.height(); ++y) {
        view.rgba_row(y, line.data());
        const uint8_t* in = line.data();
        uint8_t* out = dib.row(y);
        const uint8_t* stored = view.row(y);
        for (uint32_t x = 0; x < view.width(); ++x, in += 4, out += bits / 8) {
            if (grey) {
                *out = static_cast<uint8_t>(
                    (19595 * in[0] + 38470 * in[1] + 7471 * in[2] + 32768) >> 16);
            } else if (bits == 8) {
                const uint32_t depth = view.bits(), per_byte = 8 / depth;
                *out = static_cast<uint8_t>(stored[x / per_byte] >>
                                                (per_byte - 1 - x % per_byte) * depth &
                                            ((1u << depth) - 1));
            } else if (bits == 16) {
                const uint32_t pixel = (in[0] & 0xF8u) << 8 | (in[1] & 0xFCu) << 3 | in[2] >> 3;
                out[0] = static_cast<uint8_t>(pixel);
                out[1] = static_cast<uint8_t>(pixel >> 8);
            } else {
                out[0] = in[2];
                out[1] = in[1];
                out[2] = in[0];
                if (bits == 32)
                    out[3] = view.bits() == 32 ? in[3] : uint8_t{0};
            }
        }
    }
    return KIRVO_FILES_OK;
}

uint32_t wanted_bits(const View& view, const SaveOptions& options) {
    const bool grey = options.has(KIRVO_FILES_GREY) && !view.is_grey_ramp();
    if (options.format == KIRVO_FILES_JPEG || options.format == KIRVO_FILES_WEBP)
        return grey && options.format == KIRVO_FILES_WEBP ? 8 : view.bits();
    if (grey)
        return 8;
    return options.bits != 0 ? options.bits : view.bits();
}

Status encode_as(Saving& saving) {
    Known& known = saving.known;
    const int32_t format = saving.options.format;
    if (saving.alpha() && format == KIRVO_FILES_JPEG)
        known.note(KIRVO_FILES_NOTE_ALPHA,
                   Text::format("alpha left out: JPEG has no place for it"));
    Status status;
    switch (format) {
    case KIRVO_FILES_BMP:
        status = write_bmp(saving);
        break;
    case KIRVO_FILES_TARGA:
        status = write_targa(saving);
        break;
    case KIRVO_FILES_JPEG:
        status = write_jpeg(saving);
        break;
    default:
        status = encode(format, saving, saving.options.quality != 0 ? saving.options.quality : 90);
    }
    if (status == KIRVO_FILES_NO_CODEC)
        return known.fail(
            status, Text::format("this system has no encoder for %s files", format_name(format)));
    if (known.text(KIRVO_FILES_TEXT_DECODER).empty())
        known.text(KIRVO_FILES_TEXT_DECODER) = Text::format(
            "%s", encoder_name(format) != nullptr ? encoder_name(format) : "KirvoFiles");
    return status == KIRVO_FILES_OK ? add_metadata(saving, format) : status;
}

// WebP below a size: JPEG's tables are searched where they are made.
Status encode_below_limit(Saving& saving, SaveOptions& options) {
    Status status = encode_as(saving);
    if (options.format != KIRVO_FILES_WEBP || options.size_limit == 0 ||
        options.has(KIRVO_FILES_WEBP_LOSSLESS))
        return status;
    uint32_t good = 0, bad = (options.quality != 0 ? options.quality : 90) + 1;
    if (status != KIRVO_FILES_OK || saving.out.size() <= options.size_limit)
        return status;
    while (bad - good > 1) {
        options.quality = (good + bad) / 2;
        saving.out.clear();
        status = encode_as(saving);
        if (status != KIRVO_FILES_OK)
            return status;
        (saving.out.size() <= options.size_limit ? good : bad) = options.quality;
    }
    if (good == 0)
        return saving.known.fail(
            KIRVO_FILES_SIZE_LIMIT,
            Text::format("even the coarsest quality takes more than %u bytes", options.size_limit));
    options.quality = good;
    saving.out.clear();
    saving.known.note(KIRVO_FILES_NOTE_ENCODER,
                      Text::format("quality %u keeps it below %u bytes", good, options.size_limit));
    return encode_as(saving);
}

struct OwnedBlock {
    HGLOBAL block = nullptr;
    ~OwnedBlock() {
        if (block != nullptr)
            GlobalFree(block);
    }
};

Status encode_picture(HGLOBAL dib, const Known* source, SaveOptions& options, Known& known,
                      Buffer& out) {
    if ((KirvoFilesAbilities(options.format) & KIRVO_FILES_WRITES) == 0)
        return known.fail(
            options.format == KIRVO_FILES_WEBP || options.format == KIRVO_FILES_TIFF ||
                    options.format == KIRVO_FILES_PNG
                ? KIRVO_FILES_NO_CODEC
                : KIRVO_FILES_NOT_WRITTEN,
            options.format == 0
                ? Text::format("its name does not tell the format")
                : Text::format("%s files are not written here", format_name(options.format)));
    OwnedBlock made; // freed behind its view
    View given, other;
    Status status = given.open(dib);
    if (status != KIRVO_FILES_OK)
        return known.fail(status, Text::format("the image is no packed DIB"));
    const uint32_t bits = wanted_bits(given, options);
    const bool grey = bits == 8 && options.has(KIRVO_FILES_GREY);
    if (bits != given.bits() || (grey && !given.is_grey_ramp())) {
        if (bits == 8 && given.bits() > 8 && !grey)
            return known.fail(KIRVO_FILES_UNSUPPORTED,
                              Text::format("%u bits do not become %u without choosing colours",
                                           given.bits(), bits));
        Dib dib_made;
        status = converted(given, bits, grey, dib_made);
        if (status != KIRVO_FILES_OK)
            return status;
        made.block = dib_made.hand_over();
        status = other.open(made.block);
    }
    const View& view = made.block != nullptr ? other : given;
    choose_resolution(view, source, options);
    Saving saving{view, source, options, known, out};
    if (status == KIRVO_FILES_OK)
        status = encode_below_limit(saving, options);
    known.numbers.format = options.format;
    known.numbers.width = view.width();
    known.numbers.height = view.height();
    known.numbers.fileBits = view.bits();
    known.numbers.fileBytes = static_cast<uint32_t>(out.size());
    known.numbers.dpiAcross = options.dpi_across;
    known.numbers.dpiDown = options.dpi_down;
    return status;
}

Status save(const char* name, HGLOBAL dib, KirvoFile from, const KirvoFilesSaveOptions* given,
            KirvoFile* file) {
    if (file != nullptr)
        *file = nullptr;
    SaveOptions options;
    const Known* source = known_of(from);
    if (dib == nullptr || !read_options(given, options) || (from != nullptr && source == nullptr))
        return KIRVO_FILES_BAD_PARAMETER;
    if (options.format == KIRVO_FILES_UNKNOWN)
        options.format = format_of_name(name);
    Known* known = make<Known>();
    if (known == nullptr)
        return KIRVO_FILES_NO_MEMORY;
    Buffer out;
    Status status = encode_picture(dib, source, options, *known, out);
    if (status == KIRVO_FILES_OK)
        status = write_file(name, out.bytes(), options.has(KIRVO_FILES_NEW_ONLY), *known);
    return answer(status, name, known, file);
}

Status save_memory(HGLOBAL dib, KirvoFile from, const KirvoFilesSaveOptions* given, HGLOBAL* block,
                   uint32_t* count, KirvoFile* file) {
    if (file != nullptr)
        *file = nullptr;
    if (block != nullptr)
        *block = nullptr;
    SaveOptions options;
    const Known* source = known_of(from);
    if (dib == nullptr || block == nullptr || count == nullptr || !read_options(given, options) ||
        (from != nullptr && source == nullptr))
        return KIRVO_FILES_BAD_PARAMETER;
    Known* known = make<Known>();
    if (known == nullptr)
        return KIRVO_FILES_NO_MEMORY;
    Buffer out;
    Status status = encode_picture(dib, source, options, *known, out);
    if (status == KIRVO_FILES_OK) {
        *block = allocate_block(out.size());
        void* data = *block != nullptr ? GlobalLock(*block) : nullptr;
        if (data != nullptr) {
            std::memcpy(data, out.data(), out.size());
            GlobalUnlock(*block);
            *count = static_cast<uint32_t>(out.size());
        } else {
            status = KIRVO_FILES_NO_MEMORY;
        }
    }
    return answer(status, "", known, file);
}

} // namespace
} // namespace kirvo_files

using namespace kirvo_files;

int32_t WINAPI KirvoFilesSave(const char* name, HGLOBAL dib, KirvoFile source,
                              const KirvoFilesSaveOptions* options, KirvoFile* file) {
    return name != nullptr ? save(name, dib, source, options, file) : KIRVO_FILES_BAD_PARAMETER;
}

int32_t WINAPI KirvoFilesSaveW(const KirvoWide* name, HGLOBAL dib, KirvoFile source,
                               const KirvoFilesSaveOptions* options, KirvoFile* file) {
    if (name == nullptr)
        return KIRVO_FILES_BAD_PARAMETER;
    const Text spelled = utf8_of(name);
    if (spelled.empty() && name[0] != 0)
        return KIRVO_FILES_NO_MEMORY;
    return save(spelled.c_str(), dib, source, options, file);
}

int32_t WINAPI KirvoFilesSaveMemory(HGLOBAL dib, KirvoFile source,
                                    const KirvoFilesSaveOptions* options, HGLOBAL* block,
                                    uint32_t* count, KirvoFile* file) {
    return save_memory(dib, source, options, block, count, file);
}
