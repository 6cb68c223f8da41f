// Every export that reads a file and every one that writes one, with what it answers when the file
// is not all there. PcdRead is none of them: the library that it loads opens the file.
#pragma once

#include <cstdint>
#include <kirvo.h>
#include <string>
#include <vector>

namespace kirvo_test {

struct FileReader {
    const char* name;
    const char* title;         // of a file for it
    std::vector<uint8_t> file; // a sound one
    int32_t success;           // the answer to that
    int32_t (*read)(const char* name);
    int32_t (*of_cut_file)(size_t bytes); // the answer to a file that ends after so many
    // The answer when the file is as long as ever, but only so many bytes can be read.
    int32_t (*of_failing_read)(size_t bytes);
    int32_t of_no_companion; // the answer to a missing file whose companion is missing too
    // The answers to a file of no bytes, and to one of unknown size and of zeros without end.
    int32_t of_no_bytes, of_zeros;
};

const std::vector<FileReader>& file_readers();
// Q0Read needs this file beside its own.
constexpr char companion_title[] = "file.IPR", companion_text[] = "3 2 ";

struct FileWriter {
    const char* name;
    int32_t of_no_name;
    // Writes an image of 5 x 4 pixels that is always the same.
    int32_t (*write)(const char* name);
};

const std::vector<FileWriter>& file_writers();

// Descriptors, or on Windows handles of any kind, that the process has open.
int open_handles();

} // namespace kirvo_test
