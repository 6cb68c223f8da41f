#include "platform/platform.hpp"

#include <commdlg.h>

namespace kirvo {

namespace {

HANDLE as_handle(intptr_t value) { return reinterpret_cast<HANDLE>(value); }

DWORD share_flags(Share share) {
    return share == Share::anyone ? FILE_SHARE_READ | FILE_SHARE_WRITE : FILE_SHARE_READ;
}

} // namespace

bool InputFile::open(const char* name, Share share) {
    close();
    if (name == nullptr)
        return false;
    handle_ =
        reinterpret_cast<intptr_t>(CreateFileA(name, GENERIC_READ, share_flags(share), nullptr,
                                               OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    return handle_ != -1;
}

bool InputFile::open_searched(const char* name) {
    close();
    OFSTRUCT found;
    if (name != nullptr)
        handle_ = OpenFile(name, &found, OF_READ);
    return handle_ != -1;
}

uint64_t InputFile::size() const {
    LARGE_INTEGER size;
    return GetFileSizeEx(as_handle(handle_), &size) ? static_cast<uint64_t>(size.QuadPart) : 0;
}

uint32_t InputFile::read_some(void* bytes, uint32_t count) {
    DWORD got = 0;
    if (!ReadFile(as_handle(handle_), bytes, count, &got, nullptr))
        return 0;
    return got;
}

bool InputFile::seek(uint32_t offset) {
    LONG high = 0;
    return SetFilePointer(as_handle(handle_), static_cast<LONG>(offset), &high, FILE_BEGIN) !=
               INVALID_SET_FILE_POINTER ||
           GetLastError() == NO_ERROR;
}

void InputFile::close() {
    if (handle_ != -1)
        CloseHandle(as_handle(handle_));
    handle_ = -1;
}

bool OutputFile::create(const char* name) {
    close();
    if (name != nullptr)
        handle_ = _lcreat(name, 0);
    return handle_ != -1;
}

bool OutputFile::write(const void* bytes, uint32_t count) {
    return count == 0 || _hwrite(static_cast<HFILE>(handle_), static_cast<LPCSTR>(bytes),
                                 static_cast<long>(count)) == static_cast<long>(count);
}

bool OutputFile::close() {
    const bool closed = handle_ == -1 || _lclose(static_cast<HFILE>(handle_)) != HFILE_ERROR;
    handle_ = -1;
    return closed;
}

bool file_title(const char* path, char* title, uint16_t room) {
    return path != nullptr && GetFileTitleA(path, title, room) == 0;
}

HGLOBAL allocate_unfilled(SIZE_T bytes) {
    return GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, bytes);
}

void* lock_block(HGLOBAL block, size_t& size) {
    void* const address = block != nullptr ? GlobalLock(block) : nullptr;
    if (address != nullptr)
        size = GlobalSize(block);
    return address;
}

const void* borrow_block(HGLOBAL block, size_t& size) { return lock_block(block, size); }

void return_block(HGLOBAL block) { GlobalUnlock(block); }

void compact_memory(uint64_t bytes) {
    if (bytes <= UINT32_MAX)
        GlobalCompact(static_cast<DWORD>(bytes));
}

} // namespace kirvo
