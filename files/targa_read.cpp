// Targa files in every variant.
#include "formats.hpp"

namespace kirvo_files {
namespace {

struct Targa {
    explicit Targa(Bytes bytes)
        : type(bytes[2]), map_first(bytes.le16(3)), map_count(bytes[1] == 1 ? bytes.le16(5) : 0),
          map_bits(bytes[7]), width(bytes.le16(12)), height(bytes.le16(14)), bits(bytes[16]),
          descriptor(bytes[17]), map_at(uint64_t{18} + bytes[0]),
          pixels_at(map_at + uint64_t{map_count} * ((map_bits + 7u) / 8)) {}

    bool packed() const { return type >= 9; }
    uint32_t kind() const { return type & 7u; } // 1 palette, 2 true colour, 3 grey
    bool top_down() const { return (descriptor & 0x20) != 0; }
    bool right_to_left() const { return (descriptor & 0x10) != 0; }
    uint32_t alpha_bits() const { return descriptor & 15u; }
    uint32_t pixel_bytes() const { return (bits + 7) / 8; }

    uint32_t type, map_first, map_count, map_bits, width, height, bits, descriptor;
    uint64_t map_at, pixels_at;
};

bool good_map_bits(uint32_t bits) { return bits == 15 || bits == 16 || bits == 24 || bits == 32; }

// Whether the variant is one that is read.
bool offered(const Targa& targa) {
    if (targa.type != 1 && targa.type != 2 && targa.type != 3 && targa.type != 9 &&
        targa.type != 10 && targa.type != 11)
        return false;
    if ((targa.descriptor & 0xC0) != 0) // interleaved rows
        return false;
    switch (targa.kind()) {
    case 1:
        return (targa.bits == 8 || targa.bits == 16) && good_map_bits(targa.map_bits);
    case 2:
        return good_map_bits(targa.bits);
    default:
        return targa.bits == 8 || targa.bits == 16;
    }
}

// Whether the alpha bits mean something: the extension area of the file may say that they do not.
bool alpha_counts(Bytes bytes, const Targa& targa) {
    const uint64_t footer = bytes.size() >= 26 ? bytes.size() - 26 : 0;
    if (bytes.begins("TRUEVISION-XFILE.", footer + 8)) {
        const uint64_t extension = bytes.le32(footer);
        if (extension != 0 && bytes.has(extension, 495))
            return bytes[extension + 494] >= 3;
    }
    return targa.alpha_bits() != 0;
}

struct Rgba {
    uint8_t red, green, blue, alpha;
};

uint8_t from_5(uint32_t value) { return static_cast<uint8_t>(((value & 31) * 255 + 15) / 31); }

Rgba colour_of(Bytes bytes, uint64_t at, uint32_t bits) {
    if (bits <= 16) {
        const uint32_t pixel = bytes.le16(at);
        return {from_5(pixel >> 10), from_5(pixel >> 5), from_5(pixel),
                static_cast<uint8_t>((pixel & 0x8000) != 0 ? 255 : 0)};
    }
    return {bytes[at + 2], bytes[at + 1], bytes[at], bits == 32 ? bytes[at + 3] : uint8_t{255}};
}

class Reader {
  public:
    Reader(Job& job, const Targa& targa) : job_(job), targa_(targa), at_(targa.pixels_at) {}

    Status read() {
        const uint32_t kind = targa_.kind();
        const bool wide_map = targa_.map_first + targa_.map_count > 256;
        const uint32_t depth = kind == 1 ? targa_.map_bits : targa_.bits;
        alpha_ = alpha_counts(job_.bytes, targa_) &&
                 (kind == 3 ? targa_.bits == 16 : depth == 16 || depth == 32);
        describe();
        Status status;
        if (!job_.claim(targa_.width, targa_.height, targa_.bits < 24 && kind != 2 ? 8 : 32,
                        status))
            return status;
        const uint64_t line = uint64_t{targa_.width} * targa_.pixel_bytes();
        if (!line_.resize(line) || !wide_.resize(uint64_t{4} * targa_.width))
            return KIRVO_FILES_NO_MEMORY;
        drop_empty_alpha();
        if (kind == 1 && !wide_map && targa_.bits == 8)
            status = palette();
        else if (kind == 2 && !alpha_ && targa_.bits != 24)
            status = plain();
        else
            status = raster();
        if (status == KIRVO_FILES_OK && whole_ < targa_.height)
            status = job_.ends_early(whole_, !targa_.top_down());
        return status;
    }

  private:
    void describe() {
        Known& known = job_.known;
        static const char* const kinds[] = {"", "palette", "true colour", "grey"};
        known.text(KIRVO_FILES_TEXT_VARIANT) = Text::format(
            "%s%s, from the %s %s", kinds[targa_.kind()], targa_.packed() ? ", run lengths" : "",
            targa_.top_down() ? "top" : "bottom", targa_.right_to_left() ? "right" : "left");
        known.numbers.fileBits = targa_.bits;
        known.numbers.channels = (targa_.kind() == 2 ? 3 : 1) + (alpha_ ? 1 : 0);
        known.numbers.colours = targa_.kind() == 1 ? targa_.map_count : 0;
        known.set(KIRVO_FILES_TOP_DOWN, targa_.top_down());
        known.set(KIRVO_FILES_LOSSLESS);
        known.set(KIRVO_FILES_HAS_ALPHA, alpha_);
    }

    // Alpha that is 0 in every pixel was not meant.
    void drop_empty_alpha() {
        if (!alpha_ || targa_.kind() == 1)
            return;
        const uint64_t start = at_;
        bool any = false;
        while (!any && whole_ < targa_.height && next_row())
            for (uint32_t x = 0; x < targa_.width && !any; ++x)
                any = pixel(x).alpha != 0;
        at_ = start;
        whole_ = 0;
        run_ = 0;
        if (!any) {
            alpha_ = false;
            job_.known.set(KIRVO_FILES_HAS_ALPHA, false);
            job_.known.note(KIRVO_FILES_NOTE_REPAIRED,
                            Text::format("alpha is 0 everywhere: taken as opaque"));
        }
    }

    // The next row as it is stored; false when it is not all there.
    bool next_row() {
        const uint32_t step = targa_.pixel_bytes();
        if (!targa_.packed()) {
            const Bytes row = job_.bytes.part(at_, line_.size());
            at_ += line_.size();
            std::memset(line_.data(), 0, line_.size());
            if (!row.empty())
                std::memcpy(line_.data(), row.data(), row.size());
            whole_ += row.size() == line_.size() ? 1 : 0;
            return row.size() == line_.size();
        }
        for (uint32_t x = 0; x < targa_.width; ++x) {
            if (run_ == 0) {
                if (!job_.bytes.has(at_, 1 + step)) {
                    std::memset(&line_[size_t{x} * step], 0, line_.size() - size_t{x} * step);
                    return false;
                }
                const uint8_t head = job_.bytes[at_++];
                run_ = (head & 127u) + 1;
                repeated_ = (head & 128) != 0;
                source_ = at_;
                at_ += repeated_ ? step : uint64_t{step} * run_;
            }
            for (uint32_t i = 0; i < step; ++i)
                line_[size_t{x} * step + i] = job_.bytes[source_ + i];
            if (!repeated_) {
                if (!job_.bytes.has(source_, step))
                    return false;
                source_ += step;
            }
            --run_;
        }
        ++whole_;
        return true;
    }

    Rgba pixel(uint32_t x) const {
        const Bytes line = line_.bytes();
        const uint64_t at = uint64_t{x} * targa_.pixel_bytes();
        if (targa_.kind() == 3)
            return {line[at], line[at], line[at], targa_.bits == 16 ? line[at + 1] : uint8_t{255}};
        if (targa_.kind() == 2)
            return colour_of(line, at, targa_.bits);
        return entry(targa_.bits == 16 ? line.le16(at) : line[at]);
    }

    Rgba entry(uint32_t index) const {
        if (index < targa_.map_first || index - targa_.map_first >= targa_.map_count)
            return {0, 0, 0, 255};
        const uint64_t size = (targa_.map_bits + 7) / 8;
        return colour_of(job_.bytes, targa_.map_at + size * (index - targa_.map_first),
                         targa_.map_bits);
    }

    // Whether a row arrives, and where in the picture it belongs.
    template<typename Store>
    void rows(Store store) {
        for (uint32_t stored = 0; stored < targa_.height; ++stored) {
            const bool whole = next_row();
            mirror();
            store(targa_.top_down() ? stored : targa_.height - 1 - stored);
            if (!whole)
                return;
        }
    }

    void mirror() {
        const size_t step = targa_.pixel_bytes();
        if (targa_.right_to_left() && targa_.width > 1)
            for (size_t left = 0, right = line_.size() - step; left < right;
                 left += step, right -= step)
                for (size_t i = 0; i < step; ++i)
                    std::swap(line_[left + i], line_[right + i]);
    }

    Status palette() {
        const Status status = job_.dib.make(targa_.width, targa_.height, 8, 256);
        if (status != KIRVO_FILES_OK)
            return status;
        uint8_t alpha[256];
        for (uint32_t i = 0; i < 256; ++i) {
            const Rgba colour = entry(i);
            job_.dib.set_colour(i, colour.red, colour.green, colour.blue);
            alpha[i] = alpha_ ? colour.alpha : uint8_t{255};
        }
        keep_palette(job_, targa_.map_first + targa_.map_count);
        rows([&](uint32_t y) { std::memcpy(job_.dib.row(y), line_.data(), line_.size()); });
        return apply_palette_alpha(job_, alpha, 256);
    }

    // Pixels of 16 and 32 bits as they are.
    Status plain() {
        const uint32_t bits = targa_.bits == 32 ? 32 : 16;
        const Status status =
            job_.dib.make(targa_.width, targa_.height, bits, 0, bits == 16 ? masks_555 : masks_888);
        if (status == KIRVO_FILES_OK)
            rows([&](uint32_t y) {
                uint8_t* out = job_.dib.row(y);
                std::memcpy(out, line_.data(), line_.size());
                for (uint32_t x = 0; x < targa_.width; ++x) // the top bit or byte is nobody's
                    if (bits == 32)
                        out[4 * x + 3] = 0;
                    else
                        out[2 * x + 1] &= 127;
            });
        return status;
    }

    Status raster() {
        const bool grey = targa_.kind() == 3;
        Raster raster(job_);
        const Pixels pixels = grey ? (alpha_ ? Pixels::grey_alpha : Pixels::grey)
                                   : (alpha_ ? Pixels::rgba : Pixels::rgb);
        const Status status = raster.make(pixels, targa_.width, targa_.height);
        if (status != KIRVO_FILES_OK)
            return status;
        rows([&](uint32_t y) {
            uint8_t* out = wide_.data();
            for (uint32_t x = 0; x < targa_.width; ++x) {
                const Rgba from = pixel(x);
                *out++ = from.red;
                if (!grey) {
                    *out++ = from.green;
                    *out++ = from.blue;
                }
                if (alpha_)
                    *out++ = from.alpha;
            }
            raster.put(y, wide_.data());
        });
        raster.finish();
        return status;
    }

    Job& job_;
    const Targa& targa_;
    uint64_t at_, source_ = 0;
    uint32_t whole_ = 0, run_ = 0;
    bool repeated_ = false, alpha_ = false;
    Buffer line_, wide_;
};

} // namespace

// Targa files begin with no word of their own: a header that makes sense throughout has to do.
bool looks_like_targa(Bytes bytes) {
    if (bytes.size() < 18)
        return false;
    const Targa targa(bytes);
    return bytes[1] <= 1 && offered(targa) && targa.width != 0 && targa.height != 0 &&
           (targa.kind() != 1 || (bytes[1] == 1 && targa.map_count != 0)) &&
           targa.alpha_bits() <= 8;
}

Status read_targa(Job& job) {
    if (job.bytes.size() < 18)
        return job.ends_early_in_headers();
    const Targa targa(job.bytes);
    if (!offered(targa))
        return job.known.fail(KIRVO_FILES_UNSUPPORTED,
                              Text::format("a Targa file of type %u with %u bits is not read",
                                           targa.type, targa.bits));
    return Reader(job, targa).read();
}

} // namespace kirvo_files
