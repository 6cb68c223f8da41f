#include "kernels/trial.hpp"

#include "kernels/guarded_pages.hpp"

#include <array>
#include <cstring>
#include <memory>

namespace kirvo_test {

namespace {

constexpr size_t most_buffers = 48, room_for_each = size_t{2} << 20;
constexpr size_t guard = 128;
constexpr uint8_t guard_byte = 0xA5;

// One piece of memory for each buffer of a trial, kept from trial to trial.
const GuardedPages& pages(size_t number) {
    static std::array<std::unique_ptr<GuardedPages>, most_buffers> all;
    if (all.at(number) == nullptr)
        all[number] = std::make_unique<GuardedPages>(room_for_each);
    return *all[number];
}

bool is_intact(const uint8_t* begin, size_t bytes) {
    for (size_t i = 0; i < bytes; ++i) {
        if (begin[i] != guard_byte)
            return false;
    }
    return true;
}

} // namespace

uint8_t* Trial::add_bytes(size_t bytes, size_t reach, size_t alignment) {
    const GuardedPages& memory = pages(buffers_.size());
    const size_t own_offset = random.next() % 64;
    Buffer buffer = {memory.begin(), bytes, reach, 0, guard};
    if (shape_.place == Place::page_end) {
        buffer.begin = memory.end() - reach;
        buffer.begin -= reinterpret_cast<uintptr_t>(buffer.begin) % alignment;
    } else if (shape_.place == Place::between_guards) {
        const size_t offset = buffers_.empty() ? shape_.offset : own_offset;
        // What is measured lies together. Pieces of their own shut each other out of first caches that
        // find their lines by a hash of the address, more or less by system.
        if (measure_ != nullptr && !buffers_.empty()) {
            uint8_t* const end = buffers_.back().begin + buffers_.back().reach + guard;
            buffer.begin = end + -reinterpret_cast<uintptr_t>(end) % 64;
        }
        buffer.begin += guard + offset / alignment * alignment;
    }
    if (shape_.place != Place::page_start)
        buffer.guard_before = guard;
    if (shape_.place == Place::page_end)
        buffer.guard_behind = static_cast<size_t>(memory.end() - buffer.begin) - reach;
    std::memset(buffer.begin - buffer.guard_before, guard_byte, buffer.guard_before);
    std::memset(buffer.begin + reach, guard_byte, buffer.guard_behind);
    buffers_.push_back(buffer);
    return buffer.begin;
}

void Trial::copy_contents(std::vector<uint8_t>& to) const {
    to.clear();
    for (const Buffer& buffer : buffers_)
        to.insert(to.end(), buffer.begin, buffer.begin + buffer.bytes);
}

std::string Trial::difference(const std::vector<uint8_t>& expected) const {
    size_t at = 0;
    for (size_t number = 0; number < buffers_.size(); ++number) {
        const Buffer& buffer = buffers_[number];
        const std::string name = "buffer " + std::to_string(number);
        for (size_t i = 0; i < buffer.bytes; ++i, ++at) {
            if (buffer.begin[i] != expected[at])
                return name + ", byte " + std::to_string(i) + " of " +
                       std::to_string(buffer.bytes) + " is " + std::to_string(buffer.begin[i]) +
                       ", not " + std::to_string(expected[at]);
        }
        if (!is_intact(buffer.begin - buffer.guard_before, buffer.guard_before))
            return "written before " + name;
        if (!is_intact(buffer.begin + buffer.reach, buffer.guard_behind))
            return "written behind " + name;
    }
    return "";
}

} // namespace kirvo_test
