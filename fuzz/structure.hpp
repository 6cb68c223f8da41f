// Mutations that know the structure of what they change, beside those of the fuzzer, which knows
// bytes: most changes of single bytes make a file that is refused at its first field.
#pragma once

#include "support.hpp"

#include "support/random.hpp"

namespace kirvo_fuzz {

using kirvo_test::Random;

// Segments of a JPEG stream are removed, doubled, swapped, made anew and changed field by field,
// codes stay sound mostly, and markers get into the data of scans.
void mutate_jpeg(Bytes& file, Random& random);

// Fields of the headers get values at which readers decide, and runs get into the pixels.
void mutate_bmp(Bytes& file, Random& random);
void mutate_targa(Bytes& file, Random& random);
void mutate_icon(Bytes& file, Random& random);
void mutate_dib(Bytes& file, Random& random);
void mutate_raw(Bytes& file, Random& random);
// Entries of the directories of a TIFF structure, too.
void mutate_tiff(Bytes& file, Random& random);
// Chunks are removed, doubled, swapped and changed, with sums that are right.
void mutate_png(Bytes& file, Random& random);
void mutate_webp(Bytes& file, Random& random);
void mutate_gif(Bytes& file, Random& random);

// Parts of a sequence, which begin at the given places, are removed, doubled and swapped. The last
// place is the end.
void mutate_parts(Bytes& bytes, std::vector<size_t> places, Random& random);

} // namespace kirvo_fuzz
