#include "effect.hpp"

#include "calls/recorded.hpp"
#include "effects/operations.hpp"

#include <algorithm>
#include <set>

namespace {

using Kind = Parameter::Kind;

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

std::string first_value(const Parameter& parameter, const RECT& whole) {
    const auto number = [](LONG value) { return std::to_string(value); };
    switch (parameter.kind) {
    case Kind::mode:
    case Kind::choice:
        return parameter.words.front();
    case Kind::colour:
        return "808080";
    case Kind::size:
        return "50%";
    case Kind::file:
        return "";
    default:
        break;
    }
    if (parameter.optional)
        return "";
    if (parameter.name == "X")
        return number(whole.left);
    if (parameter.name == "Y")
        return number(whole.top);
    if (parameter.name == "W")
        return number(whole.right - whole.left);
    if (parameter.name == "H")
        return number(whole.bottom - whole.top);
    return number(static_cast<LONG>(std::clamp(0.0, parameter.least, parameter.most)));
}

std::vector<std::string> split(const std::string& text) {
    std::vector<std::string> pieces(1);
    for (const char character : text) {
        if (character == ',')
            pieces.emplace_back();
        else
            pieces.back() += character;
    }
    return pieces;
}

} // namespace

Image applied(const Image& image, Step& step) {
    const Effect& effect = *effect_called(step.option);
    Image copy = duplicate(image);
    step.calls.first = copy.handle();
    const Recording recording(step.calls);
    Image result = step.place ? in_part(std::move(copy), effect, step)
                              : with_values(std::move(copy), effect, step.values);
    step.calls.last = result.handle();
    return result;
}

bool counts_pixels(const Effect& effect) {
    static const std::set<std::string> all = {"X", "Y", "W", "H", "WxH"};
    return std::any_of(effect.parameters.begin(), effect.parameters.end(),
                       [](const Parameter& parameter) { return all.contains(parameter.name); });
}

bool works_on_parts(const Effect& effect) {
    static const std::set<std::string> whole_only = {"--crop",  "--resize",  "--fit",   "--rotate",
                                                     "--depth", "--palette", "--brush", "--key"};
    return !whole_only.contains(effect.option);
}

// The catalogue's example where there is one, since it shows something.
std::vector<std::string> first_values(const Effect& effect, const RECT& whole) {
    std::vector<std::string> values;
    for (const Parameter& parameter : effect.parameters)
        values.push_back(first_value(parameter, whole));
    if (*effect.example != '\0' && !values.empty()) {
        const std::vector<std::string> example = split(effect.example);
        for (size_t i = 0; i < values.size(); ++i)
            values[i] = i < example.size() ? example[i] : "";
    }
    return values;
}
