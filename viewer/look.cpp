#include "look.hpp"

#include "effect.hpp"
#include "effects/presentation.hpp"
#include "trace.hpp"
#include "viewer.hpp"

#include <algorithm>
#include <cmath>

// The effect's input, and where its pixels lie in the picture.
struct Look::Part {
    SharedImage image; // the whole picture
    Step step;
    std::shared_ptr<SharedImage> reduced; // to this size; null: not reduced
    int width = 0, height = 0;
    std::optional<RECT> cut; // of the picture
    double scale = 1;        // on the screen
    Preview preview;
    double milliseconds = 0;
    Stopwatch since; // the values changed

    void make();
    SharedImage input() const;
};

namespace {

RECT scaled(const RECT& place, double x, double y, const Image& image) {
    const auto at = [](LONG value, double scale, int most) {
        return static_cast<LONG>(std::clamp<double>(std::lround(value * scale), 0, most));
    };
    RECT result = {at(place.left, x, image.width() - 1), at(place.top, y, image.height() - 1),
                   at(place.right, x, image.width()), at(place.bottom, y, image.height())};
    result.right = std::max(result.right, result.left + 1);
    result.bottom = std::max(result.bottom, result.top + 1);
    return result;
}

Image cut_out(const Image& image, const RECT& part) {
    const Image whole = to_24_bits(image.copy());
    int32_t status = 0;
    HGLOBAL cut = Dib24DupEx(whole.handle(), part.left, part.top, part.right - part.left,
                             part.bottom - part.top, &status);
    return checked(cut, "a part of the picture", status);
}

} // namespace

SharedImage Look::Part::input() const {
    if (cut)
        return shared(cut_out(*image, *cut));
    if (!reduced)
        return image;
    if (!*reduced)
        *reduced = shared(::reduced(*image, width, height));
    return *reduced;
}

void Look::Part::make() {
    const SharedImage from = input();
    const Stopwatch clock;
    const double x = cut ? 1 : static_cast<double>(from->width()) / image->width();
    const double y = cut ? 1 : static_cast<double>(from->height()) / image->height();
    if (step.place)
        step.place = scaled(*step.place, x, y, *from);
    preview.image = shared(applied(*from, step));
    preview.left = cut ? cut->left : 0;
    preview.top = cut ? cut->top : 0;
    preview.width = preview.image->width() / x;
    preview.height = preview.image->height() / y;
    preview.replaces =
        preview.image->width() != from->width() || preview.image->height() != from->height();
    milliseconds = clock.milliseconds();
    // Seen at the scale of the window, averaged as the picture itself is.
    const int seen_width = static_cast<int>(std::lround(preview.width * scale));
    const int seen_height = static_cast<int>(std::lround(preview.height * scale));
    if (seen_width > 0 && seen_height > 0 && seen_width < preview.image->width() &&
        seen_height < preview.image->height())
        preview.image = shared(::reduced(*preview.image, seen_width, seen_height));
}

Look::Look(Viewer& viewer)
    : viewer_(viewer),
      reduced_(std::make_shared<SharedImage>(viewer.view.fitted(viewer.history.now()))) {}

Look::~Look() { viewer_.view.end_preview(); }

void Look::forget() {
    alive_ = std::make_shared<int>(0);
    viewer_.view.end_preview();
}

// Places and sizes in pixels mean nothing on a reduced picture: those wait for the rest.
void Look::at_once(const Step& step, Failed failed) {
    const SharedImage image = viewer_.history.now();
    if (counts_pixels(*effect_called(step.option)))
        return;
    auto part = std::make_shared<Part>();
    part->image = image;
    part->step = step;
    RECT room;
    GetClientRect(viewer_.view.window(), &room);
    const double scale = std::min({1.0, static_cast<double>(room.right) / image->width(),
                                   static_cast<double>(room.bottom) / image->height()});
    if (scale < 1) {
        part->reduced = reduced_;
        part->width = std::max(1, static_cast<int>(image->width() * scale));
        part->height = std::max(1, static_cast<int>(image->height() * scale));
    }
    post(part, std::move(failed));
}

void Look::at_rest(const Step& step, Failed failed) {
    auto part = std::make_shared<Part>();
    part->image = viewer_.history.now();
    part->step = step;
    part->scale = viewer_.view.scale();
    const Effect& effect = *effect_called(step.option);
    const RECT visible = viewer_.view.visible();
    const bool everything = visible.right - visible.left == part->image->width() &&
                            visible.bottom - visible.top == part->image->height();
    if (!step.place && !counts_pixels(effect) && works_on_parts(effect) && !everything &&
        !IsRectEmpty(&visible))
        part->cut = visible;
    post(part, std::move(failed));
}

void Look::post(std::shared_ptr<Part> part, Failed failed) {
    viewer_.worker.post(
        Worker::Kind::preview, [=] { part->make(); },
        [=, this, alive = std::weak_ptr<int>(alive_),
         failed = std::move(failed)](const std::string& error) {
            if (alive.expired())
                return;
            failed(error);
            if (!error.empty())
                return viewer_.view.end_preview();
            viewer_.view.preview(part->preview);
            UpdateWindow(viewer_.view.window());
            trace("preview " + part->step.option + " of " +
                  std::to_string(part->preview.image->width()) + " x " +
                  std::to_string(part->preview.image->height()) + ": made in " +
                  milliseconds_text(part->milliseconds) + ", seen after " + part->since.text());
        });
}
