// What is known of a file, and what a reader is asked for.
#pragma once

#include "memory.hpp"

namespace kirvo_files {

using Status = KirvoFilesStatus;

struct Note {
    int32_t kind = KIRVO_FILES_NOTE_NONE;
    Text text;
};

struct JpegTables {
    uint32_t components = 0;
    uint8_t across[4] = {}, down[4] = {}; // sampling factors
    uint8_t table_of[4] = {};             // which table a component uses
    bool present[4] = {};
    uint16_t tables[4][64] = {}; // row by row
};

struct Known {
    static constexpr uint32_t magic_number = 0x4B694669;
    static constexpr uint32_t max_notes = 16;

    uint32_t magic = magic_number;
    KirvoFilesDescription numbers = {};
    Text texts[KIRVO_FILES_TEXT_COMMENT + 1];
    Note notes[max_notes];
    Buffer exif, icc, xmp, palette, comment;
    JpegTables jpeg;
    bool upright = false;   // the picture has been turned by its orientation
    uint32_t of_caller = 0; // which kinds of data the caller has set, as bits

    Known() {
        numbers.orientation = 1;
        numbers.frames = numbers.frame = 1;
    }
    ~Known() { magic = 0; }

    void note(int32_t kind, Text text);
    Text& text(int32_t kind) { return texts[kind]; }
    // Metadata to be saved. Stripped, it is what the caller has set.
    Bytes metadata(KirvoFilesDataKind kind, bool stripped) const {
        const Buffer& data = kind == KIRVO_FILES_DATA_EXIF  ? exif
                             : kind == KIRVO_FILES_DATA_ICC ? icc
                             : kind == KIRVO_FILES_DATA_XMP ? xmp
                                                            : comment;
        return stripped && (of_caller >> kind & 1) == 0 ? Bytes() : data.bytes();
    }
    // Says why a call fails and passes its status on.
    Status fail(Status status, Text reason) {
        if (texts[KIRVO_FILES_TEXT_REASON].empty())
            texts[KIRVO_FILES_TEXT_REASON] = std::move(reason);
        return status;
    }
    void set(uint32_t flag, bool on = true) {
        numbers.flags = on ? numbers.flags | flag : numbers.flags & ~flag;
    }
    bool is(uint32_t flag) const { return (numbers.flags & flag) != 0; }
};

// A handle of the caller's; null for one that is none.
Known* known_of(KirvoFile file);

// Hands what is known to the caller, or frees it where nobody wants it, and completes the reason of
// a failure with the name of the file and, where nothing has said why, the words of the status.
Status answer(Status status, const char* name, Known* known, KirvoFile* file);

struct OpenOptions {
    uint32_t flags = 0, background = 0x00FFFFFF, frame = 0;
    bool has(uint32_t flag) const { return (flags & flag) != 0; }
};

} // namespace kirvo_files
