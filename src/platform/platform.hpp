// The operating system as the rest of the library sees it: the Win32 names that it calls, real on
// Windows, stand-ins elsewhere; and files as plain byte streams.
#pragma once

#include "kirvo.h"

#ifndef _WIN32

constexpr UINT LPTR = 0x0040;
constexpr BYTE PC_NOCOLLAPSE = 4;

struct LOGPALETTE {
    WORD palVersion;
    WORD palNumEntries;
    PALETTEENTRY palPalEntry[1];
};

HANDLE LocalAlloc(UINT flags, SIZE_T bytes);
HANDLE LocalFree(HANDLE memory);
HPALETTE CreatePalette(const LOGPALETTE* palette);

LRESULT SendMessageA(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
BOOL GetWindowRect(HWND window, RECT* rect);
BOOL GetClientRect(HWND window, RECT* rect);
BOOL SetWindowPos(HWND window, HWND after, int x, int y, int width, int height, UINT flags);
int GetSystemMetrics(int index);

namespace kirvo {

// For tests: the movable blocks that there are, and the locks on them.
struct BlockCount {
    uint32_t blocks, locks;
};
BlockCount count_blocks();

} // namespace kirvo

#endif

namespace kirvo {

// A movable block whose bytes may be anything, where the system has such a thing; else zero.
HGLOBAL allocate_unfilled(SIZE_T bytes);

// GlobalLock, and GlobalSize when that succeeds; null for a null handle.
void* lock_block(HGLOBAL block, size_t& size);

// The same for reading a block during which nothing frees it. Where blocks never move, no lock is
// counted.
const void* borrow_block(HGLOBAL block, size_t& size);
#ifdef _WIN32
void return_block(HGLOBAL block);
#else
inline void return_block(HGLOBAL) {}
#endif

// Asks the system to make room for a large block, where it knows such a thing.
void compact_memory(uint64_t bytes);

// Which other programs may have the file open meanwhile (Windows only).
enum class Share { readers, anyone };

// A file read from front to back. Closed by its destructor.
class InputFile {
  public:
    InputFile() = default;
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;
    ~InputFile() { close(); }

    // False for a null name, a missing or unreadable file, or a directory.
    bool open(const char* name, Share share = Share::readers);
    // Windows: by OpenFile, which shares with anyone, looks for a name without a folder beside the
    // program, in the current folder and along the search path, and takes at most 127 characters.
    bool open_searched(const char* name);
    // In bytes; 0 when the system does not know it.
    uint64_t size() const;
    // True when all count bytes came.
    bool read(void* bytes, uint32_t count) { return read_some(bytes, count) == count; }
    // Number of bytes that came, fewer than count at the end of the file or on an error.
    uint32_t read_some(void* bytes, uint32_t count);
    bool seek(uint32_t offset);
    void close();

  private:
    intptr_t handle_ = -1;
};

// A file written from front to back, replacing what was there. Closed by its destructor.
class OutputFile {
  public:
    OutputFile() = default;
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    ~OutputFile() { close(); }

    bool create(const char* name);
    // True when all count bytes went.
    bool write(const void* bytes, uint32_t count);
    // False when what was written has not arrived after all.
    bool close();

  private:
    intptr_t handle_ = -1;
};

// Copies the last part of a path, behind its folder. False when there is none or room is too small.
bool file_title(const char* path, char* title, uint16_t room);

// A library loaded at run time, found by the system's search rules. Unloaded by its destructor.
class LoadedLibrary {
  public:
    explicit LoadedLibrary(const char* name);
    LoadedLibrary(const LoadedLibrary&) = delete;
    LoadedLibrary& operator=(const LoadedLibrary&) = delete;
    ~LoadedLibrary();

    explicit operator bool() const { return handle_ != nullptr; }
    // Null when the library has no such function.
    void* function(const char* name) const;

  private:
    void* handle_;
};

} // namespace kirvo
