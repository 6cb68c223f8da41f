#include "settings.hpp"

#include "calls/code.hpp"
#include "commands.hpp"
#include "text.hpp"

#include <shlobj.h>

#include <algorithm>

namespace {

constexpr wchar_t section[] = L"KirvoView";

std::wstring beside_program() {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return path.substr(0, path.find_last_of(L'.')) + L".ini";
}

const std::wstring& ini_file() {
    static const std::wstring name = [] {
        const std::wstring beside = beside_program();
        if (GetFileAttributesW(beside.c_str()) != INVALID_FILE_ATTRIBUTES)
            return beside;
        wchar_t folder[MAX_PATH] = {};
        SHGetFolderPathW(nullptr, CSIDL_APPDATA | CSIDL_FLAG_CREATE, nullptr, 0, folder);
        return std::wstring(folder) + L"\\Kirvo\\KirvoView.ini";
    }();
    return name;
}

// With the mark of UTF-16 at its beginning, the file takes names in any script.
void make_ini_file() {
    CreateDirectoryW(folder_of(ini_file()).c_str(), nullptr);
    HANDLE file = CreateFileW(ini_file().c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return;
    constexpr wchar_t mark = 0xFEFF;
    DWORD written;
    WriteFile(file, &mark, sizeof mark, &written, nullptr);
    CloseHandle(file);
}

int number(const wchar_t* key, int otherwise) {
    return static_cast<int>(GetPrivateProfileIntW(section, key, otherwise, ini_file().c_str()));
}

std::wstring text(const std::wstring& key) {
    std::wstring value(32768, L'\0');
    value.resize(GetPrivateProfileStringW(section, key.c_str(), L"", value.data(),
                                          static_cast<DWORD>(value.size()), ini_file().c_str()));
    return value;
}

void put(const std::wstring& key, const std::wstring& value) {
    WritePrivateProfileStringW(section, key.c_str(), value.empty() ? nullptr : value.c_str(),
                               ini_file().c_str());
}

void put(const wchar_t* key, long long value) { put(key, digits(value)); }

std::wstring recent_key(size_t i) { return L"Recent" + digits(i + 1); }

} // namespace

Options read_options() {
    Options options;
    options.theme = static_cast<Theme>(std::clamp(number(L"Theme", 0), 0, 2));
    options.language = std::clamp(number(L"Language", 0), 0, language_count - 1);
    options.code = number(L"Code", 0) != 0;
    options.histogram = number(L"Histogram", 0) != 0;
    options.maximised = number(L"Maximised", 0) != 0;
    const auto length = [](const wchar_t* key) {
        return std::clamp(number(key, 0), -32768, 32767);
    };
    options.window.left = length(L"Left");
    options.window.top = length(L"Top");
    options.window.right = options.window.left + length(L"Width");
    options.window.bottom = options.window.top + length(L"Height");
    constexpr int most = sizeof(void*) == 4 ? 1024 : 1 << 20; // of a program's addresses
    options.undo_megabytes = static_cast<size_t>(
        std::clamp(number(L"UndoMegabytes", static_cast<int>(options.undo_megabytes)), 0, most));
    for (size_t i = 0; i < recent_count; ++i) {
        const std::wstring name = text(recent_key(i));
        if (!name.empty())
            options.recent.push_back(name);
    }
    return options;
}

void write_options(const Options& options) {
    make_ini_file();
    put(L"Theme", static_cast<int>(options.theme));
    put(L"Language", options.language);
    put(L"Code", options.code);
    put(L"Histogram", options.histogram);
    put(L"Maximised", options.maximised);
    put(L"Left", options.window.left);
    put(L"Top", options.window.top);
    put(L"Width", options.window.right - options.window.left);
    put(L"Height", options.window.bottom - options.window.top);
    put(L"UndoMegabytes", static_cast<long long>(options.undo_megabytes));
    for (size_t i = 0; i < recent_count; ++i)
        put(recent_key(i), i < options.recent.size() ? options.recent[i] : L"");
}

void forget_recent(Options& options, const std::wstring& name) {
    std::erase_if(options.recent, [&](const std::wstring& other) {
        return CompareStringOrdinal(other.c_str(), -1, name.c_str(), -1, TRUE) == CSTR_EQUAL;
    });
}

void remember_recent(Options& options, const std::wstring& name) {
    forget_recent(options, name);
    options.recent.insert(options.recent.begin(), name);
    if (options.recent.size() > recent_count)
        options.recent.resize(recent_count);
}
