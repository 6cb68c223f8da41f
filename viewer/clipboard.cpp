// A packed DIB is what the clipboard calls CF_DIB.
#include "text.hpp"
#include "viewer.hpp"

#include <shellapi.h>

#include <algorithm>
#include <cstring>

namespace {

class Clipboard {
  public:
    explicit Clipboard(HWND window) : open_(OpenClipboard(window)) {}
    ~Clipboard() {
        if (open_)
            CloseClipboard();
    }
    Clipboard(const Clipboard&) = delete;
    Clipboard& operator=(const Clipboard&) = delete;
    explicit operator bool() const { return open_; }

  private:
    bool open_;
};

// The block belongs to the system once it has it.
bool put(HWND window, UINT format, HGLOBAL block) {
    const Clipboard clipboard(window);
    if (clipboard && EmptyClipboard() && SetClipboardData(format, block) != nullptr)
        return true;
    GlobalFree(block);
    return false;
}

uint64_t all_colours(WORD bits) { return bits <= 8 ? uint64_t{1} << bits : 0; }

uint64_t pixel_offset(const void* block, size_t size) {
    BITMAPINFOHEADER header = {};
    std::memcpy(&header, block, std::min(size, sizeof header));
    if (header.biSize == sizeof(BITMAPCOREHEADER)) {
        BITMAPCOREHEADER core;
        std::memcpy(&core, block, sizeof core);
        return sizeof core + all_colours(core.bcBitCount) * sizeof(RGBTRIPLE);
    }
    const uint64_t masks =
        header.biSize == sizeof header && header.biCompression == BI_BITFIELDS ? 12 : 0;
    const uint64_t colours =
        header.biClrUsed != 0 ? header.biClrUsed : all_colours(header.biBitCount);
    return header.biSize + masks + colours * sizeof(RGBQUAD);
}

// Another program's block may be anything: with a file's header before it, it is read as carefully as
// a file, and becomes a clean image.
std::vector<uint8_t> as_file(HGLOBAL block) {
    const SIZE_T size = GlobalSize(block);
    const void* data = GlobalLock(block);
    std::vector<uint8_t> file;
    if (data != nullptr && size >= sizeof(BITMAPCOREHEADER) && size < 1u << 30) {
        const uint64_t offset = 14 + pixel_offset(data, size);
        const auto whole = static_cast<uint32_t>(14 + size);
        const uint32_t start = offset < whole ? static_cast<uint32_t>(offset) : whole;
        file.resize(whole);
        file[0] = 'B';
        file[1] = 'M';
        std::memcpy(&file[2], &whole, 4);
        std::memcpy(&file[10], &start, 4);
        std::memcpy(&file[14], data, size);
    }
    if (data != nullptr)
        GlobalUnlock(block);
    return file;
}

std::vector<uint8_t> picture_on(HWND window) {
    const Clipboard clipboard(window);
    HGLOBAL block = clipboard ? GetClipboardData(CF_DIB) : nullptr;
    return block != nullptr ? as_file(block) : std::vector<uint8_t>();
}

std::wstring file_on(HWND window) {
    const Clipboard clipboard(window);
    const auto drop = clipboard ? static_cast<HDROP>(GetClipboardData(CF_HDROP)) : nullptr;
    if (drop == nullptr)
        return L"";
    std::wstring name(DragQueryFileW(drop, 0, nullptr, 0), L'\0');
    DragQueryFileW(drop, 0, name.data(), static_cast<UINT>(name.size()) + 1);
    return name;
}

} // namespace

// What is selected, or all of it.
void copy_picture(Viewer& viewer) {
    const SharedImage image = viewer.history.now();
    const Worker::Turn turn(viewer.worker, Worker::Turn::Wait::yes);
    try {
        Image copy = image->copy();
        if (const auto& part = viewer.view.selection()) {
            const Image whole = to_24_bits(std::move(copy));
            int32_t status = 0;
            HGLOBAL cut = Dib24DupEx(whole.handle(), part->left, part->top,
                                     part->right - part->left, part->bottom - part->top, &status);
            copy = checked(cut, "copy", status);
        }
        viewer.say(put(viewer.window, CF_DIB, copy.release()) ? "Copied" : "The clipboard is busy");
    } catch (const std::exception& error) {
        viewer.say(error.what());
    }
}

void paste_picture(Viewer& viewer) {
    const std::vector<uint8_t> file = picture_on(viewer.window);
    if (file.empty()) {
        const std::wstring name = file_on(viewer.window);
        if (name.empty())
            return viewer.say("There is no picture on the clipboard");
        if (may_leave_picture(viewer))
            open_file(viewer, name);
        return;
    }
    if (!may_leave_picture(viewer))
        return;
    const auto image = std::make_shared<SharedImage>();
    const auto known = std::make_shared<Known>();
    viewer.work(
        "Pasting",
        [=] {
            HGLOBAL handle = nullptr;
            const int32_t status =
                KirvoFilesOpenMemory(file.data(), static_cast<uint32_t>(file.size()), nullptr,
                                     &handle, known->receiver());
            *image = shared(Image::adopt(handle));
            expect(status, *known, "the clipboard's picture");
        },
        [=, &viewer] { begin_picture(viewer, *image, nullptr, L"", L"pasted picture"); });
}

bool copy_text(HWND window, const std::wstring& text) {
    const SIZE_T size = (text.size() + 1) * sizeof(wchar_t);
    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, size);
    if (block == nullptr)
        return false;
    std::memcpy(GlobalLock(block), text.c_str(), size);
    GlobalUnlock(block);
    return put(window, CF_UNICODETEXT, block);
}
