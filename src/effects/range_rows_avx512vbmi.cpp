#include "effects/planes_avx512.hpp"
#include "effects/range_vectors.hpp"

namespace kirvo::avx512 {

const RangeRows range_rows = {RangeVectors<Planes>::rgb, RangeVectors<Planes>::hsv};

} // namespace kirvo::avx512
