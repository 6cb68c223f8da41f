#include "effects/planes_sse2.hpp"
#include "effects/tone_rows.hpp"
#include "effects/tone_vectors.hpp"

namespace kirvo::sse2 {

void improve(ToneRows& rows) {
    rows.scale = ToneVectors<Planes>::scale;
    rows.grey = ToneVectors<Planes>::grey;
    rows.flip = ToneVectors<Planes>::flip;
}

} // namespace kirvo::sse2
