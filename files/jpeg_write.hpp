// JPEG: which tables and sampling, which encoder.
#pragma once

#include "codec.hpp"

namespace kirvo_files {

Status write_jpeg(Saving& saving);

} // namespace kirvo_files
