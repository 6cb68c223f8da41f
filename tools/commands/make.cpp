// kirvo make: pictures of one colour, and gradients.
#include "commands/make.hpp"

#include "commands/commands.hpp"
#include "commands/shared_options.hpp"
#include "line/colours.hpp"

namespace {

struct MakeOptions {
    std::string size, output, to, colours;
    bool vertical = false;
};

std::vector<uint32_t> colours_of(const std::string& list) {
    std::istringstream words(list);
    std::vector<uint32_t> colours;
    for (std::string word; std::getline(words, word, ',');)
        colours.push_back(parse_colour(word));
    return colours;
}

Image picture_of(const MakeOptions& wanted, const std::vector<uint32_t>& c, bool gradient) {
    const Size size = parse_size(wanted.size);
    if (size.width == 0 || size.height == 0)
        throw UsageError("'" + wanted.size + "': the size of a new picture is written 640x480");
    if (!gradient) {
        if (c.size() != 1)
            throw UsageError("--colour: a solid picture has one colour");
        return make_solid(size.width, size.height, c[0]);
    }
    if (c.size() == 2)
        return make_gradient(size.width, size.height, c[0], c[1], wanted.vertical);
    if (c.size() != 4)
        throw UsageError("--colour: a gradient has two or four colours");
    return make_gradient(size.width, size.height, {c[0], c[1], c[2], c[3]});
}

void make(const MakeOptions& wanted, bool gradient) {
    WriteOptions options;
    options.to = wanted.to;
    check_writable(wanted.output, wanted.to);
    write_image(wanted.output, picture_of(wanted, colours_of(wanted.colours), gradient), options);
}

} // namespace

Image make_solid(int32_t width, int32_t height, uint32_t colour) {
    int32_t status = 0;
    HGLOBAL handle = Dib24Solid(width, height, 24, colour, &status);
    return checked(handle, "a new picture", status);
}

Image make_gradient(int32_t width, int32_t height, uint32_t from, uint32_t to, bool vertical) {
    int32_t status = 0;
    HGLOBAL handle = vertical ? Dib24Gradation2(width, height, 24, from, to, &status)
                              : Dib24Gradation1(width, height, 24, from, to, &status);
    return checked(handle, "a new picture", status);
}

Image make_gradient(int32_t width, int32_t height, const uint32_t (&corners)[4]) {
    int32_t status = 0;
    HGLOBAL handle =
        Dib24Gradation3(width, height, 24, corners[0], corners[1], corners[2], corners[3], &status);
    return checked(handle, "a new picture", status);
}

void add_make(Command& program) {
    static MakeOptions wanted;
    Command* command = program.add("make", "Makes a picture of one colour or a gradient");
    command->require_subcommand(1);
    command->usage = {"KIND SIZE OUTPUT --colour COLOUR..."};
    const auto add = [&](const char* name, const char* help, bool gradient) {
        Command* kind = command->add(name, help);
        kind->usage = {"SIZE OUTPUT --colour COLOUR..."};
        kind->add_option("SIZE", wanted.size, "Size in pixels")->type_name("WxH")->required();
        kind->add_option("OUTPUT", wanted.output, "Picture to write; - is standard output")
            ->type_name("FILE")
            ->required();
        kind->add_option("-c,--colour,--color", wanted.colours,
                         "RRGGBB, #RRGGBB or a name; one after the other")
            ->type_name("COLOUR")
            ->required()
            ->multi_option_policy(CLI::MultiOptionPolicy::Join)
            ->delimiter(',');
        add_format(kind, wanted.to);
        kind->callback([gradient] { make(wanted, gradient); });
        return kind;
    };
    const std::string solid = "kirvo make solid 640x480 blue.bmp --colour blue",
                      gradient = "kirvo make gradient 640x480 sky.png "
                                 "--colour 3060C0 C0E0FF --vertical";
    command->examples = {solid, gradient};
    add("solid", "One colour", false)->examples = {solid};
    Command* kind =
        add("gradient", "Two colours from side to side, or four from the corners", true);
    kind->examples = {gradient, "kirvo make gradient 64x64 corners.bmp -c black red lime yellow"};
    kind->add_flag("--vertical", wanted.vertical, "From top to bottom");
}
