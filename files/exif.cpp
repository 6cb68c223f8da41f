#include "exif.hpp"

#include <cmath>

namespace kirvo_files {

namespace {
enum Tag : uint32_t {
    image_description = 0x010E,
    maker = 0x010F,
    model = 0x0110,
    orientation = 0x0112,
    x_resolution = 0x011A,
    y_resolution = 0x011B,
    resolution_unit = 0x0128,
    software = 0x0131,
    date_time = 0x0132,
    artist = 0x013B,
    thumbnail_at = 0x0201,
    thumbnail_bytes = 0x0202,
    copyright = 0x8298,
    exposure_time = 0x829A,
    f_number = 0x829D,
    exif_directory = 0x8769,
    gps_directory = 0x8825,
    iso_speed = 0x8827,
    date_taken = 0x9003,
    focal_length = 0x920A,
    pixels_across = 0xA002,
    pixels_down = 0xA003,
    lens_model = 0xA434
};
} // namespace

uint32_t type_bytes(uint32_t type) {
    static const uint8_t sizes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4, 0, 0, 8, 8, 8};
    return type < sizeof sizes ? sizes[type] : 0;
}

uint32_t Tiff::entries(uint64_t directory) const {
    if (directory < 8 || !bytes_.has(directory, entry_at(0, 0)))
        return 0;
    const uint64_t there =
        (bytes_.size() - entry_at(directory, 0)) / (entry_at(0, 1) - entry_at(0, 0));
    const uint64_t count = big_ ? offset(directory) : u16(directory);
    return static_cast<uint32_t>(count < there ? count : there);
}

TiffEntry Tiff::entry(uint64_t directory, uint32_t index) const {
    const uint64_t at = entry_at(directory, index), word = big_ ? 8 : 4;
    const uint64_t count = offset(at + 4);
    TiffEntry entry = {u16(at), u16(at + 2), static_cast<uint32_t>(count), {}, at + 4 + word};
    const uint64_t size = type_bytes(entry.type) * uint64_t{entry.count};
    if (size > word)
        entry.value_at = offset(entry.value_at);
    if (count > UINT32_MAX || !bytes_.has(entry.value_at, size))
        entry.type = entry.count = 0; // it points out of the block
    else
        entry.value = bytes_.part(entry.value_at, size);
    return entry;
}

TiffEntry Tiff::find(uint64_t directory, uint32_t tag) const {
    const uint32_t count = entries(directory);
    if (count == 0)
        return {};
    const Bytes there = bytes_.part(entry_at(directory, 0));
    const size_t step = static_cast<size_t>(entry_at(0, 1) - entry_at(0, 0)), high = little_;
    const uint8_t* at = there.data();
    for (uint32_t i = 0; i < count; ++i, at += step)
        if ((at[high] << 8 | at[1 - high]) == static_cast<int>(tag))
            return entry(directory, i);
    return {};
}

uint32_t Tiff::number(const TiffEntry& entry, uint32_t index, uint32_t otherwise) const {
    const uint64_t at = entry.value_at + uint64_t{type_bytes(entry.type)} * index;
    if (index >= entry.count)
        return otherwise;
    switch (entry.type) {
    case 1:
        return bytes_[at];
    case 3:
        return u16(at);
    case 4:
    case 13:
        return u32(at);
    case 16:
    case 18: {
        const uint64_t wide = offset(at);
        return wide <= UINT32_MAX ? static_cast<uint32_t>(wide) : otherwise;
    }
    default:
        return otherwise;
    }
}

double Tiff::fraction(const TiffEntry& entry, uint32_t index) const {
    if (index >= entry.count)
        return 0;
    if (entry.type != 5 && entry.type != 10)
        return number(entry, index);
    const uint64_t at = entry.value_at + uint64_t{8} * index;
    const uint32_t above = u32(at), below = u32(at + 4);
    if (below == 0)
        return 0;
    return entry.type == 5 ? double{1} * above / below
                           : double{1} * static_cast<int32_t>(above) / static_cast<int32_t>(below);
}

namespace {

Text text_of(const TiffEntry& entry) {
    return entry.type == 2 || entry.type == 7 || entry.type == 1 ? Text::cleaned(entry.value)
                                                                 : Text();
}

void read_words(Known& known, const Tiff& tiff, uint64_t directory) {
    const auto read = [&](int32_t kind, uint32_t tag) {
        Text text = text_of(tiff.find(directory, tag));
        if (!text.empty())
            known.text(kind) = std::move(text);
    };
    read(KIRVO_FILES_TEXT_TITLE, image_description);
    read(KIRVO_FILES_TEXT_SOFTWARE, software);
    read(KIRVO_FILES_TEXT_ARTIST, artist);
    read(KIRVO_FILES_TEXT_COPYRIGHT, copyright);
    const Text made_by = text_of(tiff.find(directory, maker));
    const Text name = text_of(tiff.find(directory, model));
    // Many models begin with their maker's name.
    const bool named =
        std::strncmp(name.c_str(), made_by.c_str(), std::strlen(made_by.c_str())) == 0;
    if (!made_by.empty() || !name.empty())
        known.text(KIRVO_FILES_TEXT_CAMERA) =
            named || made_by.empty() ? Text::format("%s", name.c_str())
            : name.empty()           ? Text::format("%s", made_by.c_str())
                                     : Text::format("%s %s", made_by.c_str(), name.c_str());
}

void read_resolution(Known& known, const Tiff& tiff, uint64_t directory) {
    const double scale = tiff.number_of(directory, resolution_unit, 2) == 3 ? 2.54 : 1;
    const double across = tiff.fraction(tiff.find(directory, x_resolution)) * scale;
    const double down = tiff.fraction(tiff.find(directory, y_resolution)) * scale;
    if (across <= 0 || tiff.number_of(directory, resolution_unit, 2) == 1)
        return;
    known.numbers.dpiAcross = across;
    known.numbers.dpiDown = down > 0 ? down : across;
}

// "2023:05:01 12:30:00" as people write it.
Text date_of(const TiffEntry& entry) {
    const Bytes text = entry.value;
    if (entry.type != 2 || text.size() < 19 || text[4] != ':' || text[7] != ':')
        return text_of(entry);
    const auto piece = [&](uint64_t at) { return reinterpret_cast<const char*>(text.data() + at); };
    const Text made = Text::format("%.4s-%.2s-%.2s %.8s", piece(0), piece(5), piece(8), piece(11));
    return Text::cleaned(
        {reinterpret_cast<const uint8_t*>(made.c_str()), std::strlen(made.c_str())});
}

Text exposure_of(const Tiff& tiff, uint64_t directory) {
    const double seconds = tiff.fraction(tiff.find(directory, exposure_time));
    const double aperture = tiff.fraction(tiff.find(directory, f_number));
    const double length = tiff.fraction(tiff.find(directory, focal_length));
    const uint32_t iso = tiff.number_of(directory, iso_speed);
    Text time, opening, speed, focal;
    if (seconds > 0 && seconds < 0.3)
        time = Text::format(", 1/%.0f s", 1 / seconds);
    else if (seconds > 0)
        time = Text::format(", %g s", seconds);
    if (aperture > 0)
        opening = Text::format(", f/%.3g", aperture);
    if (iso != 0)
        speed = Text::format(", ISO %u", iso);
    if (length > 0)
        focal = Text::format(", %.4g mm", length);
    const Text all =
        Text::format("%s%s%s%s", time.c_str(), opening.c_str(), speed.c_str(), focal.c_str());
    return all.empty() ? Text() : Text::format("%s", all.c_str() + 2);
}

// Degrees of three fractions; false where they are none of an angle.
bool degrees(const Tiff& tiff, const TiffEntry& angle, const TiffEntry& side, char negative,
             double most, double& result) {
    if (angle.type != 5 || angle.count < 3)
        return false;
    result =
        tiff.fraction(angle, 0) + tiff.fraction(angle, 1) / 60 + tiff.fraction(angle, 2) / 3600;
    if (side.value[0] == static_cast<uint8_t>(negative))
        result = -result;
    return std::isfinite(result) && std::fabs(result) <= most;
}

void read_place(Known& known, const Tiff& tiff, uint64_t directory) {
    double north = 0, east = 0;
    if (!degrees(tiff, tiff.find(directory, 2), tiff.find(directory, 1), 'S', 90, north) ||
        !degrees(tiff, tiff.find(directory, 4), tiff.find(directory, 3), 'W', 180, east))
        return;
    known.numbers.latitude = north;
    known.numbers.longitude = east;
    known.set(KIRVO_FILES_HAS_PLACE);
    known.text(KIRVO_FILES_TEXT_PLACE) = Text::format("%.5f, %.5f", north, east);
}

} // namespace

void read_exif(Known& known, Bytes exif, uint64_t directory) {
    const Tiff tiff(exif);
    if (!tiff.good())
        return;
    if (directory == 0)
        directory = tiff.first_directory();
    read_words(known, tiff, directory);
    read_resolution(known, tiff, directory);
    const uint32_t way = tiff.number_of(directory, orientation, 1);
    known.numbers.orientation = way >= 1 && way <= 8 ? way : 1;
    known.text(KIRVO_FILES_TEXT_DATE) = date_of(tiff.find(directory, date_time));
    if (const uint32_t inner = tiff.number_of(directory, exif_directory)) {
        Text taken = date_of(tiff.find(inner, date_taken));
        if (!taken.empty())
            known.text(KIRVO_FILES_TEXT_DATE) = std::move(taken);
        known.text(KIRVO_FILES_TEXT_EXPOSURE) = exposure_of(tiff, inner);
        known.text(KIRVO_FILES_TEXT_LENS) = text_of(tiff.find(inner, lens_model));
    }
    if (const uint32_t gps = tiff.number_of(directory, gps_directory))
        read_place(known, tiff, gps);
}

namespace {

void store(Buffer& block, uint64_t at, uint32_t value, uint32_t bytes, bool little) {
    for (uint32_t i = 0; i < bytes; ++i)
        block[static_cast<size_t>(at + i)] =
            static_cast<uint8_t>(value >> 8 * (little ? i : bytes - 1 - i));
}

void set_number(Buffer& block, uint64_t directory, uint32_t tag, uint32_t value) {
    const Tiff tiff(block.bytes());
    const TiffEntry entry = tiff.find(directory, tag);
    if (entry.count == 1 && (entry.type == 3 || entry.type == 4))
        store(block, entry.value_at, value, type_bytes(entry.type), tiff.little());
}

void drop_thumbnail(Buffer& block, uint64_t directory) {
    const Tiff tiff(block.bytes());
    const uint64_t link = tiff.next_directory_at(directory);
    if (!tiff.bytes().has(link, 4))
        return;
    const uint32_t second = tiff.u32(link);
    const uint64_t at = tiff.number_of(second, thumbnail_at);
    const uint64_t size = tiff.number_of(second, thumbnail_bytes);
    store(block, link, 0, 4, tiff.little());
    if (at <= link + 4 || size == 0 || !tiff.bytes().has(at, size))
        return;
    if (at + size + 4 >= block.size())
        block.resize(at);
    else
        std::memset(&block[static_cast<size_t>(at)], 0, static_cast<size_t>(size));
}

} // namespace

void update_exif(Buffer& exif, uint32_t width, uint32_t height, bool upright) {
    const Tiff tiff(exif.bytes());
    if (!tiff.good() || tiff.big())
        return;
    const uint64_t first = tiff.first_directory();
    if (tiff.entries(first) == 0)
        return;
    if (upright)
        set_number(exif, first, orientation, 1);
    if (const uint32_t inner = tiff.number_of(first, exif_directory)) {
        set_number(exif, inner, pixels_across, width);
        set_number(exif, inner, pixels_down, height);
    }
    drop_thumbnail(exif, first);
}

Text profile_name(Bytes icc) {
    const uint32_t tags = icc.be32(128);
    for (uint32_t i = 0; i < tags && i < 100; ++i) {
        const uint64_t at = 132 + uint64_t{12} * i;
        if (!icc.begins("desc", at))
            continue;
        const Bytes tag = icc.part(icc.be32(at + 4), icc.be32(at + 8));
        if (tag.begins("desc"))
            return Text::cleaned(tag.part(12, tag.be32(8)));
        if (tag.begins("mluc")) { // UTF-16; letters beyond Latin ones become question marks
            const Bytes wide = tag.part(tag.be32(24), tag.be32(20));
            Buffer narrow;
            for (uint64_t k = 0; k + 1 < wide.size() && k < 400; k += 2) {
                const uint32_t unit = wide.be16(k);
                const uint8_t byte = unit < 256 ? static_cast<uint8_t>(unit) : uint8_t{'?'};
                if (!narrow.append(&byte, 1))
                    break;
            }
            return Text::cleaned(narrow.bytes());
        }
    }
    return {};
}

} // namespace kirvo_files
