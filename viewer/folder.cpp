// The pictures of a folder in the order in which people see them.
#include "text.hpp"
#include "viewer.hpp"

#include <shlwapi.h>

#include <algorithm>

namespace {

bool comes_before(const std::wstring& a, const std::wstring& b) {
    return StrCmpLogicalW(a.c_str(), b.c_str()) < 0;
}

std::vector<std::wstring> pictures_in(const std::wstring& folder) {
    std::vector<std::wstring> names;
    WIN32_FIND_DATAW entry;
    HANDLE search = FindFirstFileW((folder + L"*").c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE)
        return names;
    do {
        const int32_t format = KirvoFilesFormatOf(narrow(entry.cFileName).c_str());
        if (!(entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) &&
            (KirvoFilesAbilities(format) & KIRVO_FILES_READS))
            names.emplace_back(entry.cFileName);
    } while (FindNextFileW(search, &entry));
    FindClose(search);
    std::sort(names.begin(), names.end(), comes_before);
    return names;
}

} // namespace

// Behind the last comes the first. The picture itself may be gone, or have an unusual name: its place
// is where its name would be.
std::wstring neighbour(const std::wstring& path, int distance) {
    const std::wstring folder = folder_of(path), name = name_in(path);
    std::vector<std::wstring> names = pictures_in(folder);
    if (std::find(names.begin(), names.end(), name) == names.end())
        names.insert(std::lower_bound(names.begin(), names.end(), name, comes_before), name);
    if (names.size() < 2)
        return L"";
    const auto count = static_cast<std::ptrdiff_t>(names.size());
    const auto place = std::find(names.begin(), names.end(), name) - names.begin();
    return folder + names[static_cast<size_t>((place + distance + count) % count)];
}
