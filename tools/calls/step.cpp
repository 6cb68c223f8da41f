#include "calls/step.hpp"

#include "calls/recorded.hpp"
#include "effects/effects.hpp"
#include "effects/operations.hpp"

namespace {

// Notes the calls made while it lives.
class Recording {
  public:
    explicit Recording(calls::List& list) {
        list.calls.clear();
        calls::noted = &list.calls;
    }
    ~Recording() { calls::noted = nullptr; }
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;
};

Image with_values(Image image, const Effect& effect, const std::string& text) {
    const Values values(effect.option, effect.parameters, text);
    if (effect.check != nullptr)
        effect.check(values);
    return effect.apply(std::move(image), values);
}

Image in_part(Image image, const Effect& effect, const Step& step) {
    const int32_t x = step.place->left, y = step.place->top;
    const int32_t width = step.place->right - x, height = step.place->bottom - y;
    if (image.bits() != 24 && image.bits() != 32)
        image = to_24_bits(std::move(image));
    int32_t status = 0;
    Image part =
        checked(Dib24DupEx(image.handle(), x, y, width, height, &status), step.option, status);
    part = at_depth(with_values(std::move(part), effect, step.values), image.bits());
    if (part.width() != width || part.height() != height)
        throw Failure(step.option, "the size changes, which a part of a picture cannot");
    status = Dib24CopyEx(image.handle(), x, y, part.handle(), 0, 0, width, height);
    if (status != KIRVO_OK)
        throw Failure(step.option, meaning(status), status);
    return image;
}

} // namespace

Image applied(const Image& image, Step& step) {
    const Effect& effect = *effect_called(step.option);
    Image copy = image.copy();
    step.calls.first = copy.handle();
    const Recording recording(step.calls);
    Image result = step.place ? in_part(std::move(copy), effect, step)
                              : with_values(std::move(copy), effect, step.values);
    step.calls.last = result.handle();
    return result;
}
