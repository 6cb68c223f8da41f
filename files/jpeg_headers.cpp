#include "jpeg_headers.hpp"

#include "exif.hpp"

#include <algorithm>
#include <bit>
#include <cstdlib>

namespace kirvo_files {

const uint8_t zigzag[64] = {0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,
                            12, 19, 26, 33, 40, 48, 41, 34, 27, 20, 13, 6,  7,  14, 21, 28,
                            35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23, 30, 37, 44, 51,
                            58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63};

// The tables of T.81 annex K, in the order of the rows.
static constexpr uint8_t luma_k1[64] = {
    16, 11, 10, 16, 24,  40,  51,  61,  12, 12, 14, 19, 26,  58,  60,  55,
    14, 13, 16, 24, 40,  57,  69,  56,  14, 17, 22, 29, 51,  87,  80,  62,
    18, 22, 37, 56, 68,  109, 103, 77,  24, 35, 55, 64, 81,  104, 113, 92,
    49, 64, 78, 87, 103, 121, 120, 101, 72, 92, 95, 98, 112, 100, 103, 99};
static const uint8_t chroma_k2[64] = {
    17, 18, 24, 47, 99, 99, 99, 99, 18, 21, 26, 66, 99, 99, 99, 99, 24, 26, 56, 99, 99, 99,
    99, 99, 47, 66, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99,
    99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99};

// A number of a quality's table, from that of the standard.
static constexpr uint8_t scaled(uint32_t standard, uint32_t quality) {
    const uint32_t scale = quality < 50 ? 5000 / quality : 200 - 2 * quality;
    const uint32_t value = (standard * scale + 50) / 100;
    return static_cast<uint8_t>(value < 1 ? 1 : value > 255 ? 255 : value);
}

void tables_of_quality(uint32_t quality, uint16_t (&luma)[64], uint16_t (&chroma)[64]) {
    for (uint32_t i = 0; i < 64; ++i) {
        luma[i] = scaled(luma_k1[i], quality);
        chroma[i] = scaled(chroma_k2[i], quality);
    }
}

// Made once: every file's is held against all of them.
struct LumaTables {
    uint8_t of_quality[101][64];
    constexpr LumaTables() : of_quality() {
        for (uint32_t quality = 1; quality <= 100; ++quality)
            for (uint32_t i = 0; i < 64; ++i)
                of_quality[quality][i] = scaled(luma_k1[i], quality);
    }
};
static constexpr LumaTables luma_tables;

uint32_t nearest_quality(const JpegTables& tables) {
    const uint32_t number = tables.table_of[0] & 3;
    if (tables.components == 0 || !tables.present[number])
        return 0;
    uint32_t best = 0, least = UINT32_MAX;
    for (uint32_t quality = 1; quality <= 100; ++quality) {
        uint32_t distance = 0;
        for (uint32_t i = 0; i < 64; ++i)
            distance += static_cast<uint32_t>(
                std::abs(tables.tables[number][i] - luma_tables.of_quality[quality][i]));
        if (distance < least) {
            least = distance;
            best = quality;
        }
    }
    return best;
}

namespace {

class Parser {
  public:
    Parser(Bytes bytes, Known& known, JpegHeaders& headers)
        : bytes_(bytes), known_(known), headers_(headers) {}

    Status parse() {
        const Status status = to_scan(2);
        if (status != KIRVO_FILES_OK)
            return status;
        join_profile();
        finish();
        return KIRVO_FILES_OK;
    }

    // Metadata and quantisers have been read.
    Status parse_further(uint64_t at) {
        further_ = true;
        headers_.scan_at = 0;
        return to_scan(at);
    }

  private:
    Status to_scan(uint64_t at) {
        Status status = KIRVO_FILES_OK;
        while (status == KIRVO_FILES_OK && headers_.scan_at == 0)
            status = next_segment(at);
        return status;
    }

    Status next_segment(uint64_t& at) {
        const JpegSegment found = next_jpeg_segment(bytes_, at);
        headers_.odd_segments |= found.odd;
        if (found.marker == 0 || found.marker == 0xD9)
            return early();
        if (!found.is_whole)
            return found.bytes.empty() ? early()
                                       : known_.fail(KIRVO_FILES_DAMAGED,
                                                     Text::format("a segment without a length"));
        return segment(found.marker, found.body(), at);
    }

    // All of 0xC0 to 0xCF but the tables and what is reserved.
    static bool is_frame(uint8_t marker) {
        return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 &&
               marker != 0xCC;
    }

    Status early() {
        known_.numbers.wholeRows = 0;
        return known_.fail(KIRVO_FILES_ENDS_EARLY, Text::format("ends early: within its headers"));
    }

    Status segment(uint8_t marker, Bytes body, uint64_t after) {
        if (further_ && (marker == 0xDB || is_frame(marker)))
            return KIRVO_FILES_UNSUPPORTED;
        if (further_ && (marker >= 0xE0 || marker == 0xDC))
            return KIRVO_FILES_OK;
        if (marker >= 0xE0 && marker <= 0xEF) {
            headers_.odd_segments |= body.empty();
            application(marker, body);
            return KIRVO_FILES_OK;
        }
        switch (marker) {
        case 0xC4:
            return huffman(body);
        case 0xDA:
            return scan(body, after);
        case 0xDB:
            return quantisers(body);
        case 0xDD:
            headers_.restart_interval = body.be16(0);
            return KIRVO_FILES_OK;
        case 0xFE:
            if (known_.comment.empty()) {
                known_.comment.assign(body);
                known_.text(KIRVO_FILES_TEXT_COMMENT) = Text::cleaned(body);
            }
            return KIRVO_FILES_OK;
        default:
            return is_frame(marker) ? frame(marker, body) : KIRVO_FILES_OK;
        }
    }

    void application(uint8_t marker, Bytes body) {
        if (marker == 0xE0 && body.begins("JFIF\0")) {
            headers_.has_jfif = true;
            density(body);
        } else if (marker == 0xE1 && body.begins("Exif\0") && known_.exif.empty()) {
            known_.exif.assign(body.part(6));
        } else if (marker == 0xE1 && body.begins("http://ns.adobe.com/xap/1.0/\0") &&
                   known_.xmp.empty()) {
            known_.xmp.assign(body.part(29));
        } else if (marker == 0xE1 && body.begins("http://ns.adobe.com/xmp/extension/\0")) {
            extended_xmp_ = true;
        } else if (marker == 0xE2 && body.begins("ICC_PROFILE\0") && body[12] != 0) {
            profile_[body[12] - 1] = body.part(14);
            profile_parts_ = body[13];
        } else if (marker == 0xEE && body.begins("Adobe") && body.size() >= 12) {
            headers_.has_adobe = true;
            headers_.adobe_transform = body[11];
        }
    }

    void density(Bytes body) {
        const double scale = body[7] == 1 ? 1 : body[7] == 2 ? 2.54 : 0;
        known_.numbers.dpiAcross = body.be16(8) * scale;
        known_.numbers.dpiDown = body.be16(10) * scale;
    }

    void join_profile() {
        for (uint32_t i = 0; i < profile_parts_; ++i)
            if (profile_[i].empty() || !known_.icc.append(profile_[i])) {
                known_.icc.clear();
                return;
            }
    }

    Status quantisers(Bytes body) {
        uint64_t at = 0;
        while (body.has(at, 1)) {
            const uint32_t wide = body[at] >> 4, number = body[at] & 3;
            if (wide > 1 || (body[at] & 15) > 3 || !body.has(at + 1, wide != 0 ? 128 : 64))
                return known_.fail(KIRVO_FILES_DAMAGED, Text::format("a bad quantisation table"));
            for (uint32_t i = 0; i < 64; ++i)
                known_.jpeg.tables[number][zigzag[i]] =
                    wide != 0 ? body.be16(at + 1 + 2 * i) : body[at + 1 + i];
            known_.jpeg.present[number] = true;
            headers_.wide_quantisers |= wide != 0;
            at += wide != 0 ? 129 : 65;
        }
        return KIRVO_FILES_OK;
    }

    Status huffman(Bytes body) {
        uint64_t at = 0;
        while (body.has(at, 17)) {
            uint64_t symbols = 0;
            for (uint32_t i = 1; i <= 16; ++i)
                symbols += body[at + i];
            const uint32_t kind = body[at] >> 4, number = body[at] & 15;
            if (kind > 1 || number > 3 || symbols > 256 || !body.has(at + 17, symbols))
                return known_.fail(KIRVO_FILES_DAMAGED, Text::format("a bad Huffman table"));
            headers_.huffman[kind][number] = body.part(at + 1, 16 + symbols);
            at += 17 + symbols;
        }
        return KIRVO_FILES_OK;
    }

    Status frame(uint8_t marker, Bytes body) {
        if (headers_.frame != 0)
            return known_.fail(KIRVO_FILES_DAMAGED, Text::format("it has two frames"));
        headers_.frame = marker;
        headers_.precision = body[0];
        headers_.height = body.be16(1);
        headers_.height_at = static_cast<uint64_t>(body.data() - bytes_.data()) + 1;
        headers_.width = body.be16(3);
        headers_.components = body[5];
        if (headers_.components == 0 || headers_.components > 4 ||
            !body.has(6, 3 * headers_.components))
            return known_.fail(
                KIRVO_FILES_UNSUPPORTED,
                Text::format("a JPEG of %u components is not read", headers_.components));
        for (uint32_t i = 0; i < headers_.components; ++i) {
            JpegComponent& component = headers_.component[i];
            component.id = body[6 + 3 * i];
            component.across = body[7 + 3 * i] >> 4;
            component.down = body[7 + 3 * i] & 15;
            component.quantiser = body[8 + 3 * i] & 3;
            if (component.across < 1 || component.across > 4 || component.down < 1 ||
                component.down > 4)
                return known_.fail(KIRVO_FILES_DAMAGED, Text::format("a sampling that is none"));
            if (component.across > headers_.most_across)
                headers_.most_across = component.across;
            if (component.down > headers_.most_down)
                headers_.most_down = component.down;
        }
        return KIRVO_FILES_OK;
    }

    Status scan(Bytes body, uint64_t after) {
        if (headers_.frame == 0)
            return known_.fail(KIRVO_FILES_DAMAGED, Text::format("a scan before the frame"));
        headers_.scan_components = body[0];
        std::memset(headers_.scanned, 255, sizeof headers_.scanned);
        for (uint32_t i = 0; i < headers_.scan_components && i < 4; ++i)
            for (uint32_t k = 0; k < headers_.components; ++k)
                if (headers_.component[k].id == body[1 + 2 * i]) {
                    headers_.scanned[i] = static_cast<uint8_t>(k);
                    headers_.component[k].dc = body[2 + 2 * i] >> 4 & 3;
                    headers_.component[k].ac = body[2 + 2 * i] & 3;
                }
        const uint64_t rest = 1 + uint64_t{2} * headers_.scan_components;
        headers_.spectral_start = body[rest];
        headers_.spectral_end = body[rest + 1];
        headers_.approximation = body[rest + 2];
        headers_.scan_at = after;
        return KIRVO_FILES_OK;
    }

    void finish() {
        Known& known = known_;
        if (headers_.height == 0)
            headers_.height = height_behind_scan();
        read_exif_after_density();
        known.text(KIRVO_FILES_TEXT_PROFILE) = profile_name(known.icc.bytes());
        if (extended_xmp_)
            known.note(KIRVO_FILES_NOTE_METADATA, Text::format("the extended part of XMP is left"
                                                               " out"));
        JpegTables& tables = known.jpeg;
        tables.components = headers_.components;
        for (uint32_t i = 0; i < headers_.components; ++i) {
            tables.across[i] = headers_.component[i].across;
            tables.down[i] = headers_.component[i].down;
            tables.table_of[i] = headers_.component[i].quantiser;
            limit_coefficients(headers_.component[i]);
        }
        describe();
    }

    // ITU-T T.81 B.2.5: the first marker behind the data of the first scan may tell it.
    uint32_t height_behind_scan() const {
        uint64_t at = headers_.scan_at;
        const auto is_data = [&] {
            const uint8_t next = bytes_[at + 1];
            return bytes_[at] != 0xFF || next == 0 || (next >= 0xD0 && next <= 0xD7) ||
                   next == 0xFF;
        };
        while (bytes_.has(at, 2) && is_data())
            ++at;
        return bytes_[at + 1] == 0xDC && bytes_.has(at, 6) ? bytes_.be16(at + 4) : 0;
    }

    // The transform of a picture of 8 bits stays within 1024; encoders that work against ringing go
    // up to 32 levels beyond black and white.
    void limit_coefficients(JpegComponent& component) const {
        const uint32_t depth = headers_.precision == 12 ? 4 : 0;
        const uint32_t most = 1280u << depth;
        const uint16_t* steps = known_.jpeg.tables[component.quantiser];
        component.largest_dc = static_cast<int32_t>(steps[0] != 0 ? most / steps[0] + 1 : 32767);
        for (uint32_t k = 0; k < 64; ++k) {
            const uint32_t step = steps[zigzag[k]];
            const auto size =
                static_cast<uint32_t>(step != 0 ? std::bit_width(most / step + 1) : 32);
            component.largest_size[k] = static_cast<uint8_t>(std::min(size, 10 + depth));
        }
    }

    // EXIF counts where both tell a resolution, unless it tells none.
    void read_exif_after_density() {
        if (!known_.exif.empty())
            read_exif(known_, known_.exif.bytes());
    }

    const char* coding() const {
        switch (headers_.frame) {
        case 0xC0:
            return "baseline";
        case 0xC1:
            return "extended sequential";
        case 0xC2:
            return "progressive";
        case 0xC9:
            return "arithmetic";
        case 0xCA:
            return "progressive arithmetic";
        case 0xC3:
        case 0xCB:
            return "lossless";
        default:
            return "hierarchical";
        }
    }

    void describe() {
        KirvoFilesDescription& numbers = known_.numbers;
        numbers.channels = headers_.components;
        numbers.fileBits = headers_.precision * headers_.components;
        numbers.quality = nearest_quality(known_.jpeg);
        const bool sampled = headers_.components >= 3;
        const JpegComponent& luma = headers_.component[0];
        const JpegComponent& chroma = headers_.component[1];
        numbers.sampleAcross = sampled ? luma.across / chroma.across : 1;
        numbers.sampleDown = sampled ? luma.down / chroma.down : 1;
        static const char* const models[] = {"", "grey", "two components", "YCbCr", "CMYK"};
        const char* model =
            headers_.is_rgb() ? "RGB"
            : headers_.components == 4 && headers_.has_adobe && headers_.adobe_transform == 2
                ? "YCCK"
                : models[headers_.components];
        Text sampling;
        if (sampled)
            sampling =
                numbers.sampleAcross == 1 && numbers.sampleDown == 1   ? Text::format(" 4:4:4")
                : numbers.sampleAcross == 2 && numbers.sampleDown == 1 ? Text::format(" 4:2:2")
                : numbers.sampleAcross == 2 && numbers.sampleDown == 2 ? Text::format(" 4:2:0")
                : numbers.sampleAcross == 1 && numbers.sampleDown == 2 ? Text::format(" 4:4:0")
                : numbers.sampleAcross == 4 && numbers.sampleDown == 1
                    ? Text::format(" 4:1:1")
                    : Text::format(" %u x %u", numbers.sampleAcross, numbers.sampleDown);
        known_.text(KIRVO_FILES_TEXT_VARIANT) =
            headers_.precision == 8 ? Text::format("%s, %s%s", coding(), model, sampling.c_str())
                                    : Text::format("%s, %s%s, %u bits a channel", coding(), model,
                                                   sampling.c_str(), headers_.precision);
        known_.set(KIRVO_FILES_PROGRESSIVE, headers_.frame == 0xC2 || headers_.frame == 0xCA);
        known_.set(KIRVO_FILES_ARITHMETIC, headers_.frame >= 0xC9);
        known_.set(KIRVO_FILES_LOSSLESS, headers_.frame == 0xC3 || headers_.frame == 0xCB);
        known_.set(KIRVO_FILES_CMYK, headers_.components == 4);
        known_.set(KIRVO_FILES_TOP_DOWN);
    }

    Bytes bytes_;
    Known& known_;
    JpegHeaders& headers_;
    Bytes profile_[255];
    uint32_t profile_parts_ = 0;
    bool extended_xmp_ = false, further_ = false;
};

// Samplings of luma with chroma of 1 x 1 or less, as kirvo.h lists them.
bool usual_sampling(const JpegHeaders& headers) {
    const JpegComponent* part = headers.component;
    const auto is = [](const JpegComponent& component, uint32_t across, uint32_t down) {
        return component.across == across && component.down == down;
    };
    if (headers.components == 1)
        return is(part[0], 1, 1);
    if (part[1].across != part[2].across || part[1].down != part[2].down)
        return false;
    if (is(part[0], 2, 2))
        return is(part[1], 1, 1) || is(part[1], 2, 1) || is(part[1], 1, 2);
    return is(part[1], 1, 1) && (is(part[0], 1, 1) || is(part[0], 2, 1) || is(part[0], 1, 2));
}

} // namespace

bool JpegHeaders::is_rgb() const {
    return components == 3 &&
           ((has_adobe && adobe_transform == 0) ||
            (!has_jfif && !has_adobe && component[0].id == 'R' && component[1].id == 'G'));
}

Status read_jpeg_headers(Bytes bytes, Known& known, JpegHeaders& headers) {
    return Parser(bytes, known, headers).parse();
}

Status read_next_scan(Bytes bytes, uint64_t at, JpegHeaders& headers) {
    Known unheard;
    return Parser(bytes, unheard, headers).parse_further(at);
}

JpegSegment next_jpeg_segment(Bytes bytes, uint64_t& at) {
    JpegSegment found;
    while (true) {
        const uint64_t start = at;
        while (bytes.has(at, 1) && bytes[at] != 0xFF)
            ++at;
        while (bytes[at] == 0xFF && bytes[at + 1] == 0xFF)
            ++at;
        found.odd |= at != start;
        const uint8_t marker = bytes[at + 1];
        if (!bytes.has(at, 2) || marker == 0xD9) {
            found.marker = bytes.has(at, 2) ? marker : uint8_t{0};
            return found;
        }
        if (marker != 0 && marker != 1 && (marker < 0xD0 || marker > 0xD8))
            break;
        at += 2; // no segment follows
        found.odd = true;
    }
    found.marker = bytes[at + 1];
    const uint64_t length = bytes.be16(at + 2);
    if (bytes.has(at, 4) && bytes.has(at + 2, length)) {
        found.bytes = bytes.part(at, 2 + length);
        found.is_whole = length >= 2;
    }
    at += 2 + length;
    return found;
}

const char* beyond_kirvo(const JpegHeaders& headers) {
    switch (headers.frame) {
    case 0xC0:
        break;
    case 0xC1:
        return "extended sequential";
    case 0xC2:
        return "progressive";
    case 0xC9:
    case 0xCA:
        return "arithmetic coding";
    default:
        return "an unusual frame";
    }
    if (headers.precision != 8)
        return "not 8 bits a channel";
    if (headers.components != 1 && headers.components != 3)
        return headers.components == 4 ? "four colours" : "two components";
    for (uint32_t i = 0; i < headers.components; ++i)
        if (headers.component[i].id != i + 1)
            return "unusual component numbers";
    if (headers.components == 3 && headers.has_adobe && headers.adobe_transform == 0)
        return "RGB";
    if (!usual_sampling(headers))
        return "unusual sampling";
    if (headers.scan_components != headers.components)
        return "several scans";
    if (headers.spectral_start != 0 || headers.spectral_end != 63 || headers.approximation != 0)
        return "an unusual scan";
    for (uint32_t i = 0; i < headers.components; ++i)
        if (headers.huffman[0][headers.component[i].dc].empty() ||
            headers.huffman[1][headers.component[i].ac].empty())
            return "no Huffman tables of its own";
    if (headers.wide_quantisers)
        return "quantisation tables of 16 bits";
    if (headers.odd_segments)
        return "unusual segments";
    return nullptr;
}

} // namespace kirvo_files
