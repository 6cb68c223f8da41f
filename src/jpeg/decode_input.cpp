#include "jpeg/decode_input.hpp"

#include <cstring>
#include <utility>

namespace kirvo {

bool DecodeInput::append(const uint8_t* more, size_t count) {
    const size_t kept = remaining();
    OwnedBlock joined;
    if (uint64_t{kept} + count != 0) {
        joined = OwnedBlock(allocate_block(uint64_t{kept} + count, Content::any));
        if (!joined)
            return false;
        const LockedBlock to(joined.get());
        if (kept != 0)
            std::memcpy(to.data(), LockedBlock(block).data() + position, kept);
        if (count != 0)
            std::memcpy(to.data() + kept, more, count);
    }
    replace(std::move(joined), kept + count);
    return true;
}

void DecodeInput::replace(OwnedBlock own, size_t count) {
    OwnedBlock old(block);
    block = own.release();
    bytes = nullptr;
    size = count;
    position = 0;
}

Status read_file(const char* name, OwnedBlock& block, uint32_t& size) {
    InputFile file;
    if (!file.open(name))
        return Status::cannot_open;
    const uint64_t file_bytes = file.size();
    block = OwnedBlock(allocate_block(file_bytes));
    if (!block)
        return Status::no_memory;
    size = static_cast<uint32_t>(file_bytes); // a block is smaller than 2 GB
    const LockedBlock lock(block.get());
    return file.read(lock.data(), size) ? Status::ok : Status::read_error;
}

} // namespace kirvo
