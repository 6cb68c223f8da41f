// Image files: recognised by content, read into images, written by extension.
#pragma once

#include "image.hpp"

#include <optional>
#include <string>

enum class FileFormat { unknown, bmp, jpeg, targa, q0, raw, photo_cd, icon };

// The name that info shows: "BMP", "JPEG" ...
const char* format_name(FileFormat format);

// By its first bytes; formats without a signature also by name. Throws Failure when the file
// cannot be read.
FileFormat recognise(const std::string& path);

// What the name says: "jpg" of "photo.JPG".
std::string extension(const std::string& path);

struct ReadOptions {
    int32_t icon_index = 0;
    std::string mask_path; // where to save an icon's mask; none when empty
};

// "-" reads standard input.
Image read_image(const std::string& path, const ReadOptions& options = {});

struct WriteOptions {
    std::optional<int32_t> quality;   // JPEG quality level
    std::optional<int32_t> subsample; // JPEG chroma subsampling: 1, 2 or 4
    std::string comment;              // JPEG comment
    bool grey = false;                // JPEG with one component
    std::string to;                   // the format, whatever the name says; by the name when empty
    bool replace = false;             // a file that exists, even without --force
};

// Throws UsageError for an extension that is not written.
void check_writable(const std::string& path, const std::string& to = "");
// The file appears once it is complete; "-" writes to standard output.
void write_image(const std::string& path, Image image, const WriteOptions& options = {});

// A copy of the image, expanded or converted.
Image copy_at_24_bits(const Image& image);
// The image itself when it has 24 bits, else such a copy.
Image to_24_bits(Image image);
