// Functions of systems newer than Windows 7, where they are: the program starts without them.
#pragma once

#include <windows.h>

#include <cstring>

// Null where the system has none.
template<typename Function>
Function newer_function(const wchar_t* library, const char* name) {
    HMODULE module = LoadLibraryW(library);
    const FARPROC address = module != nullptr ? GetProcAddress(module, name) : nullptr;
    Function function = nullptr;
    static_assert(sizeof function == sizeof address);
    std::memcpy(&function, &address, sizeof function);
    return function;
}
