// Pictures opened: by the dialog, a drop, the command line, the folder, the recent ones.
#include "commands.hpp"
#include "effects/effects.hpp"
#include "reading.hpp"
#include "text.hpp"
#include "trace.hpp"
#include "viewer.hpp"

#include <commdlg.h>

namespace {

// "Pictures", then each format that this system can read.
std::wstring filters() {
    std::wstring all, each;
    for (int32_t format = 1; format < KIRVO_FILES_FORMATS; ++format) {
        if (!(KirvoFilesAbilities(format) & KIRVO_FILES_READS))
            continue;
        char text[256] = {};
        KirvoFilesFormatText(format, KIRVO_FILES_FORMAT_NAME, text, sizeof text);
        const std::wstring name = wide(text);
        text[0] = '\0';
        KirvoFilesFormatText(format, KIRVO_FILES_FORMAT_EXTENSIONS, text, sizeof text);
        std::wstring patterns = L"*.";
        for (const char* character = text; *character != '\0'; ++character)
            patterns +=
                *character == ' ' ? L";*." : std::wstring(1, static_cast<wchar_t>(*character));
        all += (all.empty() ? L"" : L";") + patterns;
        each += name + L'\0' + patterns + L'\0';
    }
    return L"Pictures" + std::wstring(1, L'\0') + all + L'\0' + each + L"All files" + L'\0' +
           L"*.*" + L'\0';
}

std::string notes_of(const Known& known) {
    std::string text;
    for (const std::string& note : told_notes(known))
        text += (text.empty() ? "" : "; ") + note;
    return text;
}

void show_opened(Viewer& viewer, const std::wstring& path, const Opened& opened) {
    viewer.view.smooth(opened.image, opened.fitted);
    begin_picture(viewer, opened.image, opened.known, path, name_in(path));
    remember_recent(viewer.options, path);
    const std::string notes = notes_of(*opened.known);
    if (!notes.empty())
        viewer.say(notes);
}

// Devices are not asked: that would be the one look which a pipe allows.
DWORD attributes_of(const std::wstring& path) {
    return path.starts_with(L"\\\\.\\") ? 0 : GetFileAttributesW(path.c_str());
}

// In the window instead of in its way: a folder is walked over broken files too.
void show_failure(Viewer& viewer, const std::wstring& path, const std::string& error) {
    if (viewer.abandoned) {
        viewer.view.show(viewer.history.now());
    } else {
        if (attributes_of(path) == INVALID_FILE_ATTRIBUTES)
            forget_recent(viewer.options, path);
        viewer.history = History();
        viewer.history.set_budget(viewer.options.undo_megabytes << 20);
        viewer.known = viewer.source = nullptr;
        viewer.path = viewer.origin = path;
        viewer.title = name_in(path);
        viewer.picture_changed();
        viewer.view.show_words(wide(error));
    }
    viewer.say(error);
}

std::wstring full_name(const std::wstring& name) {
    std::wstring full(32768, L'\0');
    const DWORD length =
        GetFullPathNameW(name.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    return length > 0 && length < full.size() ? full.substr(0, length) : name;
}

// Of a folder, its first picture; empty where it has none.
std::wstring picture_of(const std::wstring& path) {
    const DWORD attributes = attributes_of(path);
    if (attributes == INVALID_FILE_ATTRIBUTES || !(attributes & FILE_ATTRIBUTE_DIRECTORY))
        return path;
    return neighbour(path.back() == L'\\' ? path : path + L"\\", 1);
}

} // namespace

bool may_leave_picture(Viewer& viewer) {
    if (!viewer.history.changed())
        return true;
    const std::wstring question = L"Save the changes to " + viewer.title + L"?";
    switch (MessageBoxW(viewer.window, question.c_str(), L"KirvoView",
                        MB_YESNOCANCEL | MB_ICONQUESTION)) {
    case IDYES:
        return save(viewer);
    case IDNO:
        return true;
    default:
        return false;
    }
}

void ask_and_open(Viewer& viewer) {
    if (!may_leave_picture(viewer))
        return;
    const std::wstring filter = filters();
    const std::wstring folder = folder_of(viewer.path);
    std::wstring name(32768, L'\0');
    OPENFILENAMEW dialog = {};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = viewer.window;
    dialog.lpstrFilter = filter.c_str();
    dialog.lpstrFile = name.data();
    dialog.nMaxFile = static_cast<DWORD>(name.size());
    dialog.lpstrInitialDir = folder.empty() ? nullptr : folder.c_str();
    dialog.Flags = OFN_EXPLORER | OFN_FILEMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
    if (GetOpenFileNameW(&dialog))
        open_file(viewer, std::wstring(name.c_str()));
}

void open_file(Viewer& viewer, const std::wstring& name) {
    const std::wstring path = picture_of(full_name(name));
    if (path.empty())
        return viewer.say("There is no picture in " + narrow(name));
    const auto opened = std::make_shared<Opened>();
    viewer.begin_work("Opening " + narrow(name_in(path)));
    RECT room;
    GetClientRect(viewer.view.window(), &room);
    Reading reading = {
        path, &viewer.abandoned, viewer.window, command_progress, {room.right, room.bottom}, {},
        {}};
    reading.look = [&viewer](SharedImage image) {
        viewer.worker.tell([&viewer, image] {
            if (!viewer.abandoned)
                viewer.view.show(image);
        });
    };
    reading.read = [&viewer](uint64_t bytes, uint64_t of) {
        const std::string text =
            of > 0 ? "Reading: " + std::to_string(bytes * 100 / of) + " %; Esc abandons"
                   : "Reading: " + std::to_string(bytes >> 10) + " KB; Esc abandons";
        viewer.worker.tell([&viewer, text] { viewer.say(text); });
    };
    viewer.worker.post(
        Worker::Kind::picture,
        [=] {
            forget_effects();
            *opened = read_picture_file(reading);
        },
        [=, &viewer](const std::string& error) {
            viewer.end_work();
            trace(error.empty() ? "opened" : "not opened: " + error);
            if (error.empty())
                show_opened(viewer, path, *opened);
            else
                show_failure(viewer, path, error);
            trace("ready");
        });
}

void begin_picture(Viewer& viewer, SharedImage image, std::shared_ptr<Known> known,
                   const std::wstring& path, const std::wstring& title) {
    const bool same = viewer.view.image() == image;
    viewer.history.begin(std::move(image));
    viewer.known = viewer.source = std::move(known);
    viewer.path = viewer.origin = path;
    viewer.title = title;
    viewer.say("");
    if (!same)
        viewer.view.select({});
    viewer.picture_changed();
    viewer.view.fit();
    UpdateWindow(viewer.view.window());
    trace("picture shown");
}
