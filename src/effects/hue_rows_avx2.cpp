#include "effects/hue_rows.hpp"
#include "effects/hue_vectors.hpp"
#include "effects/planes_avx2.hpp"

namespace kirvo::avx2 {

const HueRows hue_rows = {HueVectors<Planes>::set, HueVectors<Planes>::turn};

} // namespace kirvo::avx2
