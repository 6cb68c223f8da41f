// The adapters of the formats' libraries, as many as there were when the room was built.
#pragma once

#include "codec.hpp"

namespace kirvo_files {

Status jpeg_turbo_decode(Job& job);
Status jpeg_turbo_encode(Saving& saving, const JpegPlan& plan);
Status png_decode(Job& job);
Status png_encode(Saving& saving);
Status tiff_decode(Job& job);
Status tiff_encode(Saving& saving);
Status webp_decode(Job& job);
Status webp_encode(Saving& saving, uint32_t quality);
Status gif_decode(Job& job);

const char* jpeg_turbo_name();
const char* png_name();
const char* tiff_name();
const char* webp_name();
const char* gif_name();

} // namespace kirvo_files
