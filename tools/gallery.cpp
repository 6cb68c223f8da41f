#include "gallery.hpp"

#include "effects.hpp"
#include "files.hpp"
#include "lettering.hpp"
#include "make.hpp"
#include "records.hpp"
#include "settings.hpp"
#include "streams.hpp"
#include "watch.hpp"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr int32_t picture_width = 480; // at most
constexpr int32_t thumbnail_width = 168, thumbnail_height = 126;
constexpr int32_t gap = 8, columns = 6;
constexpr uint32_t paper = 0xF4F4F4, ink = 0x202020;

struct Exhibit {
    std::string option, value;
    std::string file; // within the folder
    std::string command() const { return value.empty() ? option : option + " " + value; }
};

const Effect& effect_of(const std::string& option) {
    return *std::find_if(effects().begin(), effects().end(),
                         [&](const Effect& e) { return e.option == option; });
}

std::string numbers(std::initializer_list<int32_t> values) {
    std::string text;
    for (const int32_t value : values)
        text += (text.empty() ? "" : ",") + std::to_string(value);
    return text;
}

// Every effect with its example; those that depend on the picture or show more than one face in
// their own words.
std::vector<Exhibit> exhibits(const Image& picture, const std::string& other) {
    const int32_t w = picture.width(), h = picture.height();
    const std::pair<const char*, std::vector<std::string>> chosen[] = {
        {"--crop", {numbers({w / 4, h / 4, (w + 1) / 2, (h + 1) / 2})}},
        {"--resize", {std::to_string((w + 1) / 2) + "x" + std::to_string(h)}},
        {"--rotate", {"90", "180", "270"}},
        {"--compose", {other + ",0", other + ",1", other + ",3", other + ",4"}},
        {"--paste", {}},     // needs a smaller picture
        {"--key", {}},       // shows in --compose
        {"--histogram", {}}, // prints
        {"--interleave", {other}},
        {"--brightness", {"30", "-30"}},
        {"--contrast", {"40", "-40"}},
        {"--gamma", {"0.6", "1.8"}},
        {"--tone", {"5,4", "1.2,1.0,0.7"}},
        {"--swap-channels", {"1", "2", "3", "4", "5"}},
        {"--channel", {"red", "green", "blue"}},
        {"--hue", {"0,210", "1,30", "2,120"}},
        {"--sharpen", {"0", "1", "2", "3", "4", "5"}},
        {"--sharpen-more", {"0", "3"}},
        {"--edges", {"20,0", "20,1", "20,2"}},
        {"--brush", {numbers({w / 2, h / 2, 5})}},
        {"--palette", {"256", "16", "grey", "fast"}},
        {"--depth", {"16"}},
    };
    std::vector<Exhibit> all;
    for (const Effect& effect : effects()) {
        std::vector<std::string> values = {effect.example};
        for (const auto& [option, own] : chosen) {
            if (option == std::string(effect.option))
                values = own;
        }
        for (const std::string& value : values)
            all.push_back({effect.option, value, ""});
    }
    for (size_t i = 0; i < all.size(); ++i) {
        const std::string number = std::to_string(i + 1);
        all[i].file = std::string(number.size() < 2 ? "0" : "") + number + "-" +
                      all[i].option.substr(2) + ".jpg";
    }
    return all;
}

// One picture above its name.
void mount(const Image& sheet, size_t place, const Image& picture, const std::string& name) {
    const auto at = static_cast<int32_t>(place);
    const int32_t x = gap + at % columns * (thumbnail_width + gap);
    const int32_t y = gap + at / columns * (thumbnail_height + letter_height + 2 * gap);
    const Image small = fitted(copy_at_24_bits(picture), thumbnail_width, thumbnail_height);
    Dib24CopyEx(sheet.handle(), x + (thumbnail_width - small.width()) / 2,
                y + (thumbnail_height - small.height()) / 2, small.handle(), 0, 0, small.width(),
                small.height());
    draw_text(sheet, x, y + thumbnail_height + gap / 2,
              name.substr(0, thumbnail_width / letter_width), ink);
}

Image blank_sheet(size_t pictures) {
    const auto rows = static_cast<int32_t>((pictures + columns - 1) / columns);
    return make_solid(gap + columns * (thumbnail_width + gap),
                      gap + rows * (thumbnail_height + letter_height + 2 * gap), paper);
}

std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text)
        result += c == '&' ? "&amp;" : c == '<' ? "&lt;" : c == '>' ? "&gt;" : std::string(1, c);
    return result;
}

void write_page(const std::string& name, const std::vector<Exhibit>& all) {
    Output output(name, true);
    std::ofstream page(path_of(output.path()));
    page << "<!doctype html>\n<html lang=\"en\">\n<meta charset=\"utf-8\">\n"
            "<meta name=\"viewport\" content=\"width=device-width\">\n<title>Kirvo: every effect"
            "</title>\n<style>\nbody{font:15px/1.4 sans-serif;margin:2em;background:#f4f4f4;"
            "color:#202020}\nmain{display:grid;grid-template-columns:repeat(auto-fill,"
            "minmax(260px,1fr));gap:1.5em}\nfigure{margin:0}\nimg{max-width:100%;"
            "display:block;background:#fff}\nfigcaption b{display:block;margin-top:.4em}\n"
            "code{font-size:12px;word-break:break-all}\n</style>\n<h1>Every effect on one picture"
            "</h1>\n<p>Each command is run in this folder, on <a href=\"00-original.jpg\">the "
            "original</a>.</p>\n<main>\n";
    for (const Exhibit& e : all) {
        page << "<figure><a href=\"" << e.file << "\"><img loading=\"lazy\" src=\"" << e.file
             << "\" alt=\"" << escaped(e.command()) << "\"></a><figcaption><b>"
             << escaped(effect_of(e.option).summary)
             << "</b><code>kirvo convert --force 00-original.jpg " << e.file << ' '
             << escaped(e.command()) << "</code></figcaption></figure>\n";
    }
    page << "</main>\n</html>\n";
    page.close();
    if (!page)
        throw Failure(name, KIRVO_WRITE_ERROR);
    output.complete();
}

void prepare(const fs::path& folder) {
    std::error_code error;
    fs::create_directories(folder, error);
    if (!fs::is_directory(folder, error))
        throw Failure(text_of(folder), "the folder cannot be made");
    if (!settings.force && !fs::is_empty(folder, error))
        throw Failure(text_of(folder), "the folder is not empty; --force writes into it");
}

void report(const std::string& folder, size_t pictures) {
    if (settings.json)
        print_json({{"folder", json_name(folder)}, {"pictures", pictures}});
    else if (!settings.quiet)
        std::printf("%zu pictures, contact-sheet.jpg and index.html in %s\n", pictures,
                    folder.c_str());
}

} // namespace

void make_gallery(const std::string& input, const std::string& folder_name) {
    const fs::path folder = path_of(folder_name);
    prepare(folder);
    const auto inside = [&](const std::string& name) { return text_of(folder / name); };

    WriteOptions fine;
    fine.quality = 2;
    fine.replace = true;
    write_image(inside("00-original.jpg"),
                fitted(to_24_bits(read_image(input)), picture_width, picture_width), fine);
    const Image picture = read_image(inside("00-original.jpg"));
    const std::string gradient = inside("gradient.bmp");
    write_image(
        gradient,
        make_gradient(picture.width(), picture.height(), {0x000000, 0x004080, 0x804000, 0xC0C0C0}),
        fine);

    std::vector<Exhibit> all = exhibits(picture, gradient);
    const Image sheet = blank_sheet(all.size() + 1);
    mount(sheet, 0, picture, "original");
    expect_work(all.size());
    for (size_t i = 0; i < all.size(); ++i) {
        Exhibit& e = all[i];
        const Watch watch(e.option.substr(2));
        Image result =
            effect_of(e.option).apply(copy_at_24_bits(picture), Arguments(e.option, e.value));
        // The page's commands are run beside the gradient.
        if (const size_t at = e.value.find(gradient); at != std::string::npos)
            e.value.replace(at, gradient.size(), "gradient.bmp");
        mount(sheet, i + 1, result, e.command().substr(2));
        write_image(inside(e.file), std::move(result), fine);
    }
    write_image(inside("contact-sheet.jpg"), copy_at_24_bits(sheet), fine);
    write_page(inside("index.html"), all);
    report(folder_name, all.size() + 1);
}
