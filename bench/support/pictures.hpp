// The pictures that are measured: one photo-like scene of 4000 x 3000 pixels in several guises.
// Each is made on first use and shared.
#pragma once

#include <cstdint>
#include <kirvo.h>
#include <vector>

namespace kirvo_bench {

constexpr int photo_width = 4000;
constexpr int photo_height = 3000;

// Packed DIBs; not to be freed. Operations that work in place may change the scratch image.
HGLOBAL photo_dib();
HGLOBAL scratch_dib();
HGLOBAL grey_dib(); // 8 bits, grey colour table

// Rows from the top, without padding: blue, green, red, or grey.
const std::vector<uint8_t>& photo_bgr();
const std::vector<uint8_t>& photo_grey();

// JPEG streams of quality 75 made by libjpeg-turbo; 4:2:0 has about 2 bits a pixel.
enum class Jpeg { s420, s422, s444, grey, progressive };
const std::vector<uint8_t>& photo_jpeg(Jpeg kind);

} // namespace kirvo_bench
