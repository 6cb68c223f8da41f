// What the program does beside effects: pictures come in and go out.
#include "driver.hpp"

#include "../../viewer/commands.hpp"
#include "../../viewer/text.hpp"

#include <gtest/gtest.h>
#include <kirvo_files.h>

#include <algorithm>
#include <chrono>
#include <commctrl.h>
#include <cstring>
#include <filesystem>
#include <shlobj.h>

using namespace kirvo_test;

namespace {

Dib picture_of(int width, int height, uint64_t seed = 1, int bits = 24) {
    Random random(seed);
    return make_random_dib({width, height, bits}, random);
}

std::vector<uint8_t> file_bytes(const std::string& name) {
    FILE* file = std::fopen(name.c_str(), "rb");
    std::vector<uint8_t> bytes(1 << 20);
    bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file));
    std::fclose(file);
    return bytes;
}

BOOL CALLBACK is_seen_edit(HWND child, LPARAM parameter) {
    char name[32] = {};
    GetClassNameA(child, name, sizeof name);
    if (_stricmp(name, "Edit") != 0 || !IsWindowVisible(child))
        return TRUE;
    *reinterpret_cast<HWND*>(parameter) = child;
    return FALSE;
}

// The box for a file's name in the system's dialog: its one edit control that is seen.
HWND name_box(HWND dialog) {
    HWND found = nullptr;
    EnumChildWindows(dialog, is_seen_edit, reinterpret_cast<LPARAM>(&found));
    return found;
}

std::string text_in(HWND control) {
    std::vector<char> text(1 << 16);
    SendMessageA(control, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
    return text.data();
}

void apply_negative(Viewer& viewer) {
    viewer.command(viewer.effect("negative"));
    ASSERT_TRUE(viewer.wait_for("says: Negative: "));
}

double milliseconds_to_paint(const Dib& picture) {
    const std::vector<uint8_t> bytes = picture_bytes(picture);
    const auto* info = reinterpret_cast<const BITMAPINFO*>(bytes.data());
    const auto begin = std::chrono::steady_clock::now();
    HDC screen = GetDC(nullptr);
    StretchDIBits(screen, 0, 0, 1280, 900, 0, 0, picture.width(), picture.height(),
                  &bytes[sizeof info->bmiHeader], info, DIB_RGB_COLORS, SRCCOPY);
    GetPixel(screen, 0, 0); // when it is there
    ReleaseDC(nullptr, screen);
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin)
        .count();
}

std::vector<uint8_t> negative_of(const Dib& picture, RECT place) {
    const Dib copy = copy_of(picture);
    EXPECT_EQ(Dib24Negative(copy, place.left, place.top, place.right - place.left,
                            place.bottom - place.top),
              KIRVO_OK);
    return picture_bytes(copy);
}

} // namespace

TEST(Viewer, PastesThePictureOfTheClipboard) {
    Viewer viewer;
    for (const int bits : {1, 4, 8, 24}) {
        const Dib picture = picture_of(19, 7, 2, bits);
        put_on_clipboard(CF_DIB, picture_bytes(picture));
        viewer.command(command_paste);
        ASSERT_TRUE(viewer.wait_for("picture shown")) << bits;
        const std::vector<uint8_t> bytes = viewer.copied();
        BITMAPINFOHEADER header;
        std::memcpy(&header, bytes.data(), sizeof header);
        EXPECT_EQ(header.biBitCount, bits);
        EXPECT_EQ(header.biWidth, 19);
        const std::vector<uint8_t> rows = picture.rows();
        ASSERT_GE(bytes.size(), rows.size());
        if (bits == 24) {
            EXPECT_EQ(
                std::vector<uint8_t>(bytes.end() - static_cast<int>(rows.size()), bytes.end()),
                rows);
        }
    }
}

TEST(Viewer, LivesOnAfterALyingPictureOfTheClipboard) {
    Viewer viewer;
    const Dib picture = picture_of(19, 7);
    std::vector<uint8_t> bytes = picture_bytes(picture);
    BITMAPINFOHEADER header;
    std::memcpy(&header, bytes.data(), sizeof header);
    header.biHeight = 70000;
    std::memcpy(bytes.data(), &header, sizeof header);
    put_on_clipboard(CF_DIB, bytes);
    viewer.command(command_paste);
    ASSERT_TRUE(viewer.wait_for("Pasting failed: "));
    put_on_clipboard(CF_DIB, picture_bytes(picture));
    viewer.command(command_paste);
    EXPECT_TRUE(viewer.wait_for("picture shown"));
}

TEST(Viewer, OpensWhatIsDropped) {
    TempFolder folder;
    const Dib picture = picture_of(8, 8);
    const std::string name = saved(folder, "dropped.bmp", picture);
    Viewer viewer;
    viewer.drop(name);
    ASSERT_TRUE(viewer.wait_for("picture shown"));
    EXPECT_EQ(viewer.copied(), picture_bytes(picture));
}

TEST(Viewer, ShowsAJpegWhileItIsReadAndAbandonsItAtEsc) {
    TempFolder folder;
    const Dib large = picture_of(1200, 900), small = picture_of(9, 9);
    const std::vector<uint8_t> jpeg = file_bytes(saved(folder, "large.jpg", large));
    const char* name = "\\\\.\\pipe\\kirvo_view_test";
    HANDLE pipe =
        CreateNamedPipeA(name, PIPE_ACCESS_OUTBOUND, PIPE_TYPE_BYTE, 1, 1 << 16, 0, 0, nullptr);
    ASSERT_NE(pipe, INVALID_HANDLE_VALUE);
    Viewer viewer(name);
    ConnectNamedPipe(pipe, nullptr);
    // A slow line, on which half of the picture comes.
    size_t sent = 0;
    bool seen = false, told = false;
    for (; !seen && sent < jpeg.size() / 2; sent += 20000) {
        DWORD written = 0;
        WriteFile(pipe, &jpeg[sent], 20000, &written, nullptr);
        Sleep(200);
        told = told || viewer.status(0).find("Reading: ") == 0;
        seen = sent > jpeg.size() / 4 && viewer.wait_for("look at ");
    }
    EXPECT_TRUE(seen);
    EXPECT_TRUE(told);
    viewer.key(VK_ESCAPE);
    for (int i = 0; i < 50 && sent + 1000 < jpeg.size(); ++i, sent += 1000) {
        DWORD written = 0;
        if (!WriteFile(pipe, &jpeg[sent], 1000, &written, nullptr))
            break; // the reader has gone
        Sleep(10);
    }
    EXPECT_TRUE(viewer.wait_for("abandoned"));
    CloseHandle(pipe);
    put_on_clipboard(CF_DIB, picture_bytes(small));
    viewer.command(command_paste);
    EXPECT_TRUE(viewer.wait_for("picture shown"));
}

TEST(Viewer, WalksAFolderByKeys) {
    TempFolder folder;
    saved(folder, "p1.bmp", picture_of(11, 5));
    saved(folder, "p2.bmp", picture_of(12, 5));
    saved(folder, "p10.bmp", picture_of(13, 5));
    folder.write("notes.txt", "no picture");
    Viewer viewer(folder.path("p1.bmp"));
    const auto goes_to = [&](WPARAM key, const std::string& title) {
        viewer.key(key);
        return viewer.wait_for("ready") && viewer.title() == title + " - KirvoView";
    };
    EXPECT_TRUE(goes_to(VK_RIGHT, "p2.bmp")) << viewer.title();
    EXPECT_TRUE(goes_to(VK_RIGHT, "p10.bmp")) << viewer.title();
    EXPECT_TRUE(goes_to(VK_RIGHT, "p1.bmp")) << viewer.title();
    EXPECT_TRUE(goes_to(VK_LEFT, "p10.bmp")) << viewer.title();
}

TEST(Viewer, SaysWhatIsWrongWithAFileAndWalksOn) {
    TempFolder folder;
    const std::string whole = saved(folder, "a.jpg", picture_of(200, 200));
    std::vector<uint8_t> bytes = file_bytes(whole);
    bytes.resize(bytes.size() / 2);
    folder.write("b.jpg", bytes);
    folder.write("c.png", "this is no picture");
    folder.write("d.bmp", "");
    Viewer viewer(whole);
    viewer.key(VK_RIGHT);
    EXPECT_TRUE(viewer.wait_for("ends early"));
    viewer.key(VK_RIGHT);
    EXPECT_TRUE(viewer.wait_for("not opened: c.png: "));
    viewer.key(VK_RIGHT);
    EXPECT_TRUE(viewer.wait_for("not opened: d.bmp: "));
    viewer.key(VK_RIGHT);
    EXPECT_TRUE(viewer.wait_for("picture shown"));
    EXPECT_TRUE(viewer.wait_for("ready"));
    EXPECT_EQ(viewer.title(), "a.jpg - KirvoView");
}

TEST(Viewer, SavesWhatItShows) {
    for (const char* name : {"out.png", "out.bmp", "out.tga"}) {
        SCOPED_TRACE(name);
        TempFolder folder;
        const Dib picture = picture_of(31, 22);
        Viewer viewer(saved(folder, "in.bmp", picture));
        apply_negative(viewer);
        viewer.command(command_save_as);
        HWND dialog = viewer.dialog("Save As");
        ASSERT_NE(dialog, nullptr);
        ASSERT_TRUE(eventually([&] { return name_box(dialog) != nullptr; }));
        set_text(name_box(dialog), folder.path(name));
        PostMessageA(dialog, WM_COMMAND, IDOK, 0);
        ASSERT_TRUE(viewer.wait_for("saved: "));
        EXPECT_EQ(viewer.title(), name + std::string(" - KirvoView"));
        HGLOBAL read = nullptr;
        ASSERT_EQ(KirvoFilesOpen(folder.path(name).c_str(), nullptr, &read, nullptr),
                  KIRVO_FILES_OK);
        EXPECT_EQ(picture_bytes(read), negative_of(picture, {0, 0, 31, 22}));
        GlobalFree(read);
        EXPECT_TRUE(viewer.ends()); // nothing is left to be asked about
    }
}

TEST(Viewer, TellsTheSizeOfAJpegBeforeItIsSaved) {
    TempFolder folder;
    Viewer viewer(saved(folder, "in.bmp", picture_of(64, 64)));
    viewer.command(command_save_as);
    HWND dialog = viewer.dialog("Save As");
    ASSERT_NE(dialog, nullptr);
    ASSERT_TRUE(eventually([&] { return name_box(dialog) != nullptr; }));
    set_text(name_box(dialog), folder.path("out.jpg"));
    PostMessageA(dialog, WM_COMMAND, IDOK, 0);
    dialog = viewer.dialog("Save as JPEG");
    ASSERT_NE(dialog, nullptr);
    ASSERT_TRUE(viewer.wait_for("JPEG of quality 90: "));
    const std::string told = viewer.line().substr(viewer.line().find("90: ") + 4);
    PostMessageA(dialog, WM_COMMAND, IDOK, 0);
    ASSERT_TRUE(viewer.wait_for("saved: "));
    EXPECT_EQ(std::stoul(told), file_bytes(folder.path("out.jpg")).size());
}

TEST(Viewer, AsksBeforeChangesAreLost) {
    TempFolder folder;
    const Dib picture = picture_of(6, 6);
    Viewer viewer(saved(folder, "in.bmp", picture));
    apply_negative(viewer);
    for (const int answer : {IDCANCEL, IDNO}) {
        PostMessageA(viewer.window(), WM_CLOSE, 0, 0);
        HWND question = viewer.dialog("KirvoView");
        ASSERT_NE(question, nullptr);
        PostMessageA(question, WM_COMMAND, static_cast<WPARAM>(answer), 0);
        if (answer == IDCANCEL) {
            ASSERT_TRUE(eventually([&] { return !IsWindow(question); }));
            EXPECT_EQ(viewer.copied(), negative_of(picture, {0, 0, 6, 6})); // it is still there
        }
    }
    EXPECT_TRUE(viewer.ends());
    EXPECT_EQ(file_bytes(folder.path("in.bmp")).size(), 54u + 20 * 6);
}

// By the folder's keys, the command line and a drop.
TEST(Viewer, IsGivenThePathsOfFilesInAnyScript) {
    constexpr wchar_t name[] = L"\u5199\u771F \u0444.bmp";
    TempFolder folder;
    const Dib picture = picture_of(6, 6);
    const std::string plain = saved(folder, "in.bmp", picture);
    const std::filesystem::path strange = std::filesystem::path(plain).parent_path() / name;
    std::filesystem::copy_file(plain, strange);
    const auto expect_strange = [&](Viewer& viewer) {
        EXPECT_EQ(viewer.copied(), picture_bytes(picture));
        wchar_t title[100] = {};
        SendMessageW(viewer.window(), WM_GETTEXT, 100, reinterpret_cast<LPARAM>(title));
        EXPECT_EQ(std::wstring(title), std::wstring(name) + L" - KirvoView");
    };
    Viewer viewer(plain);
    viewer.key(VK_RIGHT); // the only other picture of the folder
    ASSERT_TRUE(viewer.wait_for("ready"));
    expect_strange(viewer);
    viewer.key(VK_RIGHT);
    ASSERT_TRUE(viewer.wait_for("ready"));
    viewer.drop(narrow(strange.wstring()));
    ASSERT_TRUE(viewer.wait_for("ready"));
    expect_strange(viewer);
    Viewer by_line(narrow(strange.wstring()));
    expect_strange(by_line);
}

TEST(Viewer, OpensAFileThatIsStillBeingWritten) {
    TempFolder folder;
    const std::vector<uint8_t> jpeg = file_bytes(saved(folder, "in.jpg", picture_of(200, 200)));
    const std::string name = folder.path("growing.jpg");
    HANDLE file = CreateFileA(name.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_NEW,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    DWORD written = 0;
    WriteFile(file, jpeg.data(), static_cast<DWORD>(jpeg.size() / 2), &written, nullptr);
    Viewer viewer;
    viewer.drop(name);
    EXPECT_TRUE(viewer.wait_for("ends early"));
    CloseHandle(file);
}

TEST(Viewer, TellsWhatTheCameraHasWritten) {
    TempFolder folder;
    std::vector<uint8_t> jpeg = file_bytes(saved(folder, "in.jpg", picture_of(9, 9)));
    const std::vector<uint8_t> exif = {
        0xFF, 0xE1, 0,  46, 'E', 'x', 'i', 'f', 0,   0,                        // 2 + 6 + 38 bytes
        'I',  'I',  42, 0,  8,   0,   0,   0,   2,   0,                        // two entries
        0x0F, 1,    2,  0,  4,   0,   0,   0,   'A', 'B', 'C', 0,              // who has made it
        0x10, 1,    2,  0,  3,   0,   0,   0,   'X', '1', 0,   0, 0, 0, 0, 0}; // the model
    jpeg.insert(jpeg.begin() + 2, exif.begin(), exif.end());
    folder.write("camera.jpg", jpeg);
    Viewer viewer(folder.path("camera.jpg"));
    viewer.command(command_information);
    HWND dialog = viewer.dialog("Information");
    ASSERT_NE(dialog, nullptr);
    const std::string text = text_in(GetDlgItem(dialog, 100));
    for (const char* line :
         {"Format\tJPEG", "Camera\tABC X1", "In the file\t9 ", "Quality\tabout ", "Bytes\t"})
        EXPECT_NE(text.find(line), std::string::npos) << line << " in " << text;
    PostMessageA(dialog, WM_COMMAND, IDOK, 0);
    EXPECT_TRUE(viewer.gone(dialog));
}

TEST(Viewer, UndoesAndRedoesByTheKeyboard) {
    TempFolder folder;
    const Dib picture = picture_of(10, 10);
    Viewer viewer(saved(folder, "in.bmp", picture));
    apply_negative(viewer);
    EXPECT_EQ(viewer.title(), "in.bmp* - KirvoView");
    SetForegroundWindow(viewer.window());
    press({VK_CONTROL, 'Z'});
    ASSERT_TRUE(eventually([&] { return viewer.title() == "in.bmp - KirvoView"; }));
    EXPECT_EQ(viewer.copied(), picture_bytes(picture));
    press({VK_CONTROL, 'Y'});
    ASSERT_TRUE(eventually([&] { return viewer.title() == "in.bmp* - KirvoView"; }));
    EXPECT_EQ(viewer.copied(), negative_of(picture, {0, 0, 10, 10}));
    press({VK_F4}); // once more; behind the keys before it
    ASSERT_TRUE(viewer.wait_for("says: Negative: "));
    EXPECT_EQ(viewer.copied(), picture_bytes(picture));
}

TEST(Viewer, ForgetsTheOldestPicturesBeyondItsBudget) {
    TempFolder folder;
    const Dib picture = picture_of(10, 10);
    Viewer viewer(saved(folder, "in.bmp", picture), "UndoMegabytes=0\r\n");
    apply_negative(viewer);
    viewer.command(command_undo);
    EXPECT_EQ(viewer.copied(), negative_of(picture, {0, 0, 10, 10}));
}

TEST(Viewer, WorksOnASelectionOnly) {
    TempFolder folder;
    const Dib picture = picture_of(40, 30);
    Viewer viewer(saved(folder, "in.bmp", picture));
    viewer.command(command_select);
    HWND dialog = viewer.dialog("Select a rectangle");
    ASSERT_NE(dialog, nullptr);
    const char* values[] = {"5", "6", "20", "10"};
    for (int i = 0; i < 4; ++i)
        set_text(GetDlgItem(dialog, 100 + i), values[i]);
    SendMessageA(dialog, WM_COMMAND, IDOK, 0);
    apply_negative(viewer);
    viewer.command(command_select_none);
    EXPECT_EQ(viewer.copied(), negative_of(picture, {5, 6, 25, 16}));
    viewer.command(command_copy_line);
    EXPECT_TRUE(viewer.wait_for("part of the picture"));
}

TEST(Viewer, ShowsTheCallsAsCodeOfEachLanguage) {
    TempFolder folder;
    const std::string name = saved(folder, "in.bmp", picture_of(40, 30));
    const char* lines[] = {
        "dib2 = Dib24Brightness(dib, 0, 0, 40, 30, 30, &status);",
        "dib2 = Kirvo.Dib24Brightness(dib, 0, 0, 40, 30, 30, out status);",
        "dib2 := Dib24Brightness(dib, 0, 0, 40, 30, 30, status);",
        "dib2 = Dib24Brightness(dib, 0, 0, 40, 30, 30, status)",
        "dib2 = kirvo.Dib24Brightness(dib, 0, 0, 40, 30, 30, byref(status))",
        "dib2 = kirvo::Image::adopt(Dib24Brightness(dib.handle(), 0, 0, 40, 30, 30, &status));",
    };
    for (int language = 0; language < 6; ++language) {
        Viewer viewer(name, "Language=" + std::to_string(language) + "\r\nCode=1\r\n");
        viewer.command(viewer.effect("brightness"));
        HWND dialog = viewer.dialog("Brightness");
        ASSERT_NE(dialog, nullptr);
        SendMessageA(dialog, WM_COMMAND, IDOK, 0);
        ASSERT_TRUE(viewer.wait_for("says: Brightness: "));
        viewer.command(command_copy_code);
        ASSERT_TRUE(viewer.wait_for("says: Copied"));
        EXPECT_NE(clipboard_text().find(lines[language]), std::string::npos) << clipboard_text();
        viewer.command(command_copy_line);
        ASSERT_TRUE(viewer.wait_for("says: Copied"));
        EXPECT_NE(clipboard_text().find("in-changed.bmp --brightness 30"), std::string::npos);
    }
}

TEST(Viewer, RefusesValuesOutOfTheirRangeInItsDialog) {
    TempFolder folder;
    const Dib picture = picture_of(40, 30);
    Viewer viewer(saved(folder, "in.bmp", picture));
    viewer.command(viewer.effect("brightness"));
    HWND dialog = viewer.dialog("Brightness");
    ASSERT_NE(dialog, nullptr);
    set_text(GetDlgItem(dialog, 100), "101");
    EXPECT_FALSE(IsWindowEnabled(GetDlgItem(dialog, IDOK)));
    EXPECT_EQ(text_in(GetDlgItem(dialog, 90)), "-100 to 100, not '101'");
    set_text(GetDlgItem(dialog, 100), "100");
    EXPECT_TRUE(IsWindowEnabled(GetDlgItem(dialog, IDOK)));
    EXPECT_TRUE(viewer.wait_for("preview --brightness of 40 x 30"));
    SendMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
    EXPECT_EQ(viewer.copied(), picture_bytes(picture)); // the look has changed nothing
}

// On a reduced picture at once, and on what can be seen when the values rest.
TEST(Viewer, LooksAtAReducedPictureFirstThenAtTheVisiblePart) {
    TempFolder folder;
    Viewer viewer(saved(folder, "in.bmp", picture_of(1600, 900)), "Width=600\r\nHeight=500\r\n");
    HWND view = FindWindowExA(viewer.window(), nullptr, "KirvoView.Picture", nullptr);
    RECT area;
    GetClientRect(view, &area);
    ASSERT_GT(area.right, 100);
    const auto expect_size = [&](int width, int height) {
        int seen_width = 0, seen_height = 0;
        ASSERT_TRUE(viewer.wait_for("preview --brightness of "));
        ASSERT_EQ(std::sscanf(viewer.line().c_str(), "%*f preview --brightness of %d x %d",
                              &seen_width, &seen_height),
                  2);
        EXPECT_NEAR(seen_width, width, 1); // parts of pixels at the edges
        EXPECT_NEAR(seen_height, height, 1);
    };
    viewer.command(command_one_to_one);
    viewer.command(viewer.effect("brightness"));
    HWND dialog = viewer.dialog("Brightness");
    ASSERT_NE(dialog, nullptr);
    const int width = std::min<int>(area.right, area.bottom * 16 / 9);
    expect_size(width, width * 9 / 16);
    expect_size(area.right, area.bottom);
    PostMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
    EXPECT_TRUE(viewer.gone(dialog));

    // Of pixels that are seen larger there are no more than the picture has.
    for (int i = 0; i < 3; ++i)
        viewer.command(command_zoom_in);
    viewer.command(viewer.effect("brightness"));
    expect_size(width, width * 9 / 16);
    constexpr double scale = 1.25 * 1.25 * 1.25;
    expect_size(static_cast<int>(area.right / scale), static_cast<int>(area.bottom / scale));
}

// The first look at a picture that is reduced, and those that follow the slider. A machine that is busy
// takes longer, for what the test itself paints, too.
TEST(Viewer, ShowsALookAtAMegapixelWithin40Milliseconds) {
    TempFolder folder;
    const Dib picture = picture_of(1600, 1200);
    Viewer viewer(saved(folder, "in.bmp", picture), "Maximised=1\r\n");
    const auto seen_after = [&] {
        EXPECT_TRUE(viewer.wait_for("preview --brightness of "));
        const size_t at = viewer.line().find("seen after ");
        return at == std::string::npos ? 1e9 : std::stod(viewer.line().substr(at + 11));
    };
    double first = 1e9, next = 1e9, paint = 1e9;
    for (int i = 0; i < 5; ++i) {
        viewer.command(viewer.effect("brightness"));
        HWND dialog = viewer.dialog("Brightness");
        ASSERT_NE(dialog, nullptr);
        first = std::min(first, seen_after());
        SendMessageA(GetDlgItem(dialog, 200), TBM_SETPOS, TRUE, -40 + i);
        SendMessageA(dialog, WM_HSCROLL, TB_THUMBTRACK,
                     reinterpret_cast<LPARAM>(GetDlgItem(dialog, 200)));
        next = std::min(next, seen_after());
        PostMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
        EXPECT_TRUE(viewer.gone(dialog));
        paint = std::min(paint, milliseconds_to_paint(picture));
    }
    RecordProperty("first", static_cast<int>(first * 1000));
    RecordProperty("next", static_cast<int>(next * 1000));
    EXPECT_LE(first, std::max(40.0, 4 * paint));
    EXPECT_LE(next, std::max(40.0, 4 * paint));
}

TEST(Viewer, TellsHowFarAnEffectIs) {
    TempFolder folder;
    Viewer viewer(saved(folder, "in.bmp", picture_of(2000, 1500)));
    viewer.command(viewer.effect("blur"));
    EXPECT_TRUE(viewer.wait_for("says: Working: "));
    EXPECT_TRUE(viewer.wait_for("says: Blur: "));
}

TEST(Viewer, CountsColoursInItsHistogram) {
    TempFolder folder;
    Dib picture = picture_of(3, 1);
    for (int x = 0; x < 3; ++x)
        picture.set_pixel(x, 0, static_cast<uint32_t>(x));
    Viewer viewer(saved(folder, "in.bmp", picture));
    viewer.command(command_histogram);
    EXPECT_TRUE(viewer.wait_for("histogram of 3 colours"));
    viewer.command(viewer.effect("flip"));
    EXPECT_TRUE(viewer.wait_for("histogram of 3 colours")); // it follows
}

TEST(Viewer, RemembersInItsOneFile) {
    TempFolder folder;
    Viewer viewer(saved(folder, "in.bmp", picture_of(5, 5)));
    viewer.command(command_theme_dark);
    viewer.command(command_code);
    EXPECT_TRUE(viewer.ends());
    const std::string settings = viewer.settings();
    for (const char* line : {"Theme=2", "Code=1", "Recent1=", "in.bmp", "Width="})
        EXPECT_NE(settings.find(line), std::string::npos) << line;
}

// What was there before comes back.
TEST(Viewer, KeepsItsSettingsInAppDataWhereNoneLieBesideIt) {
    char app_data[MAX_PATH] = {};
    SHGetFolderPathA(nullptr, CSIDL_APPDATA, nullptr, 0, app_data);
    const std::filesystem::path file = std::filesystem::path(app_data) / "Kirvo" / "KirvoView.ini",
                                aside = file.parent_path() / "KirvoView.aside";
    const bool had_one = std::filesystem::exists(file);
    if (had_one)
        std::filesystem::rename(file, aside);
    Viewer viewer("", Viewer::in_app_data);
    viewer.command(command_theme_dark);
    EXPECT_TRUE(viewer.ends());
    EXPECT_FALSE(std::filesystem::exists(viewer.folder().path("KirvoView.ini")));
    wchar_t theme[8] = {};
    GetPrivateProfileStringW(L"KirvoView", L"Theme", L"", theme, 8, file.c_str());
    EXPECT_EQ(std::wstring(theme), L"2");
    std::filesystem::remove(file);
    if (had_one)
        std::filesystem::rename(aside, file);
}

// One after the other, from the first to the last of so many.
static void look_through(const std::string& first, int count) {
    ASSERT_GT(count, 0);
    Viewer viewer(first);
    for (int i = 1; i < count; ++i) {
        viewer.key(VK_RIGHT);
        ASSERT_TRUE(viewer.wait_for("ready")) << "after " << viewer.title();
    }
    EXPECT_TRUE(viewer.ends());
}

// Those, too, that are meant for readers of something else than files.
TEST(Viewer, AnswersEveryHostileFile) {
    for (const char* room : {KIRVO_FUZZ "/corpus", KIRVO_FUZZ "/regressions"}) {
        for (const auto& target : std::filesystem::directory_iterator(room)) {
            if (!target.is_directory())
                continue;
            SCOPED_TRACE(target.path().filename().string());
            TempFolder folder;
            int count = 0;
            for (const auto& entry : std::filesystem::directory_iterator(target.path()))
                std::filesystem::copy_file(entry.path(),
                                           folder.path(std::to_string(++count) + ".bmp"),
                                           std::filesystem::copy_options::overwrite_existing);
            look_through(folder.path("1.bmp"), count);
        }
    }
}

TEST(Viewer, AnswersFilesOfTheWorld) {
    TempFolder folder;
    int count = 0;
    std::string first;
    for (const auto& entry : std::filesystem::directory_iterator(KIRVO_WORLD)) {
        const std::string ending = entry.path().extension().string();
        if (ending != ".bmp" && ending != ".jpg" && ending != ".tga" && ending != ".ico")
            continue;
        first = folder.path(std::to_string(++count) + ending);
        std::filesystem::copy_file(entry.path(), first);
    }
    look_through(first, count);
}
