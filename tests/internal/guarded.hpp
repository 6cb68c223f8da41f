// Memory that tells when a kernel writes beside it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kirvo_test {

// Bytes between guards, starting at any alignment.
class Guarded {
  public:
    Guarded(size_t count, size_t offset)
        : bytes_(guard + offset + count + guard, guard_byte), begin_(guard + offset),
          count_(count) {}
    uint8_t* data() { return bytes_.data() + begin_; }
    std::vector<uint8_t> content() { return {data(), data() + count_}; }
    bool intact() const {
        for (size_t i = 0; i < bytes_.size(); ++i) {
            if ((i < begin_ || i >= begin_ + count_) && bytes_[i] != guard_byte)
                return false;
        }
        return true;
    }

  private:
    static constexpr size_t guard = 64;
    static constexpr uint8_t guard_byte = 0xA5;

    std::vector<uint8_t> bytes_;
    size_t begin_, count_;
};

} // namespace kirvo_test
