// What nobody should do to the program, and somebody will.
#include "driver.hpp"

#include "../../viewer/commands.hpp"

#include <gtest/gtest.h>
#include <kirvo_files.h>

#include <algorithm>
#include <commctrl.h>
#include <cstring>
#include <filesystem>

using namespace kirvo_test;

namespace {

Dib picture_of(int width, int height, int bits = 24) {
    Random random(static_cast<uint64_t>(width + height + bits));
    return make_random_dib({width, height, bits}, random);
}

std::vector<uint8_t> negative_of(const Dib& picture) {
    const Dib copy = copy_of(picture);
    EXPECT_EQ(Dib24Negative(copy, 0, 0, picture.width(), picture.height()), KIRVO_OK);
    return picture_bytes(copy);
}

void answer(const Viewer& viewer, const std::string& title, WPARAM button) {
    HWND dialog = viewer.dialog(title);
    ASSERT_NE(dialog, nullptr) << title;
    PostMessageA(dialog, WM_COMMAND, button, 0);
    EXPECT_TRUE(viewer.gone(dialog)) << title;
}

// What GDI shows of a packed DIB, whose pixels start so many bytes behind its beginning.
COLORREF seen_at(const std::vector<uint8_t>& dib, size_t start, int x, int y) {
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof info.bmiHeader, 2, 2, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    HDC dc = CreateCompatibleDC(nullptr);
    HBITMAP bitmap = CreateDIBSection(dc, &info, DIB_RGB_COLORS, nullptr, nullptr, 0);
    HGDIOBJ before = SelectObject(dc, bitmap);
    StretchDIBits(dc, 0, 0, 2, 2, 0, 0, 2, 2, &dib[start],
                  reinterpret_cast<const BITMAPINFO*>(dib.data()), DIB_RGB_COLORS, SRCCOPY);
    const COLORREF colour = GetPixel(dc, x, y);
    DeleteObject(SelectObject(dc, before));
    DeleteDC(dc);
    return colour;
}

constexpr COLORREF wanted[2][2] = {{RGB(255, 0, 0), RGB(0, 255, 0)},
                                   {RGB(0, 0, 255), RGB(255, 255, 255)}};

struct Odd {
    const char* name;
    std::vector<uint8_t> block;
};

template<typename Header>
std::vector<uint8_t> block_of(const Header& header, const std::vector<uint8_t>& rest) {
    std::vector<uint8_t> block(sizeof header);
    std::memcpy(block.data(), &header, sizeof header);
    block.insert(block.end(), rest.begin(), rest.end());
    return block;
}

BITMAPINFOHEADER header_of(int height, int bits, DWORD compression, DWORD colours) {
    return {sizeof(BITMAPINFOHEADER),
            2,
            height,
            1,
            static_cast<WORD>(bits),
            compression,
            0,
            0,
            0,
            colours,
            0};
}

// The four pixels as programs put them onto the clipboard.
std::vector<Odd> odd_pictures() {
    const std::vector<uint8_t> top = {0, 0, 255, 0, 255, 0, 0, 0},
                               bottom = {255, 0, 0, 255, 255, 255, 0, 0};
    std::vector<uint8_t> up = bottom, down = top;
    up.insert(up.end(), top.begin(), top.end());
    down.insert(down.end(), bottom.begin(), bottom.end());
    const std::vector<uint8_t> words = {0x1F, 0, 0xFF, 0xFF, 0, 0xF8, 0xE0, 0x07};
    std::vector<uint8_t> masks = {0, 0xF8, 0, 0, 0xE0, 0x07, 0, 0, 0x1F, 0, 0, 0};
    masks.insert(masks.end(), words.begin(), words.end());
    BITMAPV5HEADER v5 = {};
    v5.bV5Size = sizeof v5;
    v5.bV5Width = v5.bV5Height = 2;
    v5.bV5Planes = 1;
    v5.bV5BitCount = 16;
    v5.bV5Compression = BI_BITFIELDS;
    v5.bV5RedMask = 0xF800;
    v5.bV5GreenMask = 0x07E0;
    v5.bV5BlueMask = 0x001F;
    // Four colours of 256, in a table that is as short.
    const std::vector<uint8_t> indexed = {0,   0,   255, 0, 0, 255, 0, 0, 255, 0, 0, 0,
                                          255, 255, 255, 0, 2, 3,   0, 0, 0,   1, 0, 0};
    const BITMAPCOREHEADER core = {sizeof core, 2, 2, 1, 24};
    return {{"as everybody does", block_of(header_of(2, 24, BI_RGB, 0), up)},
            {"top first", block_of(header_of(-2, 24, BI_RGB, 0), down)},
            {"masks behind the header", block_of(header_of(2, 16, BI_BITFIELDS, 0), masks)},
            {"masks in a long header", block_of(v5, words)},
            {"a short palette", block_of(header_of(2, 8, BI_RGB, 4), indexed)},
            {"the oldest header", block_of(core, up)}};
}

constexpr char begun[] = "\u2026"; // behind what is being done

bool ends_its_work(Viewer& viewer) {
    return eventually([&] { return viewer.wrote(" failed: ") || viewer.wrote(" ms\r"); });
}

// All sliders and lists of an effect's dialog at one of their ends, then OK where that is allowed.
void go_to_end(Viewer& viewer, HWND dialog, bool most, const std::string& other) {
    const auto told = [&](HWND control, WORD code) {
        SendMessageA(dialog, WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(control), code),
                     reinterpret_cast<LPARAM>(control));
    };
    for (int i = 0; i < 20; ++i) {
        if (HWND slider = GetDlgItem(dialog, 200 + i)) {
            const LRESULT end =
                SendMessageA(slider, most ? TBM_GETRANGEMAX : TBM_GETRANGEMIN, 0, 0);
            SendMessageA(slider, TBM_SETPOS, TRUE, end);
            SendMessageA(dialog, WM_HSCROLL, SB_ENDSCROLL, reinterpret_cast<LPARAM>(slider));
        }
        HWND value = GetDlgItem(dialog, 100 + i);
        char name[32] = {};
        GetClassNameA(value, name, sizeof name);
        if (_stricmp(name, "ComboBox") == 0) {
            const LRESULT last = SendMessageA(value, CB_GETCOUNT, 0, 0) - 1;
            SendMessageA(value, CB_SETCURSEL, static_cast<WPARAM>(most ? last : 0), 0);
            told(value, CBN_SELCHANGE);
        } else if (value != nullptr && SendMessageA(value, WM_GETTEXTLENGTH, 0, 0) == 0) {
            set_text(value, other);
        }
    }
    if (!IsWindowEnabled(GetDlgItem(dialog, IDOK))) {
        PostMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
        EXPECT_TRUE(viewer.gone(dialog));
        return;
    }
    PostMessageA(dialog, WM_COMMAND, IDOK, 0);
    EXPECT_TRUE(viewer.gone(dialog));
    EXPECT_TRUE(viewer.wait_for(begun));
    EXPECT_TRUE(ends_its_work(viewer));
}

struct Held {
    DWORD drawing, windows, handles;
};

BOOL CALLBACK count_children(HWND, LPARAM parameter) {
    ++*reinterpret_cast<DWORD*>(parameter);
    return TRUE;
}

// Where the system does not count the objects to draw with, its table of them is read.
DWORD drawing_objects(HANDLE process) {
    if (const DWORD count = GetGuiResources(process, GR_GDIOBJECTS))
        return count;
    using Query = LONG(WINAPI*)(HANDLE, int, void*, ULONG, ULONG*);
    const FARPROC address =
        GetProcAddress(GetModuleHandleA("ntdll.dll"), "NtQueryInformationProcess");
    Query query;
    std::memcpy(&query, &address, sizeof query);
    struct {
        void* status;
        char* environment;
        void* further[4];
    } basic = {};
    struct Entry {
        ULONGLONG object;
        WORD owner, counts, generation;
        BYTE type, flags;
        ULONGLONG user;
    };
    char* table = nullptr;
    SIZE_T size = 0;
    std::vector<Entry> entries(0x4000);
    if (query(process, 0, &basic, sizeof basic, nullptr) != 0 ||
        !ReadProcessMemory(process, basic.environment + (sizeof(void*) == 8 ? 0xF8 : 0x94), &table,
                           sizeof table, &size) ||
        !ReadProcessMemory(process, table, entries.data(), entries.size() * sizeof(Entry), &size))
        return 0;
    return static_cast<DWORD>(std::count_if(entries.begin(), entries.end(),
                                            [](const Entry& entry) { return entry.type != 0; }));
}

Held held_by(const Viewer& viewer) {
    Held held = {drawing_objects(viewer.process()), 0, 0};
    EnumChildWindows(viewer.window(), count_children, reinterpret_cast<LPARAM>(&held.windows));
    GetProcessHandleCount(viewer.process(), &held.handles);
    return held;
}

} // namespace

TEST(ViewerAttacked, PastesPicturesHoweverTheyAreWritten) {
    Viewer viewer;
    for (const Odd& odd : odd_pictures()) {
        SCOPED_TRACE(odd.name);
        put_on_clipboard(CF_DIB, odd.block);
        viewer.command(command_paste);
        ASSERT_TRUE(viewer.wait_for("picture shown"));
        const std::vector<uint8_t> bytes = viewer.copied();
        BITMAPINFOHEADER header;
        ASSERT_GE(bytes.size(), sizeof header);
        std::memcpy(&header, bytes.data(), sizeof header);
        ASSERT_EQ(header.biHeight, 2);
        const size_t start =
            bytes.size() - 2 * static_cast<size_t>(stride_of(2, header.biBitCount));
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < 2; ++x)
                EXPECT_EQ(seen_at(bytes, start, x, y), wanted[y][x]) << x << " " << y;
    }
}

TEST(ViewerAttacked, RefusesBlocksThatAreNoPictures) {
    Viewer viewer;
    std::vector<uint8_t> palette = block_of(header_of(2, 8, BI_RGB, 4000000000u), {1, 2, 3, 4});
    for (const std::vector<uint8_t>& block :
         {std::vector<uint8_t>(1), std::vector<uint8_t>(12, 12), std::vector<uint8_t>(200, 255),
          palette, block_of(header_of(INT_MIN, 24, BI_RGB, 0), std::vector<uint8_t>(64))}) {
        put_on_clipboard(CF_DIB, block);
        viewer.command(command_paste);
        EXPECT_TRUE(eventually([&] {
            return viewer.wrote("Pasting failed: ") || viewer.wrote("There is no picture");
        }));
    }
    EXPECT_TRUE(viewer.ends());
}

TEST(ViewerAttacked, TakesNoCommandWhileADialogIsOpen) {
    TempFolder folder;
    const Dib picture = picture_of(30, 20);
    const std::string name = saved(folder, "in.bmp", picture),
                      other = saved(folder, "other.bmp", picture_of(9, 9));
    Viewer viewer(name);
    viewer.command(viewer.effect("brightness"));
    HWND dialog = viewer.dialog("Brightness");
    ASSERT_NE(dialog, nullptr);
    for (const int command : {+command_paste, +command_next, +command_undo, viewer.effect("flip"),
                              viewer.effect("crop"), +command_recent, +command_quit})
        viewer.command(command);
    viewer.drop(other);
    PostMessageA(viewer.window(), WM_CLOSE, 0, 0);
    set_text(GetDlgItem(dialog, 100), "-7"); // after what was posted
    EXPECT_TRUE(viewer.wait_for("preview --brightness of 30 x 20"));
    PostMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
    EXPECT_TRUE(viewer.gone(dialog));
    EXPECT_EQ(viewer.copied(), picture_bytes(picture));
    EXPECT_EQ(viewer.title(), "in.bmp - KirvoView");
    EXPECT_TRUE(viewer.ends());
}

TEST(ViewerAttacked, EndsWhileItWorks) {
    TempFolder folder;
    const std::string name = saved(folder, "in.bmp", picture_of(2500, 2500));
    Viewer viewer(name);
    viewer.command(viewer.effect("blur"));
    PostMessageA(viewer.window(), WM_CLOSE, 0, 0);
    EXPECT_EQ(WaitForSingleObject(viewer.process(), 30000), WAIT_OBJECT_0);
    DWORD code = 1;
    GetExitCodeProcess(viewer.process(), &code);
    EXPECT_EQ(code, 0u);
}

TEST(ViewerAttacked, DropsAnEffectThatIsAbandoned) {
    TempFolder folder;
    const Dib picture = picture_of(600, 600);
    Viewer viewer(saved(folder, "in.bmp", picture));
    viewer.command(viewer.effect("negative"));
    viewer.command(command_abandon);
    EXPECT_TRUE(viewer.wait_for("says: Negative: abandoned"));
    EXPECT_EQ(viewer.copied(), picture_bytes(picture));
    viewer.command(viewer.effect("negative"));
    EXPECT_TRUE(viewer.wait_for("says: Negative: "));
    EXPECT_EQ(viewer.copied(), negative_of(picture));
}

TEST(ViewerAttacked, OpensAFolderAtItsFirstPicture) {
    TempFolder folder, empty;
    saved(folder, "b.bmp", picture_of(5, 5));
    saved(folder, "a.bmp", picture_of(6, 6));
    Viewer viewer;
    viewer.drop(std::filesystem::path(folder.path("a.bmp")).parent_path().string());
    EXPECT_TRUE(viewer.wait_for("ready"));
    EXPECT_EQ(viewer.title(), "a.bmp - KirvoView");
    viewer.drop(std::filesystem::path(empty.path("a.bmp")).parent_path().string());
    EXPECT_TRUE(viewer.wait_for("says: There is no picture in "));
    EXPECT_EQ(viewer.title(), "a.bmp - KirvoView");
}

TEST(ViewerAttacked, WalksOnWhenItsFileIsGone) {
    TempFolder folder;
    for (const char* name : {"a.bmp", "b.bmp", "c.bmp"})
        saved(folder, name, picture_of(5, 5));
    Viewer viewer(folder.path("b.bmp"));
    std::filesystem::remove(folder.path("b.bmp"));
    viewer.key(VK_RIGHT);
    EXPECT_TRUE(viewer.wait_for("ready"));
    EXPECT_EQ(viewer.title(), "c.bmp - KirvoView");
    std::filesystem::remove(folder.path("a.bmp"));
    std::filesystem::remove(folder.path("c.bmp"));
    viewer.key(VK_RIGHT); // nowhere to go
    EXPECT_EQ(viewer.copied(), picture_bytes(picture_of(5, 5)));
}

TEST(ViewerAttacked, ForgetsAFileThatIsGone) {
    TempFolder folder;
    const std::string name = saved(folder, "gone.bmp", picture_of(5, 5));
    Viewer viewer(name);
    std::filesystem::remove(name);
    viewer.command(command_recent);
    EXPECT_TRUE(viewer.wait_for("not opened: gone.bmp: "));
    EXPECT_TRUE(viewer.ends());
    EXPECT_EQ(viewer.settings().find("gone.bmp"), std::string::npos);
}

TEST(ViewerAttacked, LeavesAFileThatMayNotBeWritten) {
    TempFolder folder;
    const Dib picture = picture_of(5, 5);
    const std::string name = saved(folder, "in.bmp", picture);
    SetFileAttributesA(name.c_str(), FILE_ATTRIBUTE_READONLY);
    Viewer viewer(name);
    viewer.command(viewer.effect("negative"));
    ASSERT_TRUE(viewer.wait_for("says: Negative: "));
    viewer.command(command_save);
    answer(viewer, "KirvoView", IDOK); // it says why
    EXPECT_EQ(viewer.title(), "in.bmp* - KirvoView");
    EXPECT_EQ(viewer.copied(), negative_of(picture));
    SetFileAttributesA(name.c_str(), FILE_ATTRIBUTE_NORMAL);
    HGLOBAL there = nullptr;
    ASSERT_EQ(KirvoFilesOpen(name.c_str(), nullptr, &there, nullptr), KIRVO_FILES_OK);
    EXPECT_EQ(picture_bytes(there), picture_bytes(picture));
    GlobalFree(there);
    viewer.command(command_save);
    EXPECT_TRUE(viewer.wait_for("saved: "));
    EXPECT_EQ(viewer.title(), "in.bmp - KirvoView");
    EXPECT_TRUE(viewer.ends());
}

TEST(ViewerAttacked, DoesNothingWhereADialogIsCancelled) {
    TempFolder folder;
    const Dib picture = picture_of(12, 10);
    Viewer viewer(saved(folder, "in.bmp", picture));
    const struct {
        int command;
        const char* title;
    } dialogs[] = {{command_open, "Open"},
                   {command_save_as, "Save As"},
                   {command_select, "Select a rectangle"},
                   {viewer.effect("crop"), "Crop"},
                   {command_information, "Information"},
                   {command_keys, "Keys and mouse"},
                   {command_about, "About KirvoView"}};
    for (const auto& dialog : dialogs) {
        viewer.command(dialog.command);
        answer(viewer, dialog.title, dialog.command == command_about ? IDOK : IDCANCEL);
        EXPECT_EQ(viewer.copied(), picture_bytes(picture)) << dialog.title;
    }
    EXPECT_EQ(viewer.title(), "in.bmp - KirvoView");
    EXPECT_TRUE(viewer.ends());
}

TEST(ViewerAttacked, BeginsWithSettingsThatMeanNothing) {
    for (const char* settings :
         {"Left=2147483647\r\nTop=-2147483648\r\nWidth=2147483647\r\nHeight=-5\r\n",
          "Left=0\r\nTop=0\r\nWidth=1\r\nHeight=1\r\nTheme=99\r\nLanguage=-3\r\n"
          "UndoMegabytes=-1\r\nRecent1=\x01\x02&&\r\nRecent9=::\r\nCode=x\r\n",
          "\xFF\xFF[[[=\r\n[KirvoView]\r\nTheme", "[]\r\n\r\n\r\n=\r\n"}) {
        SCOPED_TRACE(settings);
        Viewer viewer("", settings);
        RECT place;
        GetWindowRect(viewer.window(), &place);
        EXPECT_NE(MonitorFromRect(&place, MONITOR_DEFAULTTONULL), nullptr);
        EXPECT_TRUE(viewer.ends());
    }
}

TEST(ViewerAttacked, EndsThoughItsSettingsCannotBeWritten) {
    Viewer viewer;
    const std::string file = viewer.folder().path("KirvoView.ini");
    std::filesystem::remove(file);
    std::filesystem::create_directory(file);
    viewer.command(command_theme_dark);
    EXPECT_TRUE(viewer.ends());
    EXPECT_TRUE(std::filesystem::is_directory(file));
}

TEST(ViewerAttacked, WorksInAWindowOfAnySize) {
    TempFolder folder;
    const Dib picture = picture_of(300, 200);
    Viewer viewer(saved(folder, "in.bmp", picture), "Code=1\r\nHistogram=1\r\n");
    bool negative = false;
    const auto still_works = [&] {
        viewer.command(viewer.effect("negative"));
        ASSERT_TRUE(viewer.wait_for("says: Negative: "));
        negative = !negative;
        EXPECT_EQ(viewer.copied(), negative ? negative_of(picture) : picture_bytes(picture));
    };
    for (const int size : {1, 60, 6000, 500}) {
        SetWindowPos(viewer.window(), nullptr, 0, 0, size, size, SWP_NOZORDER);
        still_works();
    }
    for (const int show : {SW_MINIMIZE, SW_MAXIMIZE, SW_RESTORE}) {
        ShowWindow(viewer.window(), show);
        still_works();
    }
    for (const int command : {command_full_screen, command_zoom_out, command_fit_window,
                              command_full_screen, command_fit_window, command_fit}) {
        viewer.command(command);
        still_works();
    }
}

// A picture of one pixel, and of each depth: what the dialog begins with, then the least or the most.
TEST(ViewerAttacked, AnswersEveryEffectOfEveryDepth) {
    TempFolder folder;
    const std::string other = saved(folder, "other.bmp", picture_of(1, 1));
    for (const int bits : {1, 8, 16, 32}) {
        const bool most = bits == 8 || bits == 32;
        Viewer viewer(saved(folder, std::to_string(bits) + ".bmp", picture_of(1, 1, bits)));
        viewer.command(command_select_all);
        for (int i = 0; i < viewer.effect_count(); ++i) {
            SCOPED_TRACE(std::to_string(bits) + " bits, effect " + std::to_string(i));
            if (command_effect + i == viewer.effect("histogram"))
                continue; // a window
            viewer.command(command_effect + i);
            HWND dialog = nullptr;
            ASSERT_TRUE(eventually([&] {
                dialog = viewer.dialog_now();
                return dialog != nullptr || viewer.wrote(begun);
            }));
            if (dialog != nullptr)
                go_to_end(viewer, dialog, most, other);
            else
                EXPECT_TRUE(ends_its_work(viewer));
            viewer.command(command_undo);
        }
        viewer.command(command_copy);
        EXPECT_TRUE(viewer.wait_for("says: Copied"));
    }
}

// Each operation a thousand times over would end the program, if it kept what it takes of the system.
TEST(ViewerAttacked, KeepsNothingOfTheSystem) {
    TempFolder folder;
    Viewer viewer(saved(folder, "in.bmp", picture_of(64, 48)));
    const auto round = [&] {
        viewer.command(viewer.effect("brightness"));
        HWND dialog = viewer.dialog("Brightness");
        ASSERT_NE(dialog, nullptr);
        PostMessageA(dialog, WM_COMMAND, IDOK, 0);
        ASSERT_TRUE(viewer.wait_for("says: Brightness: "));
        for (const int command :
             {+command_undo, +command_histogram, +command_code, +command_theme_dark,
              +command_zoom_in, +command_full_screen, +command_theme_light, +command_full_screen,
              +command_code, +command_histogram, +command_fit, +command_copy})
            viewer.command(command);
        ASSERT_TRUE(viewer.wait_for("says: Copied"));
    };
    // Some are held for a moment only, so that one look is not enough.
    const auto held_over_rounds = [&](auto pick) {
        Held held = held_by(viewer);
        for (int i = 0; i < 4; ++i) {
            round();
            const Held now = held_by(viewer);
            held = {pick(held.drawing, now.drawing), pick(held.windows, now.windows),
                    pick(held.handles, now.handles)};
        }
        return held;
    };
    for (int i = 0; i < 8; ++i)
        round(); // until the system's own caches are full
    // The system takes a theme or a font once, at any time; what each round keeps shows in both halves.
    Held before = {}, after = {};
    const auto grows = [&] {
        before = held_over_rounds([](auto a, auto b) { return std::max(a, b); });
        for (int i = 0; i < 20; ++i)
            round();
        after = held_over_rounds([](auto a, auto b) { return std::min(a, b); });
        return after.drawing > before.drawing + 8 || after.windows > before.windows ||
               after.handles > before.handles + 8;
    };
    EXPECT_FALSE(grows() && grows())
        << before.drawing << ", " << before.windows << ", " << before.handles << " became "
        << after.drawing << ", " << after.windows << ", " << after.handles;
    EXPECT_GT(before.drawing, 0u);
    EXPECT_TRUE(viewer.ends());
}
