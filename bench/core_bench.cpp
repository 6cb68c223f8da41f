// Copies and allocation: what every operation that makes a new image pays at least.
#include "support/pictures.hpp"
#include "support/row.hpp"

#include <opencv2/core.hpp>

namespace {

using namespace kirvo_bench;

const Row allocate("core/allocate/ours",
                   [] { return [] { GlobalFree(DibMemAllocEx(photo_width, photo_height, 24)); }; });

} // namespace
