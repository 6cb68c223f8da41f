#include "system.hpp"

#include <atomic>

namespace kirvo_files {

static std::atomic<WriteFault> fault{WriteFault::none};
static std::atomic<uint64_t> fault_after{0};

void fail_writing(WriteFault kind, uint64_t after) {
    fault = kind;
    fault_after = after;
}

size_t writable(uint64_t done, size_t count) {
    switch (fault.load()) {
    case WriteFault::disk_full:
        return done + count > fault_after ? 0 : count;
    case WriteFault::short_write:
        return count > 7 ? 7 : count;
    default:
        return count;
    }
}

} // namespace kirvo_files
