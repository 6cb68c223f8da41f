#include "system/names.hpp"

#include <algorithm>
#include <windows.h>

#include <shellapi.h>

namespace fs = std::filesystem;

namespace {

constexpr wchar_t any_length[] = L"\\\\?\\";
// Longer names need the prefix, which wants them whole: folders have less room than files.
constexpr size_t short_enough = 240;

std::wstring wide(const std::string& text) {
    const auto length = static_cast<int>(text.size());
    std::wstring result(text.size(), L'\0');
    result.resize(static_cast<size_t>(
        MultiByteToWideChar(CP_UTF8, 0, text.data(), length, result.data(), length)));
    return result;
}

std::string narrow(const std::wstring& text) {
    const auto length = static_cast<int>(text.size());
    std::string result(3 * text.size(), '\0');
    result.resize(static_cast<size_t>(
        WideCharToMultiByte(CP_UTF8, 0, text.data(), length, result.data(),
                            static_cast<int>(result.size()), nullptr, nullptr)));
    return result;
}

std::wstring whole(const std::wstring& name) {
    std::wstring result(GetFullPathNameW(name.c_str(), 0, nullptr, nullptr), L'\0');
    result.resize(
        GetFullPathNameW(name.c_str(), static_cast<DWORD>(result.size()), result.data(), nullptr));
    return result;
}

} // namespace

// Not the C runtime's words: those are in the code page of the system, which may lack letters.
std::vector<std::string> words_of_the_command_line(int, char**) {
    int count = 0;
    wchar_t** words = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> result;
    for (int i = 1; i < count; ++i)
        result.push_back(narrow(words[i]));
    LocalFree(words);
    return result;
}

fs::path path_of(const std::string& name) {
    const std::wstring text = wide(name);
    if (text.size() < short_enough / 2 || text.starts_with(any_length))
        return text;
    const std::wstring full = whole(text);
    if (full.size() < short_enough || full.starts_with(L"\\\\"))
        return text;
    return any_length + full;
}

std::string text_of(const fs::path& path) {
    const std::wstring& text = path.native();
    return narrow(text.starts_with(any_length) ? text.substr(4) : text);
}

std::vector<std::string> expanded(const std::string& pattern) {
    if (pattern.find_first_of("*?") == std::string::npos)
        return {pattern};
    const fs::path folder = path_of(pattern).parent_path();
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW(path_of(pattern).c_str(), &found);
    if (search == INVALID_HANDLE_VALUE)
        return {pattern};
    std::vector<std::string> names;
    do {
        if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY))
            names.push_back(text_of(folder / found.cFileName));
    } while (FindNextFileW(search, &found));
    FindClose(search);
    std::sort(names.begin(), names.end());
    return names.empty() ? std::vector<std::string>{pattern} : names;
}
