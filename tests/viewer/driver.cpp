#include "driver.hpp"

#include "../../viewer/commands.hpp"
#include "../../viewer/text.hpp"

#include <commctrl.h>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <kirvo_files.h>
#include <shlobj.h>
#include <sstream>

namespace kirvo_test {
namespace {

constexpr int patience = 30000; // milliseconds, on a machine that has other work

std::string file_text(const std::string& name, size_t from = 0) {
    std::ifstream file(name, std::ios::binary);
    file.seekg(static_cast<std::streamoff>(from));
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

struct Search {
    DWORD process;
    std::string title, window_class;
    HWND found;
};

BOOL CALLBACK is_wanted(HWND window, LPARAM parameter) {
    auto& wanted = *reinterpret_cast<Search*>(parameter);
    DWORD owner = 0;
    char name[256] = {}, text[256] = {};
    GetWindowThreadProcessId(window, &owner);
    GetClassNameA(window, name, sizeof name);
    if (owner != wanted.process || name != wanted.window_class || !IsWindowVisible(window))
        return TRUE;
    GetWindowTextA(window, text, sizeof text);
    if (!wanted.title.empty() && text != wanted.title)
        return TRUE;
    wanted.found = window;
    return FALSE;
}

HWND window_of(DWORD process, const std::string& window_class, const std::string& title) {
    Search search = {process, title, window_class, nullptr};
    EnumWindows(is_wanted, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

} // namespace

bool eventually(bool (*holds)(void*), void* context) {
    for (int waited = 0; waited < patience; waited += 10) {
        if (holds(context))
            return true;
        Sleep(10);
    }
    return false;
}

Viewer::Viewer(const std::string& picture, const std::string& settings) {
    for (const char* name : {"KirvoView.exe", "Kirvo.dll", "KirvoFiles.dll"})
        std::filesystem::copy_file(name, folder_.path(name),
                                   std::filesystem::copy_options::overwrite_existing);
    if (settings != in_app_data)
        folder_.write("KirvoView.ini", "[KirvoView]\r\n" + settings);
    std::string line =
        "\"" + folder_.path("KirvoView.exe") + "\" --trace \"" + folder_.path("log.txt") + "\"";
    if (!picture.empty())
        line += " \"" + picture + "\"";
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    std::wstring wide_line = wide(line);
    CreateProcessW(nullptr, wide_line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                   &startup, &process_);
    EXPECT_TRUE(wait_for("window shown"));
    EXPECT_TRUE(eventually([&] {
        window_ = window_of(process_.dwProcessId, "KirvoView", "");
        return window_ != nullptr;
    }));
    if (!picture.empty() && picture.substr(0, 4) != "\\\\.\\") {
        EXPECT_TRUE(wait_for("ready"));
    }
}

Viewer::~Viewer() {
    if (WaitForSingleObject(process_.hProcess, 0) == WAIT_TIMEOUT) {
        TerminateProcess(process_.hProcess, 1);
        WaitForSingleObject(process_.hProcess, patience);
    }
    CloseHandle(process_.hThread);
    CloseHandle(process_.hProcess);
    // The system may keep the program's file for a moment.
    eventually([&] {
        std::error_code error;
        std::filesystem::remove(folder_.path("KirvoView.exe"), error);
        return !error;
    });
}

void Viewer::command(int id) const {
    PostMessageA(window_, WM_COMMAND, static_cast<WPARAM>(id), 0);
}

void Viewer::key(WPARAM key) const {
    PostMessageA(window_, WM_KEYDOWN, key, 1);
    PostMessageA(window_, WM_KEYUP, key, static_cast<LPARAM>(0xC0000001));
}

// A drop comes as a block in the program's own memory.
void Viewer::send(HWND window, UINT message, WPARAM wparam, const RECT& rectangle) const {
    void* there = VirtualAllocEx(process_.hProcess, nullptr, sizeof rectangle,
                                 MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
    WriteProcessMemory(process_.hProcess, there, &rectangle, sizeof rectangle, nullptr);
    SendMessageA(window, message, wparam, reinterpret_cast<LPARAM>(there));
    VirtualFreeEx(process_.hProcess, there, 0, MEM_RELEASE);
}

void Viewer::drop(const std::string& name) const {
    const std::wstring wide_name = wide(name);
    std::vector<char> block(sizeof(DROPFILES) +
                            (wide_name.size() + 2) * sizeof(wchar_t)); // two ends
    const DROPFILES head = {sizeof head, {}, FALSE, TRUE};
    std::memcpy(block.data(), &head, sizeof head);
    std::memcpy(&block[sizeof head], wide_name.data(), wide_name.size() * sizeof(wchar_t));
    void* there = VirtualAllocEx(process_.hProcess, nullptr, block.size(), MEM_COMMIT | MEM_RESERVE,
                                 PAGE_READWRITE);
    WriteProcessMemory(process_.hProcess, there, block.data(), block.size(), nullptr);
    PostMessageA(window_, WM_DROPFILES, reinterpret_cast<WPARAM>(there), 0);
}

std::string Viewer::log(size_t from) const { return file_text(folder_.path("log.txt"), from); }

int Viewer::effect(const std::string& option) const {
    const std::string text = log();
    const size_t end = text.find(" is --" + option + "\r");
    const size_t start = text.rfind("command ", end);
    return end == std::string::npos ? 0 : std::stoi(text.substr(start + 8));
}

int Viewer::effect_count() const {
    const std::string text = log();
    int count = 0;
    for (size_t at = 0; (at = text.find(" is --", at)) != std::string::npos; ++at)
        ++count;
    return count;
}

bool Viewer::wrote(const std::string& words) {
    const std::string text = log(seen_);
    const size_t at = text.find(words);
    const size_t end = at == std::string::npos ? at : text.find('\n', at);
    if (end == std::string::npos)
        return false;
    const size_t start = text.rfind('\n', at) + 1; // 0 where there is none
    line_ = text.substr(start, end - start);
    seen_ += end;
    return true;
}

bool Viewer::wait_for(const std::string& words) {
    return eventually([&] { return wrote(words); });
}

HWND Viewer::dialog_now() const { return window_of(process_.dwProcessId, "#32770", ""); }

HWND Viewer::dialog(const std::string& title) const {
    HWND found = nullptr;
    eventually([&] {
        found = window_of(process_.dwProcessId, "#32770", title);
        return found != nullptr;
    });
    return found;
}

bool Viewer::gone(HWND dialog) const {
    return eventually([&] { return !IsWindow(dialog); });
}

std::string Viewer::title() const {
    char text[1024] = {};
    GetWindowTextA(window_, text, sizeof text);
    return text;
}

bool Viewer::ends() {
    PostMessageA(window_, WM_CLOSE, 0, 0);
    return WaitForSingleObject(process_.hProcess, patience) == WAIT_OBJECT_0;
}

bool Viewer::has_ended() const {
    return WaitForSingleObject(process_.hProcess, patience) == WAIT_OBJECT_0;
}

void Viewer::to_front() const {
    EXPECT_TRUE(eventually([&] {
        return (GetForegroundWindow() == window_ && focus() == window_) ||
               (SetForegroundWindow(window_), false);
    }));
}

GUITHREADINFO Viewer::thread() const {
    GUITHREADINFO info = {};
    info.cbSize = sizeof info;
    GetGUIThreadInfo(GetWindowThreadProcessId(window_, nullptr), &info);
    return info;
}

HWND Viewer::focus() const { return thread().hwndFocus; }

bool Viewer::in_menu() const { return (thread().flags & GUI_INMENUMODE) != 0; }

HWND Viewer::popup(const std::string& window_class, const std::string& title) const {
    return window_of(process_.dwProcessId, window_class, title);
}

HWND Viewer::code() const {
    HWND edit = FindWindowExA(window_, nullptr, "Edit", nullptr);
    return IsWindowVisible(edit) ? edit : nullptr;
}

std::string Viewer::status(int part) const {
    HWND bar = FindWindowExA(window_, nullptr, "msctls_statusbar32", nullptr);
    char text[512] = {};
    void* there = VirtualAllocEx(process_.hProcess, nullptr, sizeof text, MEM_COMMIT | MEM_RESERVE,
                                 PAGE_READWRITE);
    SendMessageA(bar, SB_GETTEXTA, static_cast<WPARAM>(part), reinterpret_cast<LPARAM>(there));
    ReadProcessMemory(process_.hProcess, there, text, sizeof text - 1, nullptr);
    VirtualFreeEx(process_.hProcess, there, 0, MEM_RELEASE);
    return text;
}

std::string Viewer::settings() const { return file_text(folder_.path("KirvoView.ini")); }

std::vector<uint8_t> Viewer::copied() {
    command(command_copy);
    EXPECT_TRUE(wait_for("says: Copied"));
    return clipboard_picture();
}

std::vector<uint8_t> picture_bytes(HGLOBAL dib) {
    Dib image(dib);
    const std::vector<uint8_t> bytes = image.bytes();
    image.release();
    return bytes;
}

std::vector<uint8_t> clipboard_picture() {
    std::vector<uint8_t> bytes;
    if (!eventually([] { return OpenClipboard(nullptr) != 0; }))
        return bytes;
    if (HGLOBAL block = GetClipboardData(CF_DIB))
        bytes = picture_bytes(block);
    CloseClipboard();
    return bytes;
}

void press(const std::vector<WORD>& keys) {
    std::vector<INPUT> inputs(keys.size() * 2);
    for (size_t i = 0; i < keys.size(); ++i) {
        inputs[i].type = INPUT_KEYBOARD;
        inputs[i].ki.wVk = keys[i];
        inputs[inputs.size() - 1 - i] = inputs[i];
        inputs[inputs.size() - 1 - i].ki.dwFlags = KEYEVENTF_KEYUP;
    }
    SendInput(static_cast<UINT>(inputs.size()), inputs.data(), sizeof(INPUT));
}

void set_text(HWND control, const std::string& text) {
    SendMessageA(control, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

std::string saved(const TempFolder& folder, const std::string& name, const Dib& picture) {
    const std::string path = folder.path(name);
    EXPECT_EQ(KirvoFilesSave(path.c_str(), picture, nullptr, nullptr, nullptr), KIRVO_FILES_OK);
    return path;
}

std::string clipboard_text() {
    std::string text;
    if (!eventually([] { return OpenClipboard(nullptr) != 0; }))
        return text;
    if (HGLOBAL block = GetClipboardData(CF_UNICODETEXT)) {
        const auto* wide = static_cast<const wchar_t*>(GlobalLock(block));
        for (; *wide != 0; ++wide)
            text += static_cast<char>(*wide);
        GlobalUnlock(block);
    }
    CloseClipboard();
    return text;
}

void put_on_clipboard(UINT format, const std::vector<uint8_t>& bytes) {
    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, bytes.size());
    std::memcpy(GlobalLock(block), bytes.data(), bytes.size());
    GlobalUnlock(block);
    ASSERT_TRUE(eventually([] { return OpenClipboard(nullptr) != 0; }));
    EmptyClipboard();
    SetClipboardData(format, block);
    CloseClipboard();
}

} // namespace kirvo_test
