#include "effects/planes_sse2.hpp"
#include "effects/range_vectors.hpp"

namespace kirvo::sse2 {

const RangeRows range_rows = {RangeVectors<Planes>::rgb, RangeVectors<Planes>::hsv};

} // namespace kirvo::sse2
