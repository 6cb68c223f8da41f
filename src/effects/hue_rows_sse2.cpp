#include "effects/hue_rows.hpp"
#include "effects/hue_vectors.hpp"
#include "effects/planes_sse2.hpp"

namespace kirvo::sse2 {

const HueRows hue_rows = {HueVectors<Planes>::set, HueVectors<Planes>::turn};

} // namespace kirvo::sse2
