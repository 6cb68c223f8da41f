#include "text.hpp"

#include <windows.h>

std::wstring wide(const std::string& text) {
    const int size = static_cast<int>(text.size());
    const int count = MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0);
    std::wstring result(static_cast<size_t>(count), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), size, result.data(), count);
    return result;
}

std::string narrow(const std::wstring& text) {
    const int size = static_cast<int>(text.size());
    const int count =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<size_t>(count), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), size, result.data(), count, nullptr, nullptr);
    return result;
}

std::wstring text_of(HWND window) {
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
    text.resize(
        static_cast<size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return text;
}

std::wstring name_in(const std::wstring& path) {
    return path.substr(path.find_last_of(L"\\/") + 1); // 0 where there is none
}

std::wstring folder_of(const std::wstring& path) {
    return path.substr(0, path.find_last_of(L"\\/") + 1);
}

std::wstring with_key(const std::wstring& title, std::wstring& taken) {
    for (size_t i = 0; i < title.size(); ++i) {
        const wchar_t letter = title[i] | 32; // small; digits stay
        const bool typed = (letter >= L'a' && letter <= L'z') || (letter >= L'0' && letter <= L'9');
        if (typed && taken.find(letter) == std::wstring::npos) {
            taken += letter;
            return title.substr(0, i) + L"&" + title.substr(i);
        }
    }
    return title;
}
