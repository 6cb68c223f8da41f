// EXIF: a TIFF structure of directories. Read with every offset held against the block, changed in
// place so that makers' own offsets stay true.
#pragma once

#include "known.hpp"

namespace kirvo_files {

struct TiffEntry {
    uint32_t tag = 0, type = 0, count = 0;
    Bytes value; // all of it, as far as it is there
    uint64_t value_at = 0;
};

// A TIFF structure: numbers in its byte order, directories, values. A big one has offsets of 64 bits.
class Tiff {
  public:
    explicit Tiff(Bytes bytes)
        : bytes_(bytes), little_(bytes[0] == 'I'), big_(u16(2) == 43 && u16(4) == 8),
          good_((bytes.begins("II") || bytes.begins("MM")) && (u16(2) == 42 || big_)) {}

    bool good() const { return good_; }
    bool big() const { return big_; }
    bool little() const { return little_; }
    Bytes bytes() const { return bytes_; }
    uint16_t u16(uint64_t at) const {
        const uint16_t value = bytes_.be16(at);
        return little_ ? __builtin_bswap16(value) : value;
    }
    uint32_t u32(uint64_t at) const {
        const uint32_t value = bytes_.be32(at);
        return little_ ? __builtin_bswap32(value) : value;
    }
    // An offset or count of the structure's own size.
    uint64_t offset(uint64_t at) const {
        return !big_     ? u32(at)
               : little_ ? u32(at) | uint64_t{u32(at + 4)} << 32
                         : uint64_t{u32(at)} << 32 | u32(at + 4);
    }
    uint64_t first_directory() const { return offset(big_ ? 8 : 4); }
    // Entries that are there.
    uint32_t entries(uint64_t directory) const;
    uint32_t tag(uint64_t directory, uint32_t index) const {
        return u16(entry_at(directory, index));
    }
    TiffEntry entry(uint64_t directory, uint32_t index) const;
    // An entry with this tag; type 0 where there is none.
    TiffEntry find(uint64_t directory, uint32_t tag) const;
    uint64_t next_directory_at(uint64_t directory) const {
        return entry_at(directory, entries(directory));
    }
    // The n-th whole number of an entry of bytes, shorts or longs; otherwise where there is none.
    uint32_t number(const TiffEntry& entry, uint32_t index = 0, uint32_t otherwise = 0) const;
    // The n-th fraction; 0 where there is none.
    double fraction(const TiffEntry& entry, uint32_t index = 0) const;
    uint32_t number_of(uint64_t directory, uint32_t tag, uint32_t otherwise = 0) const {
        return number(find(directory, tag), 0, otherwise);
    }

  private:
    uint64_t entry_at(uint64_t directory, uint32_t index) const {
        return directory + (big_ ? 8 + uint64_t{20} * index : 2 + uint64_t{12} * index);
    }

    Bytes bytes_;
    bool little_, big_, good_;
};

uint32_t type_bytes(uint32_t type);

// Fills what is known from EXIF, or from a TIFF file, whose first directory says the same things.
void read_exif(Known& known, Bytes exif, uint64_t directory = 0);

// For a picture of this size that is now upright, or not: orientation, sizes, no thumbnail.
void update_exif(Buffer& exif, uint32_t width, uint32_t height, bool upright);

// The name of an ICC profile.
Text profile_name(Bytes icc);

// The parts of a TIFF file that EXIF would have: a block of its own. Empty when there are none.
bool exif_of_tiff(Bytes file, uint64_t directory, Buffer& exif);
// A TIFF file of one directory with the entries of an EXIF block added, a profile and XMP; false
// without memory.
bool add_to_tiff(Buffer& file, Bytes exif, Bytes icc, Bytes xmp);

} // namespace kirvo_files
