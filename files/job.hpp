// A picture to be read: what readers are given, and what they have in common.
#pragma once

#include "dib.hpp"

namespace kirvo_files {

// Whether a file claims more than any real one packs into its bytes.
bool out_of_proportion(uint64_t picture_bytes, uint64_t file_bytes);

struct Job {
    Bytes bytes;
    const OpenOptions& options;
    bool headers_only;
    Known& known;
    Dib dib;              // the result
    bool cut_off = false; // the headers say that the file ends early

    // A size that the headers claim; false, with the status to answer, when the picture is not to
    // be decoded.
    bool claim(uint64_t width, uint64_t height, uint32_t bits, Status& status);

    // The picture ends or is damaged after so many whole rows, in the order of the file: success
    // with a note where the caller keeps going.
    Status ends_early(uint32_t whole_rows, bool bottom_up = false);
    Status damaged(Text what, uint32_t whole_rows);
    Status damaged_below(uint32_t whole_rows);
    // It can be told that it is, but not where.
    Status damaged_somewhere();
    Status unsupported(const char* what);
    Status ends_early_in_headers();
};

// Which part of the result's rows a pixel's bytes hold.
enum class Pixels { grey, grey_alpha, rgb, rgba };

// Receives rows of true colour or grey from the top, and brings alpha into the form asked for.
class Raster {
  public:
    explicit Raster(Job& job) : job_(job) {}
    Status make(Pixels pixels, uint32_t width, uint32_t height);
    void put(uint32_t y, const uint8_t* row);
    // Tells what became of alpha.
    void finish();

  private:
    Job& job_;
    Pixels pixels_ = Pixels::rgb;
    bool transparent_ = false;
};

// The smallest depth of a palette of so many colours.
inline uint32_t bits_for_colours(uint32_t colours) {
    return colours <= 2 ? 1 : colours <= 16 ? 4 : 8;
}
// Stores a row of indices of a byte each.
void put_indices(const Dib& dib, uint32_t y, const uint8_t* indices);
// Brings the alpha of a palette's entries into the form asked for.
Status apply_palette_alpha(Job& job, const uint8_t* alpha, uint32_t count);
// Remembers the palette of the result as that of the file.
void keep_palette(Job& job, uint32_t colours);

} // namespace kirvo_files
