// Metadata put into files that have been encoded.
#pragma once

#include "codec.hpp"

namespace kirvo_files {

// EXIF, ICC profile, XMP, comment and resolution as the format has room for them; notes tell what
// is left out.
Status add_metadata(Saving& saving, int32_t format);

} // namespace kirvo_files
