#include "metadata.hpp"

#include "exif.hpp"

namespace kirvo_files {
namespace {

constexpr size_t segment_bytes = 65533; // of a JPEG segment without its marker and length

struct Metadata {
    Buffer exif;
    Bytes icc, xmp, comment;
};

class Writer {
  public:
    Writer(Saving& saving, Metadata& metadata)
        : in_(saving.out.bytes()), saving_(saving), metadata_(metadata) {}

    Status jpeg();
    Status png();
    Status webp();
    Status tiff();
    Status none(const char* format);

  private:
    void left_out(const char* what, const char* why) {
        saving_.known.note(KIRVO_FILES_NOTE_METADATA, Text::format("%s left out: %s", what, why));
    }
    Status done() {
        if (!good_)
            return KIRVO_FILES_NO_MEMORY;
        saving_.out.swap(made_);
        return KIRVO_FILES_OK;
    }

    void segment(uint8_t marker, const char* head, size_t head_bytes, Bytes body);
    void profile_segments();
    void chunk(const char* name, Bytes head, Bytes body);
    void profile_chunk();
    void riff_chunk(const char* name, Bytes body);

    Bytes in_;
    Saving& saving_;
    Metadata& metadata_;
    Buffer made_;
    bool good_ = true;
};

// ---- JPEG ----

void Writer::segment(uint8_t marker, const char* head, size_t head_bytes, Bytes body) {
    const uint8_t start[] = {0xFF, marker};
    good_ = good_ && made_.append(start, 2) &&
            made_.append_be16(static_cast<uint32_t>(2 + head_bytes + body.size())) &&
            made_.append(head, head_bytes) && made_.append(body);
}

void Writer::profile_segments() {
    constexpr size_t part = segment_bytes - 14;
    const size_t parts = (metadata_.icc.size() + part - 1) / part;
    if (parts > 255)
        return left_out("the profile", "it is too large for a JPEG");
    for (size_t i = 0; i < parts; ++i) {
        const char head[] = {'I',
                             'C',
                             'C',
                             '_',
                             'P',
                             'R',
                             'O',
                             'F',
                             'I',
                             'L',
                             'E',
                             0,
                             static_cast<char>(i + 1),
                             static_cast<char>(parts)};
        segment(0xE2, head, sizeof head, metadata_.icc.part(part * i, part));
    }
}

Status Writer::jpeg() {
    const bool jfif = in_.begins("\xFF\xD8\xFF\xE0");
    const uint64_t rest = jfif ? uint64_t{4} + in_.be16(4) : 2;
    const auto dots = [](double dpi) {
        return static_cast<uint32_t>(dpi > 0 && dpi < 65535 ? dpi + 0.5 : 0);
    };
    const uint32_t across = dots(saving_.options.dpi_across), down = dots(saving_.options.dpi_down);
    const char unit = across != 0 ? 1 : 0;
    const char density[] = {'J',
                            'F',
                            'I',
                            'F',
                            0,
                            1,
                            1,
                            unit,
                            static_cast<char>((unit != 0 ? across : 1) >> 8),
                            static_cast<char>(unit != 0 ? across : 1),
                            static_cast<char>((unit != 0 ? down : 1) >> 8),
                            static_cast<char>(unit != 0 ? down : 1),
                            0,
                            0};
    good_ = made_.append(in_.part(0, 2));
    segment(0xE0, density, sizeof density, {});
    if (metadata_.exif.size() + 6 > segment_bytes)
        left_out("EXIF", "it is too large for a JPEG");
    else if (!metadata_.exif.empty())
        segment(0xE1, "Exif\0", 6, metadata_.exif.bytes());
    if (metadata_.xmp.size() + 29 > segment_bytes)
        left_out("XMP", "it is too large for a JPEG");
    else if (!metadata_.xmp.empty())
        segment(0xE1, "http://ns.adobe.com/xap/1.0/", 29, metadata_.xmp);
    profile_segments();
    if (metadata_.comment.size() > segment_bytes)
        left_out("the end of the comment", "it is too large for a JPEG");
    if (!metadata_.comment.empty())
        segment(0xFE, "", 0, metadata_.comment.part(0, segment_bytes));
    good_ = good_ && made_.append(in_.part(rest));
    return done();
}

// ---- PNG ----

uint32_t crc(uint32_t sum, Bytes bytes) {
    for (size_t i = 0; i < bytes.size(); ++i) {
        sum ^= bytes[i];
        for (int bit = 0; bit < 8; ++bit)
            sum = sum >> 1 ^ ((sum & 1) != 0 ? 0xEDB88320u : 0);
    }
    return sum;
}

void Writer::chunk(const char* name, Bytes head, Bytes body) {
    const Bytes word(reinterpret_cast<const uint8_t*>(name), 4);
    const uint32_t sum = ~crc(crc(crc(~0u, word), head), body);
    good_ = good_ && made_.append_be32(static_cast<uint32_t>(head.size() + body.size())) &&
            made_.append(word) && made_.append(head) && made_.append(body) &&
            made_.append_be32(sum);
}

// A profile as a zlib stream of stored blocks: small beside any picture, and no library for it.
void Writer::profile_chunk() {
    Buffer body;
    good_ = good_ && body.append("ICC profile\0\0", 13) && body.append("\x78\x01", 2);
    uint32_t low = 1, high = 0;
    for (size_t i = 0; i < metadata_.icc.size(); ++i) {
        low = (low + metadata_.icc[i]) % 65521;
        high = (high + low) % 65521;
    }
    for (size_t at = 0; at < metadata_.icc.size(); at += 65535) {
        const Bytes part = metadata_.icc.part(at, 65535);
        const bool last = at + part.size() == metadata_.icc.size();
        good_ = good_ && body.append(last ? "\1" : "\0", 1) &&
                body.append_le16(static_cast<uint32_t>(part.size())) &&
                body.append_le16(~static_cast<uint32_t>(part.size()) & 0xFFFF) && body.append(part);
    }
    good_ = good_ && body.append_be32(high << 16 | low);
    chunk("iCCP", {}, body.bytes());
}

Status Writer::png() {
    const uint64_t rest = 33; // the signature and the header
    good_ = made_.append(in_.part(0, rest));
    if (!metadata_.icc.empty())
        profile_chunk();
    if (saving_.options.dpi_across > 0) {
        Buffer body;
        const auto dots = [](double dpi) { return static_cast<uint32_t>(dpi / 0.0254 + 0.5); };
        good_ = good_ && body.append_be32(dots(saving_.options.dpi_across)) &&
                body.append_be32(dots(saving_.options.dpi_down)) && body.append("\1", 1);
        chunk("pHYs", {}, body.bytes());
    }
    if (!metadata_.exif.empty())
        chunk("eXIf", {}, metadata_.exif.bytes());
    if (!metadata_.xmp.empty())
        chunk("iTXt", {reinterpret_cast<const uint8_t*>("XML:com.adobe.xmp\0\0\0\0"), 22},
              metadata_.xmp);
    good_ = good_ && made_.append(in_.part(rest));
    return done();
}

// ---- WebP ----

void Writer::riff_chunk(const char* name, Bytes body) {
    good_ = good_ && made_.append(name, 4) &&
            made_.append_le32(static_cast<uint32_t>(body.size())) && made_.append(body) &&
            (body.size() % 2 == 0 || made_.append("", 1));
}

Status Writer::webp() {
    if (metadata_.exif.empty() && metadata_.icc.empty() && metadata_.xmp.empty())
        return KIRVO_FILES_OK;
    uint8_t canvas[10] = {};
    canvas[0] = static_cast<uint8_t>(
        (metadata_.icc.empty() ? 0 : 0x20) | (saving_.alpha() ? 0x10 : 0) |
        (metadata_.exif.empty() ? 0 : 0x08) | (metadata_.xmp.empty() ? 0 : 0x04));
    for (uint32_t i = 0; i < 3; ++i) {
        canvas[4 + i] = static_cast<uint8_t>((saving_.view.width() - 1) >> 8 * i);
        canvas[7 + i] = static_cast<uint8_t>((saving_.view.height() - 1) >> 8 * i);
    }
    const bool extended = in_.begins("VP8X", 12);
    good_ = made_.append("RIFF\0\0\0\0WEBP", 12);
    riff_chunk("VP8X", {canvas, sizeof canvas});
    if (!metadata_.icc.empty())
        riff_chunk("ICCP", metadata_.icc);
    good_ = good_ && made_.append(in_.part(extended ? 30 : 12));
    if (!metadata_.exif.empty())
        riff_chunk("EXIF", metadata_.exif.bytes());
    if (!metadata_.xmp.empty())
        riff_chunk("XMP ", metadata_.xmp);
    for (uint32_t i = 0; i < 4 && good_; ++i)
        made_[4 + i] = static_cast<uint8_t>((made_.size() - 8) >> 8 * i);
    return done();
}

// ---- the others ----

Status Writer::tiff() {
    if (metadata_.exif.empty() && metadata_.icc.empty() && metadata_.xmp.empty())
        return KIRVO_FILES_OK;
    return add_to_tiff(saving_.out, metadata_.exif.bytes(), metadata_.icc, metadata_.xmp)
               ? KIRVO_FILES_OK
               : KIRVO_FILES_NO_MEMORY;
}

Status Writer::none(const char* format) {
    const bool exif = !metadata_.exif.empty(), icc = !metadata_.icc.empty(),
               xmp = !metadata_.xmp.empty();
    if (exif || icc || xmp)
        saving_.known.note(KIRVO_FILES_NOTE_METADATA,
                           Text::format("%s%s%s%s%s left out: %s files have no place for it",
                                        exif ? "EXIF" : "", exif && icc ? ", " : "",
                                        icc ? "the profile" : "", (exif || icc) && xmp ? ", " : "",
                                        xmp ? "XMP" : "", format));
    return KIRVO_FILES_OK;
}

} // namespace

Status add_metadata(Saving& saving, int32_t format) {
    Metadata metadata;
    if (saving.source != nullptr) {
        const Known& source = *saving.source;
        const bool strip = saving.options.has(KIRVO_FILES_STRIP);
        if (!metadata.exif.append(source.metadata(KIRVO_FILES_DATA_EXIF, strip)))
            return KIRVO_FILES_NO_MEMORY;
        update_exif(metadata.exif, saving.view.width(), saving.view.height(), source.upright);
        metadata.icc = source.metadata(KIRVO_FILES_DATA_ICC, strip);
        metadata.xmp = source.metadata(KIRVO_FILES_DATA_XMP, strip);
        metadata.comment = source.metadata(KIRVO_FILES_DATA_COMMENT, strip);
    }
    const bool grey = saving.view.is_grey_ramp() || saving.options.has(KIRVO_FILES_GREY);
    const bool fits = metadata.icc.begins("GRAY", 16) == grey && !metadata.icc.begins("CMYK", 16);
    if (!metadata.icc.empty() && !fits) {
        metadata.icc = {};
        saving.known.note(KIRVO_FILES_NOTE_METADATA,
                          Text::format("the profile left out: it is one of other colours"));
    }
    if (!metadata.comment.empty() && format != KIRVO_FILES_JPEG)
        saving.known.note(KIRVO_FILES_NOTE_METADATA,
                          Text::format("the comment left out: only JPEG files get one"));
    Writer writer(saving, metadata);
    switch (format) {
    case KIRVO_FILES_JPEG:
        return writer.jpeg();
    case KIRVO_FILES_PNG:
        return writer.png();
    case KIRVO_FILES_WEBP:
        return writer.webp();
    case KIRVO_FILES_TIFF:
        return writer.tiff();
    case KIRVO_FILES_BMP:
        return writer.none("BMP");
    default:
        return writer.none("Targa");
    }
}

} // namespace kirvo_files
