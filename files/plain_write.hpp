// BMP and Targa files.
#pragma once

#include "codec.hpp"

#include <initializer_list>

namespace kirvo_files {

Status write_bmp(Saving& saving);
Status write_targa(Saving& saving);

} // namespace kirvo_files
