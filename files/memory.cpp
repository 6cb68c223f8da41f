#include "memory.hpp"

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace kirvo_files {

static std::atomic<uint32_t> failing{0}, asked{0};
static std::atomic<uint64_t> limit{max_bytes};

static bool refused(uint64_t bytes) {
    asked.fetch_add(1, std::memory_order_relaxed);
    if (bytes > limit.load(std::memory_order_relaxed))
        return true;
    uint32_t n = failing.load(std::memory_order_relaxed);
    while (n != 0 && !failing.compare_exchange_weak(n, n - 1)) {
    }
    return n == 1;
}

void* allocate(uint64_t bytes) {
    return refused(bytes) ? nullptr : std::calloc(1, static_cast<size_t>(bytes != 0 ? bytes : 1));
}

void release(void* memory) { std::free(memory); }

HGLOBAL allocate_block(uint64_t bytes) {
    return refused(bytes) ? nullptr : GlobalAlloc(GHND, static_cast<size_t>(bytes));
}

void fail_allocation(uint32_t n) { failing = n; }

void limit_allocation(uint64_t bytes) { limit = bytes; }

uint32_t count_allocations() { return asked.exchange(0); }

bool Buffer::reserve(uint64_t size) {
    if (size <= room_ && data_ != nullptr)
        return true;
    const uint64_t doubled = 2 * static_cast<uint64_t>(room_);
    const uint64_t room = size > doubled || doubled > max_bytes ? size : doubled;
    auto* grown = static_cast<uint8_t*>(allocate(room));
    if (grown == nullptr)
        return false;
    if (size_ != 0)
        std::memcpy(grown, data_, size_);
    release(data_);
    data_ = grown;
    room_ = static_cast<size_t>(room);
    return true;
}

bool Buffer::resize(uint64_t size) {
    if (!reserve(size))
        return false;
    if (size > size_)
        std::memset(data_ + size_, 0, static_cast<size_t>(size) - size_);
    size_ = static_cast<size_t>(size);
    return true;
}

bool Buffer::append(const void* bytes, size_t count) {
    if (!reserve(static_cast<uint64_t>(size_) + count))
        return false;
    if (count != 0)
        std::memcpy(data_ + size_, bytes, count);
    size_ += count;
    return true;
}

bool Buffer::append_be16(uint32_t value) {
    const uint8_t bytes[] = {static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value)};
    return append(bytes, sizeof bytes);
}

bool Buffer::append_be32(uint32_t value) {
    return append_be16(value >> 16) && append_be16(value & 0xFFFF);
}

bool Buffer::append_le16(uint32_t value) {
    const uint8_t bytes[] = {static_cast<uint8_t>(value), static_cast<uint8_t>(value >> 8)};
    return append(bytes, sizeof bytes);
}

bool Buffer::append_le32(uint32_t value) {
    return append_le16(value & 0xFFFF) && append_le16(value >> 16);
}

Text Text::format(const char* form, ...) {
    Text text;
    va_list list, again;
    va_start(list, form);
    va_copy(again, list);
    const int length = std::vsnprintf(nullptr, 0, form, list);
    if (length > 0 && text.bytes_.resize(static_cast<uint64_t>(length) + 1))
        std::vsnprintf(reinterpret_cast<char*>(text.bytes_.data()), text.bytes_.size(), form,
                       again);
    va_end(again);
    va_end(list);
    return text;
}

// Bytes of the UTF-8 character at an offset; 0 where there is none.
static size_t character_at(Bytes bytes, size_t offset) {
    const uint8_t first = bytes[offset];
    const size_t count = first < 0x80                     ? 1
                         : first >= 0xC2 && first < 0xE0  ? 2
                         : first >= 0xE0 && first < 0xF0  ? 3
                         : first >= 0xF0 && first <= 0xF4 ? 4
                                                          : 0;
    for (size_t i = 1; i < count; ++i)
        if ((bytes[offset + i] & 0xC0) != 0x80)
            return 0;
    return count;
}

Text Text::cleaned(Bytes bytes) {
    size_t end = 0;
    while (end < bytes.size() && bytes[end] != 0)
        ++end;
    while (end > 0 && bytes[end - 1] <= ' ')
        --end;
    size_t at = 0;
    while (at < end && bytes[at] <= ' ')
        ++at;
    bytes = bytes.part(0, end);
    Text text;
    Buffer& made = text.bytes_;
    bool good = true;
    while (good && at < end) {
        const size_t count = character_at(bytes, at);
        const uint8_t first = bytes[at];
        const uint8_t latin[] = {static_cast<uint8_t>(0xC0 | first >> 6),
                                 static_cast<uint8_t>(0x80 | (first & 0x3F))};
        if (count == 1 && (first < ' ' || first == 0x7F))
            good = made.append(" ", 1);
        else if (count != 0)
            good = made.append(bytes.data() + at, count);
        else
            good = made.append(latin, 2);
        at += count != 0 ? count : 1;
    }
    if (!good || !made.append("", 1))
        made.clear();
    return text;
}

uint32_t copy_text(const char* from, char* text, uint32_t capacity) {
    const size_t whole = std::strlen(from);
    if (text != nullptr && capacity != 0) {
        size_t count = whole < capacity ? whole : capacity - 1;
        while (count > 0 && (static_cast<uint8_t>(from[count]) & 0xC0) == 0x80)
            --count;
        std::memcpy(text, from, count);
        text[count] = 0;
    }
    return static_cast<uint32_t>(whole + 1);
}

uint32_t Text::copy_to(char* text, uint32_t capacity) const {
    return copy_text(c_str(), text, capacity);
}

} // namespace kirvo_files
