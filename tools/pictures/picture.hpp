// A picture on its way from one file to another.
#pragma once

#include "pictures/formats.hpp"
#include "pictures/image.hpp"
#include "pictures/known.hpp"
#include "system/streams.hpp"

#include <optional>

struct Picture {
    Image image;
    Image alpha; // as grey of 24 bits and the same size; none where all is opaque
    Known known;
};

struct ReadOptions {
    std::optional<int32_t> index;       // which picture of a file, from 0
    std::optional<uint32_t> background; // under what is transparent; 0x00BBGGRR
    bool keep_alpha = false;
    bool no_turn = false, keep_going = false, no_limits = false, kirvo_only = false;

    KirvoFilesOpenOptions as_structure() const;
};

// "-" reads standard input.
Picture read_picture(const std::string& name, const ReadOptions& options = {});
Image read_image(const std::string& name);
Known read_headers(const std::string& name, const ReadOptions& options = {});

struct WriteOptions {
    std::string to;                   // the format, whatever the name says; by the name when empty
    std::optional<int32_t> quality;   // 1 to 100
    std::optional<int32_t> level;     // of Kirvo's encoder, 1 to 5
    std::optional<int32_t> subsample; // JPEG chroma subsampling: 1, 2 or 4
    std::optional<uint32_t> largest;  // bytes that the file may have
    std::string comment;              // JPEG comment
    std::string compression;          // of TIFF, Targa and WebP
    std::optional<double> dpi;
    bool grey = false;    // JPEG with one component
    bool strip = false;   // without the source's metadata
    bool replace = false; // a file that exists, even without --force
};

struct Written {
    uint64_t bytes = 0;
    std::vector<std::string> notes;
};

// Throws UsageError for a format that is not written.
void check_writable(const std::string& name, const std::string& to = "");
// The format that a file of this name gets.
Format format_for(const std::string& name, const std::string& to);
// The file appears once it is complete; "-" writes to standard output.
Written write_picture(const std::string& name, Picture picture, const WriteOptions& options = {});
Written write_image(const std::string& name, Image image, const WriteOptions& options = {});
// As the file of this name is to be, which the caller completes.
Written fill(Output& file, const std::string& name, Picture picture, const WriteOptions& options);
