// One measured row. Its name is topic/operation/ours, or topic/operation/PEER for a library that
// does the same work:
//
//     const Row ours("turn/flip/ours", [] {
//         return [photo = photo_dib()] { int32_t status; GlobalFree(Dib24Flip(photo, &status)); };
//     });
//
// The outer function prepares (once, and only when the row is run), the one that it returns is
// measured. Rows of one operation are run in turns, and the table compares their medians.
#pragma once

#include "support/pictures.hpp"

#include <functional>

namespace kirvo_bench {

using Work = std::function<void()>;

class Row {
  public:
    Row(const char* name, std::function<Work()> prepare)
        : Row(name, std::move(prepare), photo_megapixels) {}
    Row(const char* name, std::function<Work()> prepare, double megapixels)
        : Row(name, std::move(prepare), [megapixels] { return megapixels; }) {}
    // Where that is known once the row is run.
    Row(const char* name, std::function<Work()> prepare, std::function<double()> megapixels);
};

} // namespace kirvo_bench
