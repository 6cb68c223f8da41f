#include "effects/filter_rows.hpp"

#define FILTER_ROWS filter_rows
namespace kirvo::avx2 {
#include "effects/filter_rows.inc"
} // namespace kirvo::avx2
