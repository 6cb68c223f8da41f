// Blocks of global memory: made in one place, owned and locked by objects.
#pragma once

#include "platform/platform.hpp"

namespace kirvo {

constexpr uint64_t max_block_bytes = INT32_MAX;

// What a new block holds: zero, or anything (for a result of which every byte will be written).
enum class Content { zero, any };

// A movable block; null when it cannot be had or would exceed max_block_bytes. Every block that the
// library makes comes from here.
HGLOBAL allocate_block(uint64_t bytes, Content content = Content::zero);

// For tests: makes the n-th allocation from now (1 is the next) fail once; 0 switches off.
void fail_allocation(uint32_t n);

// For tests: no block above so many bytes can be had from now on.
void limit_allocation(uint64_t bytes);

// For tests: allocations that have been asked for since the last call.
uint32_t count_allocations();

// A block that is freed unless it is handed over.
class OwnedBlock {
  public:
    OwnedBlock() = default;
    explicit OwnedBlock(HGLOBAL handle) : handle_(handle) {}
    OwnedBlock(OwnedBlock&& other) noexcept : handle_(other.release()) {}
    OwnedBlock& operator=(OwnedBlock&& other) noexcept {
        reset(other.release());
        return *this;
    }
    ~OwnedBlock() { reset(nullptr); }

    explicit operator bool() const { return handle_ != nullptr; }
    HGLOBAL get() const { return handle_; }
    HGLOBAL release() {
        HGLOBAL handle = handle_;
        handle_ = nullptr;
        return handle;
    }
    void reset(HGLOBAL handle = nullptr) {
        if (handle_ != nullptr)
            GlobalFree(handle_);
        handle_ = handle;
    }

  private:
    HGLOBAL handle_ = nullptr;
};

// A block locked for as long as the object lives.
class LockedBlock {
  public:
    explicit LockedBlock(HGLOBAL handle)
        : handle_(handle), data_(static_cast<uint8_t*>(lock_block(handle, size_))) {}
    LockedBlock(const LockedBlock&) = delete;
    LockedBlock& operator=(const LockedBlock&) = delete;
    ~LockedBlock() {
        if (data_ != nullptr)
            GlobalUnlock(handle_);
    }

    explicit operator bool() const { return data_ != nullptr; }
    uint8_t* data() const { return data_; }
    size_t size() const { return size_; }

  private:
    HGLOBAL handle_;
    size_t size_ = 0;
    uint8_t* data_;
};

// A block of the caller's that is only read, and not freed for as long as the object lives.
class BorrowedBlock {
  public:
    explicit BorrowedBlock(HGLOBAL handle)
        : handle_(handle), data_(static_cast<const uint8_t*>(borrow_block(handle, size_))) {}
    BorrowedBlock(const BorrowedBlock&) = delete;
    BorrowedBlock& operator=(const BorrowedBlock&) = delete;
    ~BorrowedBlock() {
        if (data_ != nullptr)
            return_block(handle_);
    }

    explicit operator bool() const { return data_ != nullptr; }
    const uint8_t* data() const { return data_; }
    size_t size() const { return size_; }

  private:
    HGLOBAL handle_;
    size_t size_ = 0;
    const uint8_t* data_;
};

// Working memory for the length of a call: zeroed, and gone with the object. None at all is as good
// as some: Windows does not lock a block of no bytes, so there is always one.
class Scratch {
  public:
    explicit Scratch(uint64_t bytes)
        : block_(allocate_block(bytes != 0 ? bytes : 1)), lock_(block_.get()) {}

    explicit operator bool() const { return static_cast<bool>(lock_); }
    uint8_t* data() const { return lock_.data(); }
    template<typename T>
    T* as() const {
        return reinterpret_cast<T*>(lock_.data());
    }
    // What begins so many bytes on; null when there is no memory.
    template<typename T>
    T* part(uint64_t offset) const {
        return lock_ ? reinterpret_cast<T*>(lock_.data() + static_cast<size_t>(offset)) : nullptr;
    }

  private:
    OwnedBlock block_;
    LockedBlock lock_;
};

} // namespace kirvo
