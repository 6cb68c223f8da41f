#include "effects/hue_rows.hpp"
#include "effects/hue_vectors.hpp"
#include "effects/planes_avx512.hpp"

namespace kirvo::avx512 {

const HueRows hue_rows = {HueVectors<Planes>::set, HueVectors<Planes>::turn};

} // namespace kirvo::avx512
