// BMP files of Windows and OS/2 in every variant, and the DIBs inside icons.
#include "formats.hpp"

namespace kirvo_files {
namespace {

enum Compression : uint32_t {
    rgb = 0,
    rle8 = 1,
    rle4 = 2,
    bitfields = 3,
    jpeg = 4,
    png = 5,
    alpha_bitfields = 6,
    rle24 = 100,     // OS/2's 4
    huffman_1d = 101 // OS/2's 3
};

struct Layout {
    uint32_t header_size = 0;
    uint64_t width = 0, height = 0;
    bool top_down = false;
    uint32_t bits = 0, compression = rgb;
    uint64_t palette_at = 0, palette_entry = 4, colours = 0; // colours that are there
    uint64_t masks_at = 0;
    uint32_t masks[4] = {}; // red, green, blue, alpha
    uint64_t pixels_at = 0;
    uint32_t image_bytes = 0;
};

// Sizes of header that have masks inside: those of Windows from 52 bytes on.
bool has_inner_masks(uint32_t header_size) {
    return header_size == 52 || header_size == 56 || header_size >= 108;
}

bool is_os2(uint32_t header_size) {
    return header_size == 12 || (header_size >= 16 && header_size < 40) || header_size == 64;
}

// Some programs put the pixels where the masks should be, and mean the usual ones.
bool masks_are_missing(Bytes bytes, const Layout& layout, uint64_t pixels_at) {
    return pixels_at == layout.palette_at &&
           bytes.size() < pixels_at + 12 + row_bytes(layout.width, layout.bits) * layout.height;
}

void read_masks(Bytes bytes, uint64_t header, uint64_t pixels_at, Layout& layout) {
    if (layout.compression == rgb) {
        const uint32_t* usual = nullptr;
        static const uint32_t five[] = {0x7C00, 0x03E0, 0x001F}, eight[] = {0xFF0000, 0xFF00, 0xFF};
        usual = layout.bits == 16 ? five : eight;
        std::memcpy(layout.masks, usual, sizeof five);
        return;
    }
    const bool inner = has_inner_masks(layout.header_size);
    if (!inner && masks_are_missing(bytes, layout, pixels_at)) {
        static const uint32_t five[] = {0xF800, 0x07E0, 0x001F}, eight[] = {0xFF0000, 0xFF00, 0xFF};
        std::memcpy(layout.masks, layout.bits == 16 ? five : eight, sizeof five);
        return;
    }
    const bool with_alpha =
        inner ? layout.header_size >= 56 : layout.compression == alpha_bitfields;
    for (uint32_t i = 0; i < (with_alpha ? 4u : 3u); ++i)
        layout.masks[i] = bytes.le32(header + 40 + 4 * i);
    if (!inner)
        layout.palette_at += with_alpha ? 16 : 12;
}

// Headers at an offset, behind a file header that gives the place of the pixels, or 0.
Status read_layout(Job& job, uint64_t header, uint64_t pixels_at, Layout& layout) {
    const Bytes& bytes = job.bytes;
    Known& known = job.known;
    layout.header_size = bytes.le32(header);
    const uint32_t size = layout.header_size;
    if (!bytes.has(header, 16) && !(size == 12 && bytes.has(header, 12)))
        return job.ends_early_in_headers();
    if (size != 12 && (size < 16 || size > 4096))
        return known.fail(KIRVO_FILES_UNSUPPORTED,
                          Text::format("a BMP header of %u bytes is not known", size));
    if (size == 12) {
        layout.width = bytes.le16(header + 4);
        layout.height = bytes.le16(header + 6);
        layout.bits = bytes.le16(header + 10);
        layout.palette_entry = 3;
    } else {
        const auto field = [&](uint32_t at) {
            return at + 4 <= size ? bytes.le32(header + at) : 0;
        };
        const auto width = static_cast<int32_t>(field(4)), height = static_cast<int32_t>(field(8));
        layout.width = width > 0 ? static_cast<uint64_t>(width) : 0;
        layout.top_down = height < 0;
        layout.height = static_cast<uint64_t>(height < 0 ? -int64_t{height} : height);
        layout.bits = bytes.le16(header + 14);
        layout.compression = field(16);
        layout.image_bytes = field(20);
        if (!is_os2(size) || size == 64) {
            known.numbers.dpiAcross = static_cast<int32_t>(field(24)) * 0.0254;
            known.numbers.dpiDown = static_cast<int32_t>(field(28)) * 0.0254;
        }
        layout.colours = field(32);
        if (is_os2(size) && layout.compression == 3)
            layout.compression = huffman_1d;
        if (is_os2(size) && layout.compression == 4)
            layout.compression = rle24;
    }
    layout.palette_at = header + size;
    if (layout.bits == 16 || layout.bits == 32)
        read_masks(bytes, header, pixels_at, layout);
    const bool indexed = layout.bits <= 8;
    const uint64_t most = indexed ? uint64_t{1} << layout.bits : 0;
    uint64_t entries = layout.colours;
    if (indexed && (entries == 0 || entries > most))
        entries = most;
    if (pixels_at < layout.palette_at || pixels_at > bytes.size())
        pixels_at = 0; // the file header says nothing of use
    if (pixels_at != 0 && entries > (pixels_at - layout.palette_at) / layout.palette_entry)
        entries = (pixels_at - layout.palette_at) / layout.palette_entry;
    layout.pixels_at =
        pixels_at != 0 ? pixels_at : layout.palette_at + entries * layout.palette_entry;
    layout.colours = indexed ? entries : 0;
    return KIRVO_FILES_OK;
}

const char* compression_name(uint32_t compression) {
    switch (compression) {
    case rle8:
        return ", RLE8";
    case rle4:
        return ", RLE4";
    case bitfields:
        return ", masks";
    case alpha_bitfields:
        return ", masks with alpha";
    case jpeg:
        return ", a JPEG inside";
    case png:
        return ", a PNG inside";
    case rle24:
        return ", RLE24";
    case huffman_1d:
        return ", Huffman 1D";
    default:
        return "";
    }
}

void describe(Known& known, const Layout& layout) {
    const uint32_t size = layout.header_size;
    const char* header = size == 12     ? "OS/2 1.x header"
                         : is_os2(size) ? "OS/2 2.x header"
                         : size == 52   ? "V2 header"
                         : size == 56   ? "V3 header"
                         : size == 108  ? "V4 header"
                         : size == 124  ? "V5 header"
                                        : "Windows header";
    Text masks;
    if (layout.compression == bitfields || layout.compression == alpha_bitfields)
        masks = Text::format(" %X %X %X", layout.masks[0], layout.masks[1], layout.masks[2]);
    known.text(KIRVO_FILES_TEXT_VARIANT) =
        Text::format("%s%s%s%s", header, compression_name(layout.compression), masks.c_str(),
                     layout.top_down ? ", top-down" : "");
    known.numbers.fileBits = layout.bits;
    known.numbers.channels = layout.bits <= 8 ? 1 : layout.masks[3] != 0 ? 4 : 3;
    known.numbers.colours = static_cast<uint32_t>(layout.colours);
    known.set(KIRVO_FILES_TOP_DOWN, layout.top_down);
    known.set(KIRVO_FILES_LOSSLESS, layout.compression != jpeg);
    known.set(KIRVO_FILES_HAS_ALPHA, layout.masks[3] != 0);
}

// The file's row number `stored`, counted from the top of the picture.
uint32_t place_of(const Layout& layout, uint64_t stored) {
    return static_cast<uint32_t>(layout.top_down ? stored : layout.height - 1 - stored);
}

uint32_t file_colour(const Job& job, const Layout& layout, uint64_t index, uint32_t channel) {
    return index < layout.colours
               ? job.bytes[layout.palette_at + index * layout.palette_entry + channel]
               : 0;
}

void keep_file_palette(Job& job, const Layout& layout) {
    for (uint64_t i = 0; i < layout.colours; ++i) {
        const uint8_t entry[] = {static_cast<uint8_t>(file_colour(job, layout, i, 0)),
                                 static_cast<uint8_t>(file_colour(job, layout, i, 1)),
                                 static_cast<uint8_t>(file_colour(job, layout, i, 2)), 0};
        if (!job.known.palette.append(entry, 4))
            return;
    }
}

Status make_indexed(Job& job, const Layout& layout, uint32_t bits) {
    const Status status = job.dib.make(layout.width, layout.height, bits, 1u << bits);
    if (status == KIRVO_FILES_OK)
        for (uint32_t i = 0; i < 1u << bits; ++i)
            job.dib.set_colour(i, file_colour(job, layout, i, 2), file_colour(job, layout, i, 1),
                               file_colour(job, layout, i, 0));
    return status;
}

// Runs of one byte (two pixels of 4 bits, one of 8) or, for OS/2, of three.
class RunLengths {
  public:
    RunLengths(Job& job, const Layout& layout)
        : job_(job), layout_(layout), at_(layout.pixels_at) {}

    Status decode() {
        const bool wide = layout_.compression == rle24;
        const uint32_t pixel_bits = wide ? 24 : layout_.compression == rle4 ? 4 : 8;
        const Status status = wide ? job_.dib.make(layout_.width, layout_.height, 24)
                                   : make_indexed(job_, layout_, pixel_bits);
        if (status != KIRVO_FILES_OK)
            return status;
        bits_ = pixel_bits;
        while (!done_ && y_ < layout_.height && job_.bytes.has(at_, 2))
            packet();
        if (outside_)
            return job_.damaged(Text::format("runs of pixels lead out of the picture"),
                                static_cast<uint32_t>(y_));
        if (!done_ && y_ < layout_.height && !(y_ + 1 == layout_.height && x_ >= layout_.width))
            return job_.ends_early(static_cast<uint32_t>(y_), !layout_.top_down);
        return KIRVO_FILES_OK;
    }

  private:
    void packet() {
        const uint8_t count = job_.bytes[at_], code = job_.bytes[at_ + 1];
        at_ += count != 0 && bits_ == 24 ? 1 : 2;
        if (count != 0) {
            for (uint32_t i = 0; i < count; ++i)
                put(at_ - (bits_ == 24 ? 0 : 1), bits_ == 4 ? i % 2 : 0);
            at_ += bits_ == 24 ? 3 : 0;
        } else if (code == 0) {
            x_ = 0;
            ++y_;
        } else if (code == 1) {
            done_ = true;
        } else if (code == 2) {
            x_ += job_.bytes[at_];
            y_ += job_.bytes[at_ + 1];
            at_ += 2;
        } else {
            literals(code);
        }
    }

    void literals(uint32_t count) {
        const uint64_t size = (uint64_t{count} * bits_ + 7) / 8;
        for (uint32_t i = 0; i < count && job_.bytes.has(at_, uint64_t{i} * bits_ / 8 + 1); ++i)
            put(at_ + uint64_t{i} * bits_ / 8, bits_ == 4 ? i % 2 : 0);
        at_ += (size + 1) / 2 * 2;
    }

    // The pixel in a byte of the file, or in its right half.
    void put(uint64_t from, uint32_t half) {
        if (x_ >= layout_.width || y_ >= layout_.height) {
            // Encoders pad rows to four bytes.
            outside_ |= y_ >= layout_.height || x_ >= (layout_.width + 7) / 8 * 8;
            ++x_;
            return;
        }
        uint8_t* row = job_.dib.row(place_of(layout_, y_));
        const uint8_t byte = job_.bytes[from];
        const auto x = static_cast<size_t>(x_);
        if (bits_ == 8)
            row[x] = byte;
        else if (bits_ == 24)
            for (uint32_t i = 0; i < 3; ++i)
                row[3 * x + i] = job_.bytes[from + i];
        else {
            const uint32_t index = half != 0 ? byte & 15u : byte >> 4;
            row[x / 2] = static_cast<uint8_t>(x % 2 != 0 ? row[x / 2] | index : index << 4);
        }
        ++x_;
    }

    Job& job_;
    const Layout& layout_;
    uint64_t at_, x_ = 0, y_ = 0;
    uint32_t bits_ = 8;
    bool done_ = false, outside_ = false;
};

// Rows that are there, of rows of so many bytes of which the last may lack its padding.
uint64_t rows_there(const Job& job, const Layout& layout, uint64_t stride) {
    const uint64_t needed = (layout.width * layout.bits + 7) / 8;
    const uint64_t there =
        job.bytes.size() > layout.pixels_at ? job.bytes.size() - layout.pixels_at : 0;
    const uint64_t rows = there < needed ? 0 : (there - needed) / stride + 1;
    return rows < layout.height ? rows : layout.height;
}

void plain_row(const Job& job, const Layout& layout, Bytes in, uint32_t y) {
    uint8_t* out = job.dib.row(y);
    const uint32_t bits = job.dib.bits();
    if (layout.bits == 2) {
        for (uint64_t x = 0; x < layout.width; ++x) {
            const uint32_t index = in[x / 4] >> (3 - x % 4) * 2 & 3u;
            out[x / 2] = static_cast<uint8_t>(out[x / 2] | index << (x % 2 != 0 ? 0 : 4));
        }
    } else if (bits != 32) {
        const size_t count = static_cast<size_t>((layout.width * bits + 7) / 8);
        std::memcpy(out, in.data(), in.size() < count ? in.size() : count);
    } else {
        const Channel red(layout.masks[0]), green(layout.masks[1]), blue(layout.masks[2]);
        for (uint64_t x = 0; x < layout.width; ++x, out += 4) {
            const uint32_t pixel = in.le32(4 * x);
            out[0] = blue.of(pixel);
            out[1] = green.of(pixel);
            out[2] = red.of(pixel);
        }
    }
}

// Masked pixels as red, green, blue and alpha.
void masked_row(const Layout& layout, Bytes in, uint8_t* rgba) {
    const Channel channels[] = {Channel(layout.masks[0]), Channel(layout.masks[1]),
                                Channel(layout.masks[2]), Channel(layout.masks[3])};
    for (uint64_t x = 0; x < layout.width; ++x, rgba += 4) {
        const uint32_t pixel = layout.bits == 16 ? in.le16(2 * x) : in.le32(4 * x);
        for (uint32_t i = 0; i < 4; ++i)
            rgba[i] = channels[i].of(pixel);
    }
}

bool any_alpha(const Job& job, const Layout& layout, uint64_t rows, uint64_t stride) {
    const Channel alpha(layout.masks[3]);
    for (uint64_t y = 0; y < rows; ++y)
        for (uint64_t x = 0; x < layout.width; ++x) {
            const uint64_t at = layout.pixels_at + y * stride + layout.bits / 8 * x;
            if (alpha.of(layout.bits == 16 ? job.bytes.le16(at) : job.bytes.le32(at)) != 0)
                return true;
        }
    return false;
}

Status decode_masked(Job& job, const Layout& layout, uint64_t rows, uint64_t stride, bool alpha) {
    Buffer line, narrow;
    const auto width = static_cast<uint32_t>(layout.width);
    if (!line.resize(4 * layout.width) || !narrow.resize(3 * layout.width))
        return KIRVO_FILES_NO_MEMORY;
    Raster raster(job);
    const Status status = raster.make(alpha ? Pixels::rgba : Pixels::rgb, width,
                                      static_cast<uint32_t>(layout.height));
    if (status != KIRVO_FILES_OK)
        return status;
    for (uint64_t y = 0; y < rows; ++y) {
        masked_row(layout, job.bytes.part(layout.pixels_at + y * stride), line.data());
        for (uint32_t x = 0; x < width && !alpha; ++x)
            std::memcpy(&narrow[3 * x], &line[4 * x], 3);
        raster.put(place_of(layout, y), alpha ? line.data() : narrow.data());
    }
    raster.finish();
    return KIRVO_FILES_OK;
}

Status decode_plain(Job& job, Layout& layout) {
    const uint64_t stride = row_bytes(layout.width, layout.bits);
    const uint64_t rows = rows_there(job, layout, stride);
    bool alpha = layout.masks[3] != 0;
    if (alpha && !any_alpha(job, layout, rows, stride)) {
        job.known.note(KIRVO_FILES_NOTE_REPAIRED,
                       Text::format("alpha is 0 everywhere: taken as opaque"));
        job.known.set(KIRVO_FILES_HAS_ALPHA, false);
        alpha = false;
    }
    const Masks masks = {layout.masks[0], layout.masks[1], layout.masks[2]};
    const bool usual16 = layout.bits == 16 && (masks == masks_555 || masks == masks_565);
    Status status;
    if (alpha || (layout.bits == 16 && !usual16)) {
        status = decode_masked(job, layout, rows, stride, alpha);
    } else {
        status = layout.bits <= 8 ? make_indexed(job, layout, layout.bits == 2 ? 4 : layout.bits)
                                  : job.dib.make(layout.width, layout.height, layout.bits, 0,
                                                 layout.bits == 16 ? masks : masks_888);
        for (uint64_t y = 0; y < rows && status == KIRVO_FILES_OK; ++y)
            plain_row(job, layout, job.bytes.part(layout.pixels_at + y * stride, stride),
                      place_of(layout, y));
    }
    if (status == KIRVO_FILES_OK && rows < layout.height)
        status = job.ends_early(static_cast<uint32_t>(rows), !layout.top_down);
    return status;
}

// A whole JPEG or PNG in place of the pixels.
Status read_embedded(Job& job, const Layout& layout) {
    Known inner;
    Job embedded{
        job.bytes.part(layout.pixels_at, layout.image_bytes != 0 ? layout.image_bytes : UINT64_MAX),
        job.options,
        job.headers_only,
        inner,
        {}};
    const int32_t format = recognise(embedded.bytes, "");
    const int32_t wanted = layout.compression == jpeg ? KIRVO_FILES_JPEG : KIRVO_FILES_PNG;
    if (format != wanted)
        return job.known.fail(KIRVO_FILES_DAMAGED,
                              Text::format("the %s inside is missing", format_name(wanted)));
    const Status status = read_as(format, embedded);
    for (uint32_t i = 0; i < inner.numbers.notes; ++i)
        job.known.note(inner.notes[i].kind, std::move(inner.notes[i].text));
    job.known.numbers.width = inner.numbers.width;
    job.known.numbers.height = inner.numbers.height;
    job.known.numbers.wholeRows = inner.numbers.wholeRows;
    if (status != KIRVO_FILES_OK)
        return job.known.fail(status, std::move(inner.text(KIRVO_FILES_TEXT_REASON)));
    job.dib = std::move(embedded.dib);
    return KIRVO_FILES_OK;
}

bool known_combination(const Layout& layout) {
    const uint32_t bits = layout.bits;
    switch (layout.compression) {
    case rgb:
        return bits == 1 || bits == 2 || bits == 4 || bits == 8 || bits == 16 || bits == 24 ||
               bits == 32;
    case rle8:
        return bits == 8;
    case rle4:
        return bits == 4;
    case rle24:
        return bits == 24;
    case bitfields:
    case alpha_bitfields:
        return bits == 16 || bits == 32;
    case jpeg:
    case png:
        return true;
    default:
        return false;
    }
}

Status read_dib(Job& job, Layout& layout) {
    describe(job.known, layout);
    if (!known_combination(layout))
        return job.known.fail(KIRVO_FILES_UNSUPPORTED,
                              Text::format("a BMP of %u bits with compression %u%s is not read",
                                           layout.bits, layout.compression % 100,
                                           compression_name(layout.compression)));
    if (layout.compression == jpeg || layout.compression == png)
        return read_embedded(job, layout);
    keep_file_palette(job, layout);
    Status status;
    if (!job.claim(layout.width, layout.height, layout.bits, status))
        return status;
    if (layout.compression == rgb || layout.compression == bitfields ||
        layout.compression == alpha_bitfields)
        return decode_plain(job, layout);
    return RunLengths(job, layout).decode();
}

} // namespace

Status read_bmp(Job& job) {
    uint64_t start = 0;
    if (job.bytes.begins("BA")) // an array of bitmaps: the first
        start = 14;
    Layout layout;
    const uint64_t offset = job.bytes.le32(start + 10);
    const Status status = read_layout(job, start + 14, offset, layout);
    return status == KIRVO_FILES_OK ? read_dib(job, layout) : status;
}

Status read_icon_dib(Job& job) {
    Layout layout;
    Status status = read_layout(job, 0, 0, layout);
    if (status != KIRVO_FILES_OK)
        return status;
    layout.height /= 2;
    describe(job.known, layout);
    keep_file_palette(job, layout);
    const bool plain = layout.compression == rgb || layout.compression == bitfields;
    if (!known_combination(layout) || !plain)
        return job.unsupported("an icon with a compressed bitmap");
    if (!job.claim(layout.width, layout.height, 32, status))
        return status;

    const uint64_t stride = row_bytes(layout.width, layout.bits);
    const uint64_t mask_stride = row_bytes(layout.width, 1);
    const uint64_t mask_at = layout.pixels_at + stride * layout.height;
    const uint64_t rows = rows_there(job, layout, stride);
    bool alpha = layout.bits == 32;
    if (alpha) {
        layout.masks[3] = ~(layout.masks[0] | layout.masks[1] | layout.masks[2]);
        alpha = any_alpha(job, layout, rows, stride);
    }
    const bool has_mask = !alpha && job.bytes.has(mask_at, mask_stride * layout.height);
    Buffer line;
    if (!line.resize(4 * layout.width))
        return KIRVO_FILES_NO_MEMORY;
    Raster raster(job);
    status = raster.make(Pixels::rgba, static_cast<uint32_t>(layout.width),
                         static_cast<uint32_t>(layout.height));
    if (status != KIRVO_FILES_OK)
        return status;
    for (uint64_t y = 0; y < rows; ++y) {
        const Bytes in = job.bytes.part(layout.pixels_at + y * stride, stride);
        if (layout.bits == 16 || layout.bits == 32)
            masked_row(layout, in, line.data());
        for (uint64_t x = 0; x < layout.width; ++x) {
            uint8_t* pixel = &line[static_cast<size_t>(4 * x)];
            if (layout.bits == 24) {
                pixel[0] = in[3 * x + 2];
                pixel[1] = in[3 * x + 1];
                pixel[2] = in[3 * x];
            } else if (layout.bits <= 8) {
                const uint64_t per_byte = 8 / layout.bits;
                const uint32_t index =
                    in[x / per_byte] >> (per_byte - 1 - x % per_byte) * layout.bits &
                    ((1u << layout.bits) - 1);
                for (uint32_t i = 0; i < 3; ++i)
                    pixel[i] = static_cast<uint8_t>(file_colour(job, layout, index, 2 - i));
            }
            if (!alpha) {
                const uint8_t byte = job.bytes[mask_at + y * mask_stride + x / 8];
                pixel[3] = has_mask && (byte >> (7 - x % 8) & 1) != 0 ? 0 : 255;
            }
        }
        raster.put(place_of(layout, y), line.data());
    }
    raster.finish();
    return rows < layout.height ? job.ends_early(static_cast<uint32_t>(rows), !layout.top_down)
                                : KIRVO_FILES_OK;
}

} // namespace kirvo_files
