// Pictures saved, complete or not at all.
#include "text.hpp"
#include "trace.hpp"
#include "viewer.hpp"

#include <commdlg.h>

namespace {

struct Target {
    const wchar_t* filter;
    const wchar_t* pattern;
    const wchar_t* extension;
    int32_t format;
};
constexpr Target targets[] = {
    {L"JPEG (*.jpg)", L"*.jpg;*.jpeg", L"jpg", KIRVO_FILES_JPEG},
    {L"PNG (*.png)", L"*.png", L"png", KIRVO_FILES_PNG},
    {L"Bitmap (*.bmp)", L"*.bmp", L"bmp", KIRVO_FILES_BMP},
    {L"Targa (*.tga)", L"*.tga", L"tga", KIRVO_FILES_TARGA},
};

std::wstring filters() {
    std::wstring text;
    for (const Target& target : targets)
        text += target.filter + std::wstring(1, L'\0') + target.pattern + L'\0';
    return text;
}

DWORD filter_of(const std::wstring& path) {
    const int32_t format = KirvoFilesFormatOf(narrow(path).c_str());
    for (DWORD i = 0; i < std::size(targets); ++i) {
        if (targets[i].format == format)
            return i + 1;
    }
    return 2; // what loses nothing
}

bool complain(Viewer& viewer, const std::string& what) {
    viewer.say(what);
    MessageBoxW(viewer.window, wide(what).c_str(), L"KirvoView", MB_OK | MB_ICONERROR);
    return false;
}

// The person waits for it: a file that is being written is none to leave the program in.
bool write(Viewer& viewer, const std::wstring& path, uint32_t quality) {
    if (viewer.working)
        return complain(viewer, "The program is still working; save when it is done");
    const Worker::Turn turn(viewer.worker, Worker::Turn::Wait::yes);
    const Stopwatch clock;
    KirvoFilesSaveOptions options = {};
    options.size = sizeof options;
    options.quality = quality;
    Known written;
    const int32_t status = KirvoFilesSaveW(path.c_str(), viewer.history.now()->handle(),
                                           viewer.source ? viewer.source->handle() : nullptr,
                                           &options, written.receiver());
    try {
        expect(status, written, narrow(name_in(path)));
    } catch (const Failure& failure) {
        return complain(viewer, failure.what());
    }
    viewer.history.saved();
    viewer.known = std::make_shared<Known>();
    KirvoFilesInfoW(path.c_str(), nullptr, viewer.known->receiver());
    viewer.path = path;
    viewer.title = name_in(path);
    remember_recent(viewer.options, path);
    viewer.refresh_title();
    viewer.say("Saved " + narrow(viewer.title) + ", " +
               std::to_string(written.description().fileBytes) + " bytes");
    trace("saved: " + clock.text());
    return true;
}

bool write_as(Viewer& viewer, const std::wstring& path) {
    uint32_t quality = 0;
    if (KirvoFilesFormatOf(narrow(path).c_str()) == KIRVO_FILES_JPEG) {
        const std::optional<uint32_t> asked = ask_jpeg_quality(viewer);
        if (!asked)
            return false;
        quality = *asked;
    }
    return write(viewer, path, quality);
}

} // namespace

// A file of a format that is not written, or none, gets another name.
bool save(Viewer& viewer) {
    const int32_t format = KirvoFilesFormatOf(narrow(viewer.path).c_str());
    if (viewer.path.empty() || !(KirvoFilesAbilities(format) & KIRVO_FILES_WRITES))
        return save_as(viewer);
    return viewer.history.changed() ? write_as(viewer, viewer.path) : true;
}

bool save_as(Viewer& viewer) {
    const std::wstring filter = filters();
    std::wstring name = name_in(viewer.path);
    name = folder_of(viewer.path) + name.substr(0, name.find_last_of(L'.'));
    name.resize(32768);
    OPENFILENAMEW dialog = {};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = viewer.window;
    dialog.lpstrFilter = filter.c_str();
    dialog.nFilterIndex = filter_of(viewer.path);
    dialog.lpstrFile = name.data();
    dialog.nMaxFile = static_cast<DWORD>(name.size());
    dialog.Flags =
        OFN_EXPLORER | OFN_OVERWRITEPROMPT | OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_PATHMUSTEXIST;
    if (!GetSaveFileNameW(&dialog))
        return false;
    std::wstring path = name.c_str();
    const bool known = KirvoFilesFormatOf(narrow(path).c_str()) != KIRVO_FILES_UNKNOWN;
    if (!known && dialog.nFilterIndex >= 1 && dialog.nFilterIndex <= std::size(targets)) {
        path += std::wstring(L".") + targets[dialog.nFilterIndex - 1].extension;
        if (GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES &&
            MessageBoxW(viewer.window, (name_in(path) + L" exists. Replace it?").c_str(),
                        L"KirvoView", MB_YESNO | MB_ICONWARNING) != IDYES)
            return false;
    }
    return write_as(viewer, path);
}
