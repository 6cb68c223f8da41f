#include "effects/planes_avx2.hpp"
#include "effects/range_vectors.hpp"

namespace kirvo::avx2 {

const RangeRows range_rows = {RangeVectors<Planes>::rgb, RangeVectors<Planes>::hsv};

} // namespace kirvo::avx2
