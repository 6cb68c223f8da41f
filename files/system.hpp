// The operating system: files by UTF-8 names. One source for each kind of system.
#pragma once

#include "known.hpp"

namespace kirvo_files {

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

} // namespace kirvo_files
