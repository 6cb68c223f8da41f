// What the segments of a JPEG file say, and whether its entropy-coded data keeps it.
#pragma once

#include "job.hpp"

namespace kirvo_files {

struct JpegComponent {
    uint8_t id = 0, across = 0, down = 0, quantiser = 0;
    uint8_t dc = 0, ac = 0; // tables of the first scan
    // What no picture has more of: the first coefficient, and bits of the others in the order of the
    // stream.
    int32_t largest_dc = 0;
    uint8_t largest_size[64] = {};
};

struct JpegHeaders {
    uint8_t frame = 0; // second byte of its marker
    uint32_t precision = 0, width = 0, height = 0, components = 0;
    uint64_t height_at = 0; // of the frame's own height
    JpegComponent component[4];
    uint32_t most_across = 1, most_down = 1;
    Bytes huffman[2][4]; // DC and AC: 16 counts and the symbols
    uint32_t restart_interval = 0;
    bool has_jfif = false, has_adobe = false, wide_quantisers = false, odd_segments = false;
    uint32_t adobe_transform = 0;
    uint32_t scan_components = 0, spectral_start = 0, spectral_end = 0, approximation = 0;
    uint8_t scanned[4] = {}; // the components of the scan; 255 for one that there is not
    uint64_t scan_at = 0;    // of the entropy-coded data

    bool is_progressive() const { return frame == 0xC2; }

    // A single component has MCUs of one block, whatever its sampling says.
    uint32_t blocks_across(uint32_t i) const { return components == 1 ? 1 : component[i].across; }
    uint32_t blocks_down(uint32_t i) const { return components == 1 ? 1 : component[i].down; }
    uint32_t mcu_width() const { return 8 * (components == 1 ? 1 : most_across); }
    uint32_t mcu_height() const { return 8 * (components == 1 ? 1 : most_down); }
    uint32_t mcus_across() const { return (width + mcu_width() - 1) / mcu_width(); }
    uint32_t mcus_down() const { return (height + mcu_height() - 1) / mcu_height(); }
    // Blocks of a component that hold pixels; a scan of its own codes no others.
    uint32_t own_across(uint32_t i) const {
        return (width * component[i].across + 8 * most_across - 1) / (8 * most_across);
    }
    uint32_t own_down(uint32_t i) const {
        return (height * component[i].down + 8 * most_down - 1) / (8 * most_down);
    }
    // Colours as they are, not as brightness and two differences.
    bool is_rgb() const;
};

// Reads all segments up to the first scan, metadata into what is known.
Status read_jpeg_headers(Bytes bytes, Known& known, JpegHeaders& headers);
// Reads on from the end of a scan's data: tables and what the next scan says. #KIRVO_FILES_ENDS_EARLY
// where no other follows; #KIRVO_FILES_UNSUPPORTED for quantisers that change on the way.
Status read_next_scan(Bytes bytes, uint64_t at, JpegHeaders& headers);

struct JpegSegment {
    uint8_t marker = 0;    // 0: the data ends before it; 0xD9: no more follow
    bool odd = false;      // bytes or markers without a segment stood before it
    bool is_whole = false; // with a length that there is
    Bytes bytes;           // with the marker and the length
    Bytes body() const { return bytes.part(4); }
};
// The segment at a place or behind it; the place moves to its end.
JpegSegment next_jpeg_segment(Bytes bytes, uint64_t& at);

// Why Kirvo's decoder is not the one for this file; null when it is.
const char* beyond_kirvo(const JpegHeaders& headers);

// How far the scans of a file can be decoded.
struct Walk {
    uint32_t whole_rows = 0;  // of pixels
    bool complete = false;    // every MCU is there
    bool out_of_data = false; // what is missing was cut off
    bool left_over = false;   // bytes that belong to nothing follow: something before them is wrong
    bool unknown = false;     // more than is known here would be needed
    uint64_t end = 0;         // where the data ends
};
// What is to be told of a walk that is not complete: as #Job::damaged.
Status not_whole(Job& job, const Walk& walk);
// Of the one scan of a sequential file.
Walk walk_scan(Bytes bytes, const JpegHeaders& headers);

// The quality 1 to 100 whose tables are nearest; 0 without tables.
uint32_t nearest_quality(const JpegTables& tables);
// The tables of a quality, row by row.
void tables_of_quality(uint32_t quality, uint16_t (&luma)[64], uint16_t (&chroma)[64]);
extern const uint8_t zigzag[64]; // row by row places in the order of the stream

} // namespace kirvo_files
