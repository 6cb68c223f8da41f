// Memory between two pages that nobody may touch.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kirvo_test {

class GuardedPages {
  public:
    explicit GuardedPages(size_t bytes); // rounded up to whole pages
    ~GuardedPages();
    GuardedPages(const GuardedPages&) = delete;
    GuardedPages& operator=(const GuardedPages&) = delete;

    uint8_t* begin() const { return begin_; }
    uint8_t* end() const { return end_; }

  private:
    uint8_t *begin_, *end_;
};

} // namespace kirvo_test
