// BMP and Targa files.
#include "plain_write.hpp"

namespace kirvo_files {
namespace {

// The header of alpha in BMP files: V5, whose fourth mask programs look for.
constexpr uint32_t v5_bytes = 124;

uint32_t per_metre(double dpi) {
    return dpi > 0 && dpi < 1e6 ? static_cast<uint32_t>(dpi / 0.0254 + 0.5) : 0;
}

bool append_words(Buffer& out, std::initializer_list<uint32_t> words) {
    for (uint32_t word : words)
        if (!out.append_le32(word))
            return false;
    return true;
}

bool bmp_headers(const Saving& saving, uint64_t pixels) {
    const View& view = saving.view;
    Buffer& out = saving.out;
    const bool masked = view.bits() == 16 || saving.alpha();
    const uint32_t header = saving.alpha() ? v5_bytes : 40;
    const uint32_t colours = view.bits() <= 8 ? view.colours() : 0;
    const uint32_t front = 14 + header + (masked && !saving.alpha() ? 12 : 0) + 4 * colours;
    const Masks masks = view.bits() == 16 ? view.masks() : masks_888;
    bool good =
        out.append("BM", 2) &&
        append_words(out, {static_cast<uint32_t>(front + pixels), 0, front, header, view.width(),
                           view.height(), 1 | view.bits() << 16, masked ? 3u : 0u,
                           static_cast<uint32_t>(pixels), per_metre(saving.options.dpi_across),
                           per_metre(saving.options.dpi_down), colours, 0});
    if (masked)
        good = good && append_words(out, {masks.red, masks.green, masks.blue});
    if (saving.alpha()) // and the colours are sRGB
        good = good && append_words(out, {0xFF000000, 0x73524742}) && out.resize(14 + v5_bytes);
    for (uint32_t i = 0; i < colours && good; ++i) {
        RGBQUAD entry = view.colour(i);
        entry.rgbReserved = 0;
        good = out.append(&entry, sizeof entry);
    }
    return good;
}

// A pixel of 32 bits as 8-8-8.
void wide_row(const View& view, uint32_t y, bool alpha, uint8_t* out) {
    view.rgba_row(y, out);
    for (uint32_t x = 0; x < view.width(); ++x, out += 4) {
        std::swap(out[0], out[2]);
        if (!alpha)
            out[3] = 0;
    }
}

class TargaWriter {
  public:
    explicit TargaWriter(Saving& saving) : saving_(saving), view_(saving.view), depth_(depth()) {}

    Status write() {
        if (view_.width() > 65535 || view_.height() > 65535)
            return saving_.known.fail(KIRVO_FILES_TOO_LARGE,
                                      Text::format("Targa has 65535 pixels across and down at"
                                                   " most"));
        if (!line_.resize(uint64_t{4} * view_.width()) || !headers())
            return KIRVO_FILES_NO_MEMORY;
        for (uint32_t y = view_.height(); y-- > 0;) { // from the bottom, as the format is used
            row(y);
            const bool good =
                saving_.options.has(KIRVO_FILES_RLE)
                    ? packed()
                    : saving_.out.append(line_.data(), size_t{depth_} / 8 * view_.width());
            if (!good)
                return KIRVO_FILES_NO_MEMORY;
        }
        // The extension area is left out; the footer says that this is the newer format.
        return append_words(saving_.out, {0, 0}) && saving_.out.append("TRUEVISION-XFILE.", 18)
                   ? KIRVO_FILES_OK
                   : KIRVO_FILES_NO_MEMORY;
    }

  private:
    // Many programs take a fourth byte for alpha, whatever the header says.
    uint32_t depth() const {
        return view_.bits() <= 8 ? 8 : view_.bits() == 32 && !saving_.alpha() ? 24 : view_.bits();
    }

    bool headers() {
        Buffer& out = saving_.out;
        const bool indexed = view_.bits() <= 8, grey = view_.is_grey_ramp();
        const uint32_t colours = indexed && !grey ? 1u << view_.bits() : 0;
        const auto type = static_cast<uint8_t>((grey      ? 3
                                                : indexed ? 1
                                                          : 2) +
                                               (saving_.options.has(KIRVO_FILES_RLE) ? 8 : 0));
        const uint8_t head[] = {0,
                                static_cast<uint8_t>(colours != 0),
                                type,
                                0,
                                0,
                                static_cast<uint8_t>(colours),
                                static_cast<uint8_t>(colours >> 8),
                                static_cast<uint8_t>(colours != 0 ? 24 : 0),
                                0,
                                0,
                                0,
                                0};
        const uint8_t tail[] = {static_cast<uint8_t>(depth_),
                                static_cast<uint8_t>(saving_.alpha() ? 8 : 0)};
        bool good = out.append(head, sizeof head) && out.append_le16(view_.width()) &&
                    out.append_le16(view_.height()) && out.append(tail, sizeof tail);
        for (uint32_t i = 0; i < colours && good; ++i)
            good = out.append(&view_.colour(i), 3);
        return good;
    }

    void row(uint32_t y) {
        const uint8_t* in = view_.row(y);
        if (view_.bits() == 32) {
            wide_row(view_, y, saving_.alpha(), line_.data());
            for (uint32_t x = 0; x < view_.width() && depth_ == 24; ++x)
                std::memmove(&line_[size_t{3} * x], &line_[size_t{4} * x], 3);
        } else if (view_.bits() == 24 || view_.bits() == 8) {
            std::memcpy(line_.data(), in, size_t{depth_} / 8 * view_.width());
        } else if (view_.bits() == 16) {
            narrow_row(y);
        } else {
            const uint32_t bits = view_.bits(), per_byte = 8 / bits;
            for (uint32_t x = 0; x < view_.width(); ++x)
                line_[x] = static_cast<uint8_t>(
                    in[x / per_byte] >> (per_byte - 1 - x % per_byte) * bits & ((1u << bits) - 1));
        }
    }

    // Targa has five bits of each channel.
    void narrow_row(uint32_t y) {
        const Masks masks = view_.masks();
        const Channel red(masks.red), green(masks.green), blue(masks.blue);
        const uint8_t* in = view_.row(y);
        for (uint32_t x = 0; x < view_.width(); ++x) {
            const uint32_t pixel = in[2 * x] | static_cast<uint32_t>(in[2 * x + 1]) << 8;
            const auto five = [&](const Channel& channel) {
                return (channel.of(pixel) * 31u + 127) / 255;
            };
            const uint32_t made = five(red) << 10 | five(green) << 5 | five(blue);
            line_[2 * x] = static_cast<uint8_t>(made);
            line_[2 * x + 1] = static_cast<uint8_t>(made >> 8);
        }
    }

    bool same(uint32_t a, uint32_t b) const {
        const size_t step = depth_ / 8;
        return std::memcmp(&line_[a * step], &line_[b * step], step) == 0;
    }

    // Runs of two and more pixels, what lies between them as it is.
    bool packed() {
        const size_t step = depth_ / 8;
        const uint32_t width = view_.width();
        for (uint32_t x = 0; x < width;) {
            uint32_t end = x + 1;
            while (end < width && end - x < 128 && same(x, end))
                ++end;
            const bool run = end - x > 1;
            while (!run && end < width && end - x < 128 &&
                   (end + 1 >= width || !same(end, end + 1)))
                ++end;
            const auto head = static_cast<uint8_t>((run ? 128 : 0) | (end - x - 1));
            if (!saving_.out.append(&head, 1) ||
                !saving_.out.append(&line_[x * step], run ? step : step * (end - x)))
                return false;
            x = end;
        }
        return true;
    }

    Saving& saving_;
    const View& view_;
    uint32_t depth_;
    Buffer line_;
};

} // namespace

Status write_bmp(Saving& saving) {
    const View& view = saving.view;
    const uint64_t stride = row_bytes(view.width(), view.bits());
    Buffer line;
    if (!line.resize(stride) || !bmp_headers(saving, stride * view.height()))
        return KIRVO_FILES_NO_MEMORY;
    for (uint32_t y = view.height(); y-- > 0;) {
        const size_t used = static_cast<size_t>((uint64_t{view.width()} * view.bits() + 7) / 8);
        if (view.bits() == 32)
            wide_row(view, y, saving.alpha(), line.data());
        else
            std::memcpy(line.data(), view.row(y), used); // what pads the row stays 0
        if (!saving.out.append(line.bytes()))
            return KIRVO_FILES_NO_MEMORY;
    }
    return KIRVO_FILES_OK;
}

Status write_targa(Saving& saving) { return TargaWriter(saving).write(); }

} // namespace kirvo_files
