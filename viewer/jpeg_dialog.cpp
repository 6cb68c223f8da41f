// How much a JPEG file shall lose: its size and its picture, while the slider moves.
#include "commands.hpp"
#include "dialog.hpp"
#include "text.hpp"
#include "trace.hpp"
#include "viewer.hpp"

#include <commctrl.h>

namespace {

class JpegDialog : public Dialog {
  public:
    explicit JpegDialog(Viewer& viewer) : viewer_(viewer) {}
    uint32_t quality() const { return quality_; }

  private:
    enum { slider = 100, number, words };

    void fill() override {
        add_name(L"Quality", 12, 16, 60);
        HWND bar =
            add(TRACKBAR_CLASSW, L"Quality", WS_TABSTOP | TBS_AUTOTICKS, slider, 76, 10, 220, 30);
        SendMessageW(bar, TBM_SETRANGE, FALSE, MAKELPARAM(1, 100));
        SendMessageW(bar, TBM_SETTICFREQ, 10, 0);
        SendMessageW(bar, TBM_SETPOS, TRUE, quality_);
        add(L"STATIC", L"90", 0, number, 304, 16, 40, 18);
        add(L"STATIC", L"", 0, words, 12, 52, 330, 18);
        add_buttons(356, 84);
        changed();
    }

    void on_control(int, int) override {}

    void on_scroll(HWND bar) override {
        quality_ = static_cast<uint32_t>(SendMessageW(bar, TBM_GETPOS, 0, 0));
        set_text(number, digits(quality_));
        changed();
    }

    // The file itself, made in memory, and what a reader will see of it.
    void changed() {
        struct Trial {
            SharedImage image;
            uint32_t bytes = 0;
        };
        const auto trial = std::make_shared<Trial>();
        const SharedImage image = viewer_.history.now();
        const auto source = viewer_.source;
        const uint32_t quality = quality_;
        viewer_.worker.post(
            Worker::Kind::preview,
            [=] {
                KirvoFilesSaveOptions options = {};
                options.size = sizeof options;
                options.format = KIRVO_FILES_JPEG;
                options.quality = quality;
                HGLOBAL block = nullptr, dib = nullptr;
                Known written;
                expect(KirvoFilesSaveMemory(image->handle(), source ? source->handle() : nullptr,
                                            &options, &block, &trial->bytes, written.receiver()),
                       written, "JPEG");
                KirvoFilesOpenOptions how = {};
                how.size = sizeof how;
                how.flags = KIRVO_FILES_NO_TURN;
                KirvoFilesOpenMemory(GlobalLock(block), trial->bytes, &how, &dib, nullptr);
                GlobalUnlock(block);
                GlobalFree(block);
                if (dib != nullptr)
                    trial->image = shared(Image::adopt(dib));
            },
            [=, this, alive = std::weak_ptr<int>(alive_)](const std::string& error) {
                if (alive.expired())
                    return;
                set_text(words, error.empty() ? digits(trial->bytes) + L" bytes" : wide(error));
                trace("JPEG of quality " + std::to_string(quality) + ": " +
                      std::to_string(trial->bytes) + " bytes");
                if (trial->image)
                    viewer_.view.preview({trial->image, 0, 0,
                                          static_cast<double>(trial->image->width()),
                                          static_cast<double>(trial->image->height()), false});
            });
    }

    Viewer& viewer_;
    uint32_t quality_ = 90;
    std::shared_ptr<int> alive_ = std::make_shared<int>(0);
};

} // namespace

std::optional<uint32_t> ask_jpeg_quality(Viewer& viewer) {
    JpegDialog dialog(viewer);
    const bool chosen = dialog.run(viewer.window, L"Save as JPEG", 356, 122);
    viewer.view.end_preview();
    return chosen ? std::optional(dialog.quality()) : std::nullopt;
}
