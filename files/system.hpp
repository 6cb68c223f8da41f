// The operating system: files by UTF-8 names. One source for each kind of system.
#pragma once

#include "known.hpp"

namespace kirvo_files {

// Reads a file of a size, or of an unknown one (0) until nothing comes. `read(to, count)` answers how
// many bytes came, or -1.
template<typename Read>
Status read_all(uint64_t size, Buffer& content, Read read) {
    uint64_t room = size != 0 ? size : 1 << 16, done = 0;
    for (;;) {
        if (!content.resize(room))
            return KIRVO_FILES_NO_MEMORY;
        const int64_t count = read(content.data() + done, static_cast<size_t>(room - done));
        if (count < 0)
            return KIRVO_FILES_READ_ERROR;
        done += static_cast<uint64_t>(count);
        if (count == 0 || (size != 0 && done == room))
            break;
        if (done == room)
            room *= 2;
    }
    content.resize(done);
    return KIRVO_FILES_OK;
}

// A whole file.
Status read_file(const char* name, Buffer& content, Known& known);
// Bytes as a file: complete or not at all.
Status write_file(const char* name, Bytes content, bool new_only, Known& known);
// A name for functions that take names in the system's code page; empty where there is none.
Text ansi_name(const char* name);

// UTF-8 of UTF-16. Halves of pairs that stand alone are kept as three bytes, as in names.
Text utf8_of(const KirvoWide* wide);
// UTF-16 of such UTF-8, with a zero at its end; no units without memory.
bool wide_of(const char* text, Buffer& units);

// For tests: what writing does after so many bytes.
enum class WriteFault { none, disk_full, short_write };
void fail_writing(WriteFault fault, uint64_t after);
// How many of the next bytes the system is to be asked for; 0 where the disk is to be full.
size_t writable(uint64_t done, size_t count);

} // namespace kirvo_files
