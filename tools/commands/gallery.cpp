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
#include <deque>

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

// Files of one folder that appear together, once all are complete.
class Gallery {
  public:
    explicit Gallery(const fs::path& name) : name_(name), folder_(name) {
        std::error_code error;
        if (!settings.force && !fs::is_empty(name, error))
            throw Failure(text_of(name), "the folder is not empty; --force writes into it");
    }

    // Both give the file's passing name.
    std::string add(const std::string& file, Image image) {
        WriteOptions fine;
        fine.level = 2;
        Picture picture;
        picture.image = std::move(image);
        fill(begin(file), file, std::move(picture), fine);
        return files_.back().passing_name();
    }
    std::string add(const std::string& file, const std::string& text) {
        begin(file).write(text.data(), text.size());
        return files_.back().passing_name();
    }

    void complete() {
        const Uninterrupted now;
        for (Output& file : files_)
            file.complete();
    }

  private:
    Output& begin(const std::string& file) {
        return files_.emplace_back(text_of(name_ / file), true);
    }

    fs::path name_;
    NewFolder folder_;
    std::deque<Output> files_;
};

void report(const std::string& folder, size_t pictures) {
    if (settings.json)
        print_json({{"folder", folder}, {"pictures", pictures}});
    else if (!settings.quiet)
        std::printf("%zu pictures, contact-sheet.jpg and index.html in %s\n", pictures,
                    folder.c_str());
}

void make_gallery(const std::string& input, const std::string& folder_name) {
    const Image original = fitted(to_24_bits(read_image(input)), picture_width, picture_width);
    Gallery gallery(path_of(folder_name));
    const std::string first = gallery.add("00-original.jpg", copy_at_24_bits(original));
    const Image picture = to_24_bits(read_image(first));
    const int32_t width = picture.width(), height = picture.height();
    const std::string other = "gradient.bmp"; // the page's commands are run in the folder
    const std::string other_now =
        gallery.add(other, make_gradient(width, height, {0x000000, 0x004080, 0x804000, 0xC0C0C0}));

    const std::vector<Exhibit> all = exhibits(width, height, other);
    const Image sheet = blank_sheet(all.size() + 1);
    mount(sheet, 0, picture, "original");
    expect_work(all.size());
    for (size_t i = 0; i < all.size(); ++i) {
        const Exhibit& e = all[i];
        const Watch watch(e.effect->name());
        std::string value = e.value;
        if (value.starts_with(other))
            value.replace(0, other.size(), other_now);
        const Values values(e.effect->option, e.effect->parameters, value);
        Image result = e.effect->apply(copy_at_24_bits(picture), values);
        mount(sheet, i + 1, result, e.command().substr(2));
        gallery.add(e.file, std::move(result));
    }
    gallery.add("contact-sheet.jpg", copy_at_24_bits(sheet));
    gallery.add("index.html", gallery_page(all));
    gallery.complete();
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
