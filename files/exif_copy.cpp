// EXIF directories written anew: taken out of a TIFF file, or added to one.
#include "exif.hpp"

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

// A directory that is being collected, its values already written.
class Directory {
  public:
    Directory(Buffer& out, bool little) : out_(out), little_(little) {}

    // Entries of another structure with their values.
    bool add(const Tiff& from, uint64_t directory, bool (*wanted)(uint32_t)) {
        const uint32_t count = from.entries(directory);
        for (uint32_t i = 0; i < count; ++i) {
            const TiffEntry entry = from.entry(directory, i);
            const bool known = entry.type <= 12 && type_bytes(entry.type) != 0;
            if (entry.count == 0 || !known || !wanted(entry.tag) || has(entry.tag))
                continue;
            if (!add_value(from, entry))
                return false;
        }
        return true;
    }

    // Entries of this very file, whose values stay where they are.
    bool add_own(const Tiff& own, uint64_t directory) {
        const uint32_t count = own.entries(directory);
        for (uint32_t i = 0; i < count; ++i)
            if (!list_.append(own.bytes().part(directory + 2 + uint64_t{12} * i, 12)))
                return false;
        return true;
    }

    bool add_bytes(uint32_t tag, uint32_t type, Bytes bytes) {
        const auto count = static_cast<uint32_t>(bytes.size());
        return bytes.empty() ||
               add_value(Tiff(out_.bytes()), TiffEntry{tag, type, count, bytes, 0});
    }

    bool add_pointer(uint32_t tag, uint64_t to) {
        Buffer entry;
        return put(entry, tag, 2) && put(entry, 4, 2) && put(entry, 1, 4) &&
               put(entry, static_cast<uint32_t>(to), 4) && list_.append(entry.bytes());
    }

    bool empty() const { return list_.empty(); }

    // Writes it at the end; its place is the answer, 0 without memory.
    uint64_t finish() {
        sort();
        if (out_.size() % 2 != 0 && !out_.append("", 1))
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

    uint32_t tag_of(size_t index) const {
        const Bytes list = list_.bytes();
        return little_ ? list.le16(12 * index) : list.be16(12 * index);
    }

    bool has(uint32_t tag) const {
        for (size_t i = 0; i < list_.size() / 12; ++i)
            if (tag_of(i) == tag)
                return true;
        return false;
    }

    bool add_value(const Tiff& from, const TiffEntry& given) {
        Buffer entry, value;
        if (!value.append(given.value))
            return false;
        if (type_bytes(given.type) > 1 && from.little() != little_)
            swap(value, given.type);
        if (!put(entry, given.tag, 2) || !put(entry, given.type, 2) || !put(entry, given.count, 4))
            return false;
        if (value.size() > 4) {
            if (out_.size() % 2 != 0 && !out_.append("", 1))
                return false;
            if (!put(entry, static_cast<uint32_t>(out_.size()), 4) || !out_.append(value.bytes()))
                return false;
        } else if (!value.resize(4) || !entry.append(value.bytes())) {
            return false;
        }
        return list_.append(entry.bytes());
    }

    static void swap(Buffer& value, uint32_t type) {
        const size_t bytes = type_bytes(type);
        const size_t unit = type == 5 || type == 10 ? 4 : bytes; // fractions are two numbers
        for (size_t at = 0; unit > 1 && at + unit <= value.size(); at += unit)
            for (size_t i = 0; i < unit / 2; ++i)
                std::swap(value[at + i], value[at + unit - 1 - i]);
    }

    void sort() {
        for (size_t i = 1; i < list_.size() / 12; ++i)
            for (size_t k = i; k > 0 && tag_of(k) < tag_of(k - 1); --k)
                for (size_t b = 0; b < 12; ++b)
                    std::swap(list_[12 * k + b], list_[12 * (k - 1) + b]);
    }

    Buffer& out_;
    Buffer list_;
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
    for (uint32_t i = 0; i < 4; ++i)
        exif[4 + (from.little() ? i : 3 - i)] = static_cast<uint8_t>(at >> 8 * i);
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
    for (uint32_t i = 0; i < 4 && place != 0; ++i)
        file[4 + (little ? i : 3 - i)] = static_cast<uint8_t>(place >> 8 * i);
    return place != 0;
}

} // namespace kirvo_files
