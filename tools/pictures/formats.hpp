// The formats that pictures are read from and written to.
#pragma once

#include "kirvo_files.h"

#include <string>
#include <vector>

using Format = int32_t; // a KirvoFilesFormat

std::string format_name(Format format);
// The extensions of files of a format, the usual one first.
std::vector<std::string> extensions(Format format);
// By what it is read and written.
std::string codec(Format format);

// "bmp|jpg|png": the usual extensions of the formats that are written.
std::string written_formats(const char* between = "|");
// What a word like "jpg" or the extension of a name means; unknown for what is not written.
Format written_format(const std::string& name);
bool is_readable(const std::string& name);
bool keeps_alpha(Format format);

// What the name says: "jpg" of "photo.JPG".
std::string extension(const std::string& name);
