// The pictures that are measured: one photo-like scene of 12 megapixels in several guises. Each is
// made on first use and shared.
#pragma once

#include <cstdint>
#include <kirvo.h>
#include <string>
#include <vector>

namespace kirvo_bench {

extern int photo_width, photo_height;
// "12", "1", or "small" for one of 152 x 150 pixels, before the first picture is made. False for
// another.
bool set_photo_size(const std::string& megapixels);
double photo_megapixels();

// Packed DIBs; not to be freed. Operations that work in place may change the scratch images.
HGLOBAL photo_dib();
HGLOBAL scratch_dib();
HGLOBAL grey_dib(); // 8 bits, grey colour table
// At 8, 16, 24 or 32 bits.
HGLOBAL photo_of(int bits);
HGLOBAL scratch_of(int bits);

// Rows from the top, without padding: blue, green, red, or grey.
const std::vector<uint8_t>& photo_bgr();
const std::vector<uint8_t>& photo_grey();

// JPEG streams made by libjpeg-turbo; 4:2:0 of quality 75 has about 2 bits a pixel. There may be a
// restart marker after every row of MCUs.
enum class Jpeg { s420, s422, s444, s440, grey, progressive };
struct JpegCoding {
    int quality = 75;
    bool optimised = false, restarts = false;
};
const std::vector<uint8_t>& photo_jpeg(Jpeg kind, const JpegCoding& coding = {});

} // namespace kirvo_bench
