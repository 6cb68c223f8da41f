// The formats: their names, how they are recognised, who reads them.
#pragma once

#include "job.hpp"

namespace kirvo_files {

const char* format_name(int32_t format);
const char* format_extensions(int32_t format);
int32_t format_of_name(const char* name);

// By content; formats without a signature also by the extension of a name, UTF-8.
int32_t recognise(Bytes bytes, const char* name);
bool looks_like_targa(Bytes bytes);
bool looks_like_icon(Bytes bytes, uint32_t type);

// Reads a picture of a known format.
Status read_as(int32_t format, Job& job);

Status read_bmp(Job& job);
Status read_targa(Job& job);
Status read_icon(Job& job);
Status read_jpeg(Job& job);
Status read_png(Job& job);
Status read_gif(Job& job);
Status read_webp(Job& job);
Status read_tiff(Job& job);
Status read_by_system(Job& job);

// A DIB as it lies in an icon: without a file header, its height that of picture and mask.
Status read_icon_dib(Job& job);

} // namespace kirvo_files
