// EXIF directories written anew: taken out of a TIFF file, or added to one.
#include "exif.hpp"

#include <algorithm>
#include <bitset>

namespace kirvo_files {
namespace {

constexpr uint32_t exif_pointer = 0x8769, gps_pointer = 0x8825, maker_note = 0x927C,
                   interoperability = 0xA005;

// Entries of a first directory that say something of the picture, not of the file.
bool is_about_picture(uint32_t tag) {
    static const uint16_t tags[] = {0x010E, 0x010F, 0x0110, 0x0131, 0x0132, 0x013B, 0x8298};
    for (uint16_t each : tags)
        if (each == tag)
            return true;
    return false;
}

bool is_all(uint32_t tag) {
    return tag != maker_note && tag != interoperability; // both lead to places of their own
}

bool is_orientation(uint32_t tag) { return tag == 0x0112; }

void put_offset(uint8_t* to, uint64_t offset, bool little) {
    for (uint32_t i = 0; i < 4; ++i)
        to[little ? i : 3 - i] = static_cast<uint8_t>(offset >> 8 * i);
}

// A directory that is being collected, its values already written.
class Directory {
  public:
    Directory(Buffer& out, bool little) : out_(out), little_(little) {}

    // Entries of another structure with their values, which in a sound one do not overlap: all of
    // them together are no longer than it.
    bool add(const Tiff& from, uint64_t directory, bool (*wanted)(uint32_t)) {
        const uint32_t count = from.entries(directory);
        size_t left = from.bytes().size();
        for (uint32_t i = 0; i < count; ++i) {
            const uint32_t tag = from.tag(directory, i);
            if (!wanted(tag) || has_[tag])
                continue;
            const TiffEntry entry = from.entry(directory, i);
            const bool known = entry.type <= 12 && type_bytes(entry.type) != 0;
            if (entry.count == 0 || !known || entry.value.size() > left)
                continue;
            left -= entry.value.size();
            if (!add_value(from, entry))
                return false;
        }
        return true;
    }

    // Entries of this very file, whose values stay where they are.
    bool add_own(const Tiff& own, uint64_t directory) {
        const uint32_t count = own.entries(directory);
        for (uint32_t i = 0; i < count; ++i) {
            const uint64_t at = directory + 2 + uint64_t{12} * i;
            has_[own.u16(at)] = true;
            if (!list_.append(own.bytes().part(at, 12)))
                return false;
        }
        return true;
    }

    bool add_bytes(uint32_t tag, uint32_t type, Bytes bytes) {
        const auto count = static_cast<uint32_t>(bytes.size());
        return bytes.empty() ||
               add_value(Tiff(out_.bytes()), TiffEntry{tag, type, count, bytes, 0});
    }

    bool add_pointer(uint32_t tag, uint64_t to) {
        uint8_t value[4];
        put_offset(value, to, little_);
        return list(tag, 4, 1, value);
    }

    bool empty() const { return list_.empty(); }

    // Writes it at the end; its place is the answer, 0 without memory.
    uint64_t finish() {
        sort();
        if (!make_even())
            return 0;
        const uint64_t at = out_.size();
        return put(out_, static_cast<uint32_t>(list_.size() / 12), 2) &&
                       out_.append(list_.bytes()) && put(out_, 0, 4)
                   ? at
                   : 0;
    }

  private:
    bool put(Buffer& to, uint32_t value, uint32_t bytes) const {
        if (bytes == 2)
            return little_ ? to.append_le16(value) : to.append_be16(value);
        return little_ ? to.append_le32(value) : to.append_be32(value);
    }

    struct Entry {
        uint8_t bytes[12];
    };

    uint32_t tag_of(const Entry& entry) const {
        const Bytes bytes(entry.bytes, sizeof entry.bytes);
        return little_ ? bytes.le16(0) : bytes.be16(0);
    }

    // An entry with its value or the way to it.
    bool list(uint32_t tag, uint32_t type, uint32_t count, const uint8_t (&value)[4]) {
        has_[tag] = true;
        return put(list_, tag, 2) && put(list_, type, 2) && put(list_, count, 4) &&
               list_.append(value, sizeof value);
    }

    bool make_even() { return out_.size() % 2 == 0 || out_.append("", 1); }

    bool add_value(const Tiff& from, const TiffEntry& given) {
        const size_t size = given.value.size();
        uint8_t inside[4] = {};
        uint8_t* value = inside;
        if (size > sizeof inside) {
            if (!make_even())
                return false;
            put_offset(inside, out_.size(), little_);
            if (!out_.append(given.value))
                return false;
            value = out_.data() + out_.size() - size;
        } else if (size != 0) {
            std::memcpy(inside, given.value.data(), size);
        }
        if (from.little() != little_)
            swap(value, size, given.type);
        return list(given.tag, given.type, given.count, inside);
    }

    static void swap(uint8_t* value, size_t size, uint32_t type) {
        const size_t bytes = type_bytes(type);
        const size_t unit = type == 5 || type == 10 ? 4 : bytes; // fractions are two numbers
        for (size_t at = 0; unit > 1 && at + unit <= size; at += unit)
            for (size_t i = 0; i < unit / 2; ++i)
                std::swap(value[at + i], value[at + unit - 1 - i]);
    }

    void sort() {
        auto* first = reinterpret_cast<Entry*>(list_.data());
        std::sort(first, first + list_.size() / sizeof(Entry),
                  [this](const Entry& a, const Entry& b) { return tag_of(a) < tag_of(b); });
    }

    Buffer& out_;
    Buffer list_;
    std::bitset<65536> has_; // tags; there may be as many
    bool little_;
};

bool add_inner(Buffer& out, Directory& first, const Tiff& from, uint64_t directory, uint32_t tag,
               bool little) {
    const uint32_t at = from.number_of(directory, tag);
    if (at == 0 || from.entries(at) == 0)
        return true;
    Directory inner(out, little);
    if (!inner.add(from, at, is_all))
        return false;
    const uint64_t place = inner.finish();
    return place != 0 && first.add_pointer(tag, place);
}

} // namespace

bool exif_of_tiff(Bytes file, uint64_t directory, Buffer& exif) {
    const Tiff from(file);
    Directory first(exif, from.little());
    exif.clear();
    if (!exif.append(from.little() ? "II*\0\0\0\0" : "MM\0*\0\0\0", 8) ||
        !first.add(from, directory, is_about_picture) ||
        (from.number_of(directory, 0x0112, 1) != 1 &&
         !first.add(from, directory, is_orientation)) ||
        !add_inner(exif, first, from, directory, exif_pointer, from.little()) ||
        !add_inner(exif, first, from, directory, gps_pointer, from.little()))
        return false;
    const uint64_t at = first.empty() ? 0 : first.finish();
    put_offset(&exif[4], at, from.little());
    if (at == 0)
        exif.clear();
    return true;
}

bool add_to_tiff(Buffer& file, Bytes exif, Bytes icc, Bytes xmp) {
    const bool little = Tiff(file.bytes()).little();
    Directory first(file, little);
    {
        const Tiff own(file.bytes());
        if (!first.add_own(own, own.first_directory()))
            return false;
    }
    const Tiff from(exif);
    if (from.good()) {
        const uint64_t at = from.first_directory();
        if (!first.add(from, at, is_about_picture) ||
            !add_inner(file, first, from, at, exif_pointer, little) ||
            !add_inner(file, first, from, at, gps_pointer, little))
            return false;
    }
    if (!first.add_bytes(0x02BC, 1, xmp) || !first.add_bytes(0x8773, 7, icc))
        return false;
    const uint64_t place = first.finish();
    if (place != 0)
        put_offset(&file[4], place, little);
    return place != 0;
}

} // namespace kirvo_files
