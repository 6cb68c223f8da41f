// kirvo gallery: every effect on one picture, as numbered JPEG files, one sheet and a web page.
#include "commands/commands.hpp"
#include "commands/exhibits.hpp"
#include "commands/gallery_page.hpp"
#include "commands/lettering.hpp"
#include "commands/make.hpp"
#include "line/json.hpp"
#include "pictures/picture.hpp"
#include "running/watch.hpp"
#include "system/names.hpp"
#include "system/settings.hpp"
#include "system/streams.hpp"

#include <cstdio>

namespace fs = std::filesystem;

namespace {

constexpr int32_t picture_width = 480; // at most
constexpr int32_t thumbnail_width = 168, thumbnail_height = 126;
constexpr int32_t gap = 8, columns = 6;
constexpr uint32_t paper = 0xF4F4F4, ink = 0x202020;

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

void write_text(const std::string& name, const std::string& text) {
    Output output(name, true);
    output.write(text.data(), text.size());
    output.complete();
}

void prepare(const fs::path& folder) {
    std::error_code error;
    fs::create_directories(folder, error);
    if (!fs::is_directory(folder))
        throw Failure(text_of(folder), "the folder cannot be made: " + error.message());
    if (!settings.force && !fs::is_empty(folder, error))
        throw Failure(text_of(folder), "the folder is not empty; --force writes into it");
}

void report(const std::string& folder, size_t pictures) {
    if (settings.json)
        print_json({{"folder", folder}, {"pictures", pictures}});
    else if (!settings.quiet)
        std::printf("%zu pictures, contact-sheet.jpg and index.html in %s\n", pictures,
                    folder.c_str());
}

void make_gallery(const std::string& input, const std::string& folder_name) {
    const Image original = fitted(to_24_bits(read_image(input)), picture_width, picture_width);
    const fs::path folder = path_of(folder_name);
    prepare(folder);
    const auto inside = [&](const std::string& name) { return text_of(folder / name); };

    WriteOptions fine;
    fine.level = 2;
    fine.replace = true;
    write_image(inside("00-original.jpg"), copy_at_24_bits(original), fine);
    const Image picture = to_24_bits(read_image(inside("00-original.jpg")));
    const int32_t width = picture.width(), height = picture.height();
    write_image(inside("gradient.bmp"),
                make_gradient(width, height, {0x000000, 0x004080, 0x804000, 0xC0C0C0}), fine);

    const std::vector<Exhibit> all = exhibits(width, height, "gradient.bmp");
    const Image sheet = blank_sheet(all.size() + 1);
    mount(sheet, 0, picture, "original");
    expect_work(all.size());
    for (size_t i = 0; i < all.size(); ++i) {
        const Exhibit& e = all[i];
        const Watch watch(e.effect->name());
        // The page's commands are run in the folder.
        const bool other = e.value.starts_with("gradient.bmp");
        const Values values(e.effect->option, e.effect->parameters,
                            other ? inside(e.value) : e.value);
        Image result = e.effect->apply(copy_at_24_bits(picture), values);
        mount(sheet, i + 1, result, e.command().substr(2));
        write_image(inside(e.file), std::move(result), fine);
    }
    write_image(inside("contact-sheet.jpg"), copy_at_24_bits(sheet), fine);
    write_text(inside("index.html"), gallery_page(all));
    report(folder_name, all.size() + 1);
}

} // namespace

void add_gallery(Command& program) {
    static std::string input, folder;
    Command* command = program.add("gallery", "Shows every effect on one picture, as a web page");
    command->usage = {"INPUT DIR"};
    command->examples = {"kirvo gallery photo.jpg gallery"};
    command->add_option("INPUT", input, "Picture to read")->type_name("FILE")->required();
    command->add_option("DIR", folder, "Folder to write, made if missing")
        ->type_name("DIR")
        ->required();
    command->callback([] { make_gallery(input, folder); });
}
