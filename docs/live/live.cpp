// What the reference's live pages call: the command line's effects on a picture, in WebAssembly, and
// the calls of the library that they took as code.
//
// A page gives the first picture and, for effects of two pictures, the others by their names; then
// it has steps done. Everything answers in plain C: engine.js is the other side.

#include "calls/code.hpp"
#include "effects/effects.hpp"
#include "pictures/picture.hpp"

#include <cstdlib>
#include <cstring>
#include <map>

#define EXPORTED extern "C" __attribute__((used, visibility("default")))

namespace {

Image first, result;
std::map<std::string, Image> others;
std::vector<Step> steps;
std::string text; // of the last answer

const char* told(std::string words) {
    text = std::move(words);
    return text.c_str();
}

struct Pixel {
    uint8_t red, green, blue, opaque;
};

// A canvas's pixels, top row first, as a picture of 24 bits.
Image from_canvas(const Pixel* pixels, int32_t width, int32_t height) {
    int32_t status = 0;
    Image image = checked(Dib24Solid(width, height, 24, 0, &status), "the picture", status);
    for (const kirvo::Row row : image.rows()) {
        uint8_t* at = row.data();
        for (int32_t x = 0; x < width; ++x, ++pixels, at += 3) {
            at[0] = pixels->blue;
            at[1] = pixels->green;
            at[2] = pixels->red;
        }
    }
    return image;
}

void to_canvas(const Image& image, Pixel* pixels) {
    const Image copy = copy_at_24_bits(image);
    const int32_t width = copy.width();
    for (const kirvo::ConstRow row : copy.rows()) {
        const uint8_t* at = row.data();
        for (int32_t x = 0; x < width; ++x, ++pixels, at += 3)
            *pixels = {at[2], at[1], at[0], 255};
    }
}

// Whatever fails is told in words; an empty text is success.
template<typename Work>
const char* words_of(Work work) {
    try {
        work();
        return told("");
    } catch (const Failure& failure) {
        return told(failure.reason());
    } catch (const std::exception& error) {
        return told(error.what());
    }
}

} // namespace

std::string meaning(int32_t status) { return kirvo_status_text(status); }

Image read_image(const std::string& name) {
    const auto found = others.find(name);
    if (found == others.end())
        throw Failure(name, "there is no such picture");
    Image image = found->second.copy();
    if (calls::noted != nullptr) {
        calls::Call call = {"", {}, calls::Answer::image};
        call.image = image.handle();
        call.file = name;
        calls::noted->push_back(call);
    }
    return image;
}

// The picture that steps begin with, or, with a name, one that they may name.
EXPORTED const char* live_picture(const char* name, const Pixel* pixels, int32_t width,
                                  int32_t height) {
    return words_of([=] {
        Image image = from_canvas(pixels, width, height);
        (*name == '\0' ? first : others[name]) = std::move(image);
    });
}

// The pixels of a JPEG stream as a canvas has them, in a block that the caller frees.
EXPORTED Pixel* live_decoded(const uint8_t* stream, uint32_t size, int32_t* width,
                             int32_t* height) {
    int32_t status = 0;
    const kirvo::Block block(GlobalAlloc(GMEM_MOVEABLE, size));
    if (!block)
        return nullptr;
    std::memcpy(kirvo::Locked(block.get()).address(), stream, size);
    const Image image = Image::adopt(
        JpgDecMainHGLOBAL(block.get(), static_cast<int32_t>(size), nullptr, nullptr, &status));
    if (!image)
        return nullptr;
    *width = image.width();
    *height = image.height();
    auto* pixels = static_cast<Pixel*>(
        std::malloc(sizeof(Pixel) * static_cast<size_t>(*width) * static_cast<size_t>(*height)));
    to_canvas(image, pixels);
    return pixels;
}

EXPORTED void live_begin() {
    steps.clear();
    forget_effects();
    result = Image();
}

// One more step on what the last one left.
EXPORTED const char* live_step(const char* option, const char* values) {
    return words_of([=] {
        Step step;
        step.option = option;
        step.values = values;
        result = applied(result ? result : first, step);
        steps.push_back(std::move(step));
    });
}

EXPORTED int32_t live_width() { return (result ? result : first).width(); }
EXPORTED int32_t live_height() { return (result ? result : first).height(); }
EXPORTED int32_t live_bits() { return (result ? result : first).bits(); }
EXPORTED void live_pixels(Pixel* pixels) { to_canvas(result ? result : first, pixels); }

// Counts of red, green and blue, 256 each.
EXPORTED void live_histogram(uint32_t* counts) {
    const Image image = copy_at_24_bits(result ? result : first);
    DibHistgram(image.handle(), 0, 0, image.width(), image.height(), counts, counts + 256,
                counts + 512);
}

EXPORTED int32_t live_languages() { return language_count; }
EXPORTED const char* live_language(int32_t language) {
    return language_name(static_cast<Language>(language));
}
EXPORTED const char* live_code(int32_t language) {
    return told(code_of(static_cast<Language>(language), steps));
}
EXPORTED const char* live_command_line(const char* in) {
    // A PNG file, as the page itself saves.
    return told(command_line_of(steps, in, changed_name(in, false)));
}
