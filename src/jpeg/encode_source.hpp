// What is encoded: a region of an image, as samples.
#pragma once

#include "core/dib.hpp"
#include "simd/kernels.hpp"

namespace kirvo {

enum class EncodeFamily { colour, grey };

struct EncodeRequest {
    EncodeFamily family;
    HGLOBAL dib;
    Rect region;
    bool grey_from_table;  // of the grey family: blue bytes of the colour table, not the indexes
    int32_t mcus_per_call; // -1: all

    bool grey() const { return family == EncodeFamily::grey; }
};

class EncodeSource {
  public:
    // The image is to stay locked.
    void open(const EncodeRequest& request, const LockedDib& dib);

    int32_t width() const { return region_.width; }
    int32_t height() const { return region_.height; }

    // Samples of count pixels of row y from column x on, counted from the region's corner. No
    // chroma in a grey encode.
    void sample(int32_t x, int32_t y, size_t count, int8_t* luma, int8_t* cb, int8_t* cr) const;
    // Asks for the pixels at column x of up to so many rows from y on.
    void prefetch(ptrdiff_t x, ptrdiff_t y, int32_t rows) const;

  private:
    void prepare_indexes(const EncodeRequest& request, const LockedDib& dib);

    const Kernels* kernels_;
    const uint8_t* first_pixel_; // of the region's top row
    ptrdiff_t row_step_;         // to the next row down
    Rect region_;
    bool grey_, indexed_;

    // The samples of each index of an 8-bit image.
    struct {
        int8_t luma[256], cb[256], cr[256];
        bool plain_grey; // luma is the index but for the level shift
    } index_;
};

} // namespace kirvo
