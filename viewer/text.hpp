// Names and texts: UTF-8 in the two libraries and the catalogue, UTF-16 in windows.
#pragma once

#include <string>

std::wstring wide(const std::string& text);
std::string narrow(const std::wstring& text);

// A whole number.
template<typename Number>
std::wstring digits(Number number) {
    return wide(std::to_string(number));
}

// Marks the first letter or digit that is not taken yet as the one that is typed: "E&dges".
std::wstring with_key(const std::wstring& title, std::wstring& taken);

std::wstring text_of(struct HWND__* window);
// "photo.jpg" of "C:\pictures\photo.jpg", and the folder before it with its backslash.
std::wstring name_in(const std::wstring& path);
std::wstring folder_of(const std::wstring& path);
