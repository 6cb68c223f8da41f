// Memory of the room: every byte comes from here, may be refused, and is owned by an object.
#pragma once

#include <kirvo_files.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

namespace kirvo_files {

constexpr uint64_t max_bytes = INT32_MAX;

// Zeroed; null when it cannot be had or would exceed max_bytes.
void* allocate(uint64_t bytes);
void release(void* memory);
HGLOBAL allocate_block(uint64_t bytes);

// For tests: makes the n-th allocation from now (1 is the next) fail once; 0 switches off.
void fail_allocation(uint32_t n);
// For tests: nothing above so many bytes can be had from now on.
void limit_allocation(uint64_t bytes);
// For tests: allocations that have been asked for since the last call.
uint32_t count_allocations();

// Bytes that are only looked at. What lies outside reads as 0; has() tells.
class Bytes {
  public:
    Bytes() = default;
    Bytes(const uint8_t* data, size_t size) : data_(data), size_(size) {}

    const uint8_t* data() const { return data_; }
    size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    bool has(uint64_t offset, uint64_t count) const {
        return offset <= size_ && count <= size_ - offset;
    }

    uint8_t at(uint64_t offset) const {
        return offset < size_ ? data_[static_cast<size_t>(offset)] : uint8_t{0};
    }
    uint8_t operator[](uint64_t offset) const { return at(offset); }
    uint16_t le16(uint64_t offset) const {
        return static_cast<uint16_t>(at(offset) | at(offset + 1) << 8);
    }
    uint16_t be16(uint64_t offset) const {
        return static_cast<uint16_t>(at(offset) << 8 | at(offset + 1));
    }
    uint32_t le32(uint64_t offset) const { return __builtin_bswap32(be32(offset)); }
    uint32_t be32(uint64_t offset) const {
        if (!has(offset, 4))
            return static_cast<uint32_t>(be16(offset)) << 16 | be16(offset + 2);
        const uint8_t* at = data_ + offset;
        return uint32_t{at[0]} << 24 | uint32_t{at[1]} << 16 | uint32_t{at[2]} << 8 | at[3];
    }
    // As much of the range as there is.
    Bytes part(uint64_t offset, uint64_t count = UINT64_MAX) const {
        if (offset >= size_)
            return {};
        const uint64_t rest = size_ - offset;
        return {data_ + offset, static_cast<size_t>(count < rest ? count : rest)};
    }
    template<size_t n>
    bool begins(const char (&word)[n], uint64_t offset = 0) const {
        return has(offset, n - 1) && std::memcmp(data_ + offset, word, n - 1) == 0;
    }

  private:
    const uint8_t* data_ = nullptr;
    size_t size_ = 0;
};

// Bytes of its own, which grow. A function that answers false has found no memory and changed
// nothing.
class Buffer {
  public:
    Buffer() = default;
    Buffer(Buffer&& other) noexcept { swap(other); }
    Buffer& operator=(Buffer&& other) noexcept {
        swap(other);
        return *this;
    }
    ~Buffer() { release(data_); }
    void swap(Buffer& other) noexcept {
        std::swap(data_, other.data_);
        std::swap(size_, other.size_);
        std::swap(room_, other.room_);
    }

    uint8_t* data() const { return data_; }
    size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    Bytes bytes() const { return {data_, size_}; }
    uint8_t& operator[](size_t index) const { return data_[index]; }

    void clear() { size_ = 0; }
    // New bytes are 0.
    bool resize(uint64_t size);
    bool append(const void* bytes, size_t count);
    bool append(Bytes bytes) { return append(bytes.data(), bytes.size()); }
    bool append_be16(uint32_t value);
    bool append_be32(uint32_t value);
    bool append_le16(uint32_t value);
    bool append_le32(uint32_t value);
    bool assign(Bytes bytes) {
        clear();
        return append(bytes);
    }

  private:
    bool reserve(uint64_t size);

    uint8_t* data_ = nullptr;
    size_t size_ = 0, room_ = 0;
};

// A word or a sentence, UTF-8.
class Text {
  public:
    // Empty where there was no memory.
    static Text format(const char* form, ...) __attribute__((format(printf, 1, 2)));
    // Control characters become blanks, blanks at the ends go, and what is no UTF-8 is taken for
    // Latin letters.
    static Text cleaned(Bytes bytes);

    const char* c_str() const {
        return bytes_.empty() ? "" : reinterpret_cast<char*>(bytes_.data());
    }
    bool empty() const { return c_str()[0] == 0; }
    // As much as fits, never half a character; what all of it takes with its zero byte.
    uint32_t copy_to(char* text, uint32_t capacity) const;

  private:
    Buffer bytes_; // with a zero byte
};

uint32_t copy_text(const char* from, char* text, uint32_t capacity);

// One object in memory of the room's.
template<typename T>
T* make() {
    void* memory = allocate(sizeof(T));
    return memory != nullptr ? new (memory) T() : nullptr;
}
template<typename T>
void unmake(T* object) {
    if (object != nullptr) {
        object->~T();
        release(object);
    }
}

} // namespace kirvo_files
