#include "jpeg/decode/input.hpp"

#include <algorithm>
#include <utility>

namespace kirvo {

// Moves the unconsumed bytes to where count more fit behind them; false when there is no memory. A
// move costs as much as there is room afterwards, so many small pieces cost no more than one.
bool DecodeInput::make_room(size_t count) {
    constexpr size_t least_spare = 2048, most_spare = size_t{16} << 20;
    const size_t kept = remaining();
    const uint64_t needed = uint64_t{kept} + count + tail_bytes;
    if (needed + kept <= capacity) {
        std::memmove(start, bytes + position, kept);
        set(start, kept, capacity - tail_bytes - kept);
        return true;
    }
    const uint64_t spare = kept != 0 ? std::clamp(kept, least_spare, most_spare) : 0;
    OwnedBlock larger(allocate_block(needed + spare, Content::any));
    if (!larger)
        return false;
    if (kept != 0)
        std::memcpy(LockedBlock(larger.get()).data(), bytes + position, kept);
    replace(std::move(larger), kept);
    return true;
}

void DecodeInput::replace(OwnedBlock own, size_t count) {
    static constinit uint8_t nothing[tail_bytes] = {};
    const OwnedBlock old(block);
    if (block != nullptr)
        GlobalUnlock(block);
    block = own.release();
    start = block != nullptr ? static_cast<uint8_t*>(GlobalLock(block)) : nothing;
    capacity = block != nullptr ? GlobalSize(block) : tail_bytes;
    set(start, count, capacity - tail_bytes - count);
}

Status read_file(const char* name, OwnedBlock& block, uint32_t& size) {
    InputFile file;
    if (!file.open(name))
        return Status::cannot_open;
    const uint64_t file_bytes = file.size();
    block = OwnedBlock(allocate_block(file_bytes + DecodeInput::tail_bytes));
    if (!block)
        return Status::no_memory;
    size = static_cast<uint32_t>(file_bytes); // a block is smaller than 2 GB
    const LockedBlock lock(block.get());
    return file.read(lock.data(), size) ? Status::ok : Status::read_error;
}

} // namespace kirvo
