#include "effects/block_rows.hpp"

#define BLOCK_ROWS block_rows
namespace kirvo::avx2 {
#include "effects/block_rows.inc"
} // namespace kirvo::avx2
