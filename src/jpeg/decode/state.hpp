// Everything that the decoder keeps between calls. The tables, the comments and the record of the
// unexpected marker outlive a decode.
#pragma once

#include "image/progress.hpp"
#include "image/status.hpp"
#include "jpeg/decode/block.hpp"
#include "jpeg/decode/input.hpp"
#include "jpeg/decode/lookup.hpp"
#include "jpeg/tables.hpp"

namespace kirvo {

// How a step that may run out of input ended.
struct Step {
    enum Kind { done, need_more, failed } kind;
    Status status; // of a failure

    static constexpr Step finished() { return {done, Status::ok}; }
    static constexpr Step starved() { return {need_more, Status::ok}; }
    static constexpr Step failure(Status status) { return {failed, status}; }
};

// How the components share an MCU. Blocks stand in the order luma, Cb, Cr; several of one component
// from left to right and from top to bottom.
struct Layout {
    uint8_t luma_sampling, chroma_sampling; // H in the high nibble, V in the low one
    int32_t mcu_width, mcu_height;
    int32_t luma_blocks, chroma_blocks; // of each chroma component

    int32_t blocks() const { return luma_blocks + 2 * chroma_blocks; }
    int32_t luma_across() const { return mcu_width / 8; }
    int32_t chroma_across() const { return chroma_sampling >> 4; }
};

// Which of component 1, Cb, Cr block i of an MCU belongs to: 0, 1, 2.
inline int32_t component_of(const Layout& layout, int32_t i) {
    return i < layout.luma_blocks ? 0 : 1 + (i - layout.luma_blocks) / layout.chroma_blocks;
}

inline constexpr Layout grey_layout = {0x11, 0x00, 8, 8, 1, 0};
inline constexpr Layout colour_layouts[] = {
    {0x11, 0x11, 8, 8, 1, 1},   {0x21, 0x11, 16, 8, 2, 1},  {0x12, 0x11, 8, 16, 2, 1},
    {0x22, 0x11, 16, 16, 4, 1}, {0x22, 0x21, 16, 16, 4, 2}, {0x22, 0x12, 16, 16, 4, 2},
};
inline constexpr const Layout* first_layout = &colour_layouts[3];
constexpr int32_t most_blocks = 8;

enum class FrameMode { none, baseline, progressive };

struct Frame {
    int32_t width, height;
    int32_t components; // 1 or 3
    FrameMode mode;
    const Layout* layout;
};

struct Scan {
    struct Component {
        uint8_t id, dc_table, ac_table;
    };
    int32_t count;
    Component components[255];
    int32_t spectral_start, spectral_end = 63; // Ss, Se
    int32_t refined_from, shift;               // Ah, Al
    bool has_component_1;
};

struct QuantisationTables {
    bool defined[4]; // by a DQT of this stream
    bool available;  // widened has been filled, ever
    // As the slots stood when the first scan began, in zigzag order; then zeros.
    uint16_t widened[4][padded_block];
};

constexpr int32_t comment_slots = 5;

struct Comments {
    bool enabled;
    int32_t count;
    HGLOBAL stored[comment_slots]; // null: counted only

    void discard();
};

// Where the bits come from: the byte being read, and what a restart marker resets.
struct EntropyState {
    uint8_t current;
    int32_t bit_position; // of the next bit in it, 0 to 8; 8: used up
    bool pending_ff;      // the input ended just after a 0xFF
    bool first_block;     // a restart marker starts the current block over
    int16_t predictor[3]; // component 1, Cb, Cr
    int32_t eob_run;
};

// The image that is being decoded, and how far it is. The frame is the one that it began with.
struct Picture {
    HGLOBAL image;
    HGLOBAL coefficients; // progressive: all blocks of all MCUs
    Frame frame;
    int32_t mcus_across, mcus;
    int32_t next_mcu;         // of the image, or of the scan
    int32_t rendered_mcus;    // baseline: the rest up to next_mcu waits to be
    int32_t next_plane_block; // progressive: in a scan of one component
    int64_t coverage;         // progressive: luma positions that finished scans have covered
    bool done;                // the image is complete and the caller's

    void discard();
    void discard_coefficients();
};

// MCUs of one MCU row that have been read are rendered together: as many blocks at most.
constexpr int32_t most_batch_blocks = 32;

// The bulk of what the decoder keeps. It begins as zeros.
struct DecodeBuffers {
    Lookups lookups;
    // What waits to be rendered, and the zigzag position after which each block is 0; from one
    // piece of the stream to the next, so that small pieces cost no more than large ones.
    Block batch[most_batch_blocks];
    uint8_t batch_last[most_batch_blocks];
};

enum class HeaderState { seeking_start, reading_segments, scan_header_read, decoding };

struct DecodeState {
    QuantisationSlots& slots; // which the encoder uses too
    DecodeBuffers& buffers;
    DecodeInput input = {};
    HeaderState header = {};
    bool start_prefix = false;  // the byte before was 0xFF: while seeking the start of image,
    bool marker_prefix = false; // and while reading segments
    size_t leading_fill = 0;    // bytes of 0xFF, known to begin the first scan
    Frame frame = {0, 0, 3, FrameMode::none, first_layout};
    Scan scan = {};
    uint8_t quantisation_of[4] = {}; // by component id
    QuantisationTables quantisation = {};
    DecodeTable dc_tables[4] = {}, ac_tables[4] = {};
    bool dc_defined[4] = {}, ac_defined[4] = {}; // in this stream
    uint32_t restart_interval = 0;
    Comments comments = {};
    struct {
        uint32_t position = 0;
        uint8_t marker = 0;
    } unexpected = {};
    EntropyState entropy = {};
    bool stop = false;        // no scan is to follow
    bool scan_marker = false; // SOS met inside entropy-coded data
    Picture picture = {};
    Progress progress = {};
    bool under_way = false; // between First and the end of a decode
    bool running = false;   // a call is decoding, so what is called now comes from its handler
    bool abandoned = false; // ... which has ended the decode
    int32_t final = 0;      // the caller's word that no input follows

    // Before a stream is read. The tables stay as they are.
    void reset();
    bool is_final() const { return final == 1; }
};

} // namespace kirvo
