// What is known of the picture and its file.
#include "dialog.hpp"
#include "text.hpp"
#include "viewer.hpp"

#include <cstdio>

namespace {

class TextDialog : public Dialog {
  public:
    explicit TextDialog(std::wstring text) : text_(std::move(text)) {}

  private:
    void fill() override {
        HWND edit = add(L"EDIT", text_,
                        WS_TABSTOP | WS_VSCROLL | ES_MULTILINE | ES_READONLY | ES_AUTOVSCROLL, 100,
                        12, 12, 476, 270);
        const UINT column = 130; // in quarters of a character's width
        SendMessageW(edit, EM_SETTABSTOPS, 1, reinterpret_cast<LPARAM>(&column));
        PostMessageW(edit, EM_SETSEL, 0, 0); // the dialog selects all of its first control
        add(L"BUTTON", L"Close", WS_TABSTOP | BS_DEFPUSHBUTTON, IDOK, 404, 294, 84, 26);
    }
    void on_control(int, int) override {}

    std::wstring text_;
};

void add(std::string& text, const char* name, const std::string& value) {
    if (!value.empty())
        text += std::string(name) + "\t" + value + "\r\n";
}

void add_file(std::string& text, const Known& known) {
    const KirvoFilesDescription file = known.description();
    char format[64] = {};
    KirvoFilesFormatText(file.format, KIRVO_FILES_FORMAT_NAME, format, sizeof format);
    add(text, "Format", format);
    add(text, "Variant", known.text(KIRVO_FILES_TEXT_VARIANT));
    add(text, "Bytes", std::to_string(file.fileBytes));
    add(text, "In the file",
        std::to_string(file.width) + " \u00d7 " + std::to_string(file.height) + ", " +
            std::to_string(file.fileBits) + " bits a pixel");
    if (file.quality > 0)
        add(text, "Quality", "about " + std::to_string(file.quality));
    if (file.frames > 1)
        add(text, "Pictures", std::to_string(file.frame) + " of " + std::to_string(file.frames));
    if (file.dpiAcross > 0) {
        char dots[64];
        std::snprintf(dots, sizeof dots, "%.4g \u00d7 %.4g", file.dpiAcross, file.dpiDown);
        add(text, "Dots an inch", dots);
    }
    add(text, "Decoded by", known.text(KIRVO_FILES_TEXT_DECODER));
    for (uint32_t i = 0; i < file.notes; ++i)
        add(text, "Note", known.text(KIRVO_FILES_TEXT_NOTE, i));
}

void add_camera(std::string& text, const Known& known) {
    const struct {
        const char* name;
        KirvoFilesTextKind kind;
    } lines[] = {
        {"Title", KIRVO_FILES_TEXT_TITLE},       {"Taken", KIRVO_FILES_TEXT_DATE},
        {"Camera", KIRVO_FILES_TEXT_CAMERA},     {"Lens", KIRVO_FILES_TEXT_LENS},
        {"Exposure", KIRVO_FILES_TEXT_EXPOSURE}, {"Place", KIRVO_FILES_TEXT_PLACE},
        {"Artist", KIRVO_FILES_TEXT_ARTIST},     {"Copyright", KIRVO_FILES_TEXT_COPYRIGHT},
        {"Software", KIRVO_FILES_TEXT_SOFTWARE}, {"Colour profile", KIRVO_FILES_TEXT_PROFILE},
    };
    for (const auto& line : lines)
        add(text, line.name, known.text(line.kind));
}

} // namespace

void show_text(HWND parent, const std::wstring& title, const std::wstring& text) {
    TextDialog(text).run(parent, title, 500, 332);
}

void show_information(Viewer& viewer) {
    const SharedImage image = viewer.history.now();
    std::string text;
    add(text, "File", narrow(viewer.path));
    add(text, "Picture",
        std::to_string(image->width()) + " \u00d7 " + std::to_string(image->height()) + ", " +
            std::to_string(image->bits()) + " bits a pixel");
    add(text, "Memory", std::to_string(GlobalSize(image->handle())) + " bytes");
    if (viewer.known) {
        add_file(text, *viewer.known);
        add_camera(text, *viewer.known);
    }
    show_text(viewer.window, L"Information", wide(text));
}
