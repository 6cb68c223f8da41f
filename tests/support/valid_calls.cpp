#include "support/valid_calls.hpp"

#include "support/dib_builder.hpp"
#include "support/jpeg_builder.hpp"

#include <cstring>
#include <filesystem>

namespace kirvo_test {

namespace {

constexpr int32_t width = 21, height = 13;

void append(std::vector<uint8_t>& to, std::initializer_list<int> bytes) {
    for (const int byte : bytes)
        to.push_back(static_cast<uint8_t>(byte));
}

// An icon of 8 x 8 pixels of 1 bit.
std::vector<uint8_t> icon_file() {
    std::vector<uint8_t> file;
    append(file, {0, 0, 1, 0, 1, 0, 8, 8, 2, 0, 1, 0, 1, 0, 40 + 8 + 64, 0, 0, 0, 22, 0, 0, 0});
    append(file, {40, 0, 0, 0, 8, 0, 0, 0, 16, 0, 0, 0, 1, 0, 1, 0});
    file.resize(file.size() + 24 + 8 + 64);
    return file;
}

std::vector<uint8_t> bmp_file() {
    const std::vector<uint8_t> image = plain_image(24);
    std::vector<uint8_t> file = {'B', 'M', 0, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0, 0};
    file.insert(file.end(), image.begin(), image.end());
    return file;
}

std::vector<uint8_t> targa_file() {
    std::vector<uint8_t> file(18 + 3 * width * height);
    file[2] = 2;
    file[12] = width;
    file[14] = height;
    file[16] = 24;
    return file;
}

std::vector<uint8_t> raw_file() {
    std::vector<uint8_t> file = {'m', 'h', 'w', 'a', 'n', 'h', 0, 4, 0, width, 0, height};
    file.resize(32 + 3 * width * height);
    return file;
}

std::vector<uint8_t> jpeg_file() {
    Random random(8);
    JpegPlan plan;
    plan.width = width;
    plan.height = height;
    plan.comments = {"one", "two"};
    return build_jpeg(plan, random);
}

bool begins(std::string_view text, std::string_view with) {
    return text.substr(0, with.size()) == with;
}

// Numbers that only certain values are right for.
struct Fixed {
    std::string_view function, parameter; // of any function when empty
    int32_t number;
};

constexpr Fixed fixed_numbers[] = {
    {"", "mcus_per_call", -1},
    {"", "control", 0},
    {"", "final", 1},
    {"", "index", 0},
    {"", "progress", 0},
    {"Dib24FilterEx", "range0", 0x101},
    {"KirvoSetProcess", "enable", 0},
};

const Fixed* fixed_number(const Export& what, std::string_view parameter) {
    for (const Fixed& fixed : fixed_numbers) {
        if ((fixed.function.empty() || fixed.function == what.name) && fixed.parameter == parameter)
            return &fixed;
    }
    return nullptr;
}

bool is_depth(const Parameter& parameter) {
    return parameter.kind == Kind::number && parameter.name == "bits";
}

bool has_numbers(const Export& what) {
    for (const Parameter& parameter : what.parameters) {
        if (parameter.kind == Kind::number && !is_depth(parameter) &&
            fixed_number(what, parameter.name) == nullptr)
            return true;
    }
    return false;
}

bool has_depth(const Export& what) {
    for (const Parameter& parameter : what.parameters) {
        if (parameter.kind == Kind::image || is_depth(parameter))
            return true;
    }
    return false;
}

void decode_with_comments(Pool& pool, const Samples& samples) {
    JpgDecGetCommentEnable(1);
    const auto size = static_cast<int32_t>(samples.stream().size());
    pool.take(JpgDecMainHGLOBAL(pool.add(samples.stream()), size, nullptr, nullptr, nullptr));
}

// What has to be done before a call.
void precede(const Export& what, Pool& pool, const Samples& samples) {
    int32_t status = 0;
    if (what.name == "JpgCodNext") {
        pool.stream_under_way =
            JpgCodFirst(pool.add(plain_image(24)), 0, 0, width, height, -1, &status);
    } else if (what.name == "JpgCodNext_M") {
        pool.stream_under_way =
            JpgCodFirst_M(pool.add(plain_image(8)), 0, 0, width, height, 0, -1, &status);
    } else if (what.name == "JpgDecNext") {
        HGLOBAL image = nullptr;
        JpgDecFirst(pool.add(samples.stream()), 0, &image);
    } else if (begins(what.name, "JpgDecGetQtable") || what.name == "JpgDecGetComment" ||
               what.name == "JpgDecCommentFree") {
        decode_with_comments(pool, samples);
    } else if (what.name == "DibFilter3x3") {
        SetFilter3x3(1, 2, 3, 4, 5, 6, 7, 8, 9, 45);
    }
}

} // namespace

std::vector<uint8_t> plain_image(int bits) {
    Random random(static_cast<uint64_t>(bits));
    DibSpec spec{width, height, bits};
    if (bits == 16 || bits == 32)
        spec.masks = bits == 16 ? masks_565 : masks_888;
    Dib dib = make_dib(spec);
    if (bits <= 8) {
        for (int i = 0; i < 1 << bits; ++i)
            dib.set_colour(i, random.byte(), random.byte(), random.byte());
    }
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            const uint32_t channels = random.next() & 7;
            const uint32_t colour =
                (channels & 1) * 0xFF | (channels >> 1 & 1) * 0xFF00 | (channels >> 2) * 0xFF0000;
            dib.set_pixel(x, y, bits >= 24 ? colour : random.next() & ((1u << bits) - 1));
        }
    }
    return dib.bytes();
}

std::vector<uint8_t> random_image(int bits, Choices& choices) {
    Random random(choices.below(UINT32_MAX));
    DibSpec spec{random.between(1, 48), random.between(1, 48), bits};
    if (bits == 16)
        spec.masks = random.once_in(2) ? masks_555 : masks_565;
    else if (bits == 32)
        spec.masks = masks_888;
    return make_random_dib(spec, random).bytes();
}

void discard_leftovers() {
    end_codec_operations();
    JpgCodSetComment(nullptr, 0);
    JpgDecGetCommentEnable(0);
    JpgDecCommentFree();
    KirvoSetProcess(nullptr, 0, 0);
}

Samples::Samples()
    : stream_(jpeg_file()), bmp_(folder_.write("a.bmp", bmp_file())),
      jpeg_(folder_.write("a.jpg", stream_)), icon_(folder_.write("a.ico", icon_file())),
      targa_(folder_.write("a.tga", targa_file())),
      q0_(folder_.write("a.q0", std::vector<uint8_t>(3 * width * height))),
      raw_(folder_.write("a.raw", raw_file())), written_(folder_.path("written")) {
    folder_.write("a.IPR", std::to_string(width) + " " + std::to_string(height));
    folder_.write("empty", "");
}

const char* Samples::file_for(const Export& what) const {
    const std::pair<std::string_view, const std::string*> files[] = {
        {"Jpg", &jpeg_}, {"Ico", &icon_}, {"Targa", &targa_}, {"Q0", &q0_}, {"Raw", &raw_}};
    for (const auto& [start, file] : files) {
        if (begins(what.name, start))
            return file->c_str();
    }
    return bmp_.c_str();
}

std::vector<std::string> Samples::all_files() const {
    return {bmp_,
            jpeg_,
            icon_,
            targa_,
            q0_,
            raw_,
            folder_.path("missing"),
            folder_.path("empty"),
            folder_.path("")};
}

std::vector<std::string> Samples::all_targets() const {
    return {written_, folder_.path("no such folder/file"), folder_.path(""), ""};
}

Call Plan::prepare(Pool& pool, const Samples& samples) const {
    precede(*what, pool, samples);
    Call call(*what, pool);
    const auto number_at = [](int64_t n) { return Value{static_cast<uint64_t>(n)}; };
    for (size_t i = 0; i < what->parameters.size(); ++i) {
        const Parameter& parameter = what->parameters[i];
        Value& value = call.argument(i);
        switch (parameter.kind) {
        case Kind::image:
            value.pointer = pool.add(plain_image(bits));
            break;
        case Kind::stream:
            value.pointer = pool.add(samples.stream());
            break;
        case Kind::file_read:
            value.pointer = samples.file_for(*what);
            break;
        case Kind::file_written:
            value.pointer = samples.written();
            break;
        case Kind::position:
            value = number_at(whole ? 0 : 1);
            break;
        case Kind::extent: {
            const bool across = parameter.name.find("width") != std::string_view::npos;
            const int32_t side = across ? width : height;
            const bool is_new = begins(parameter.name, "new_");
            value = number_at(is_new ? side / 2 : whole ? side : side - 3);
            break;
        }
        case Kind::size:
            value = number_at(begins(what->name, "JpgDec") ? samples.stream().size() : 60);
            break;
        case Kind::number:
            if (const Fixed* fixed = fixed_number(*what, parameter.name))
                value = number_at(fixed->number);
            else
                value = number_at(is_depth(parameter) ? bits : number);
            break;
        case Kind::real:
            value.real = 1.5;
            break;
        case Kind::window:
            break;
        case Kind::input:
        case Kind::output:
        case Kind::output_handle:
            break;
        }
    }
    // Sizes are known now.
    for (size_t i = 0; i < what->parameters.size(); ++i) {
        const Parameter& parameter = what->parameters[i];
        if (parameter.kind == Kind::input) {
            uint8_t* memory = call.give_memory(i, 1);
            if (parameter.name == "luminance" || parameter.name == "chrominance") {
                for (size_t at = 1; at < parameter.bytes; at += 2)
                    memory[at] = 0; // quantisers of 1
            }
        } else if (parameter.kind == Kind::output || parameter.kind == Kind::output_handle) {
            call.give_memory(i, parameter.kind == Kind::output ? 0xAB : 0);
        }
    }
    return call;
}

std::string Plan::name() const {
    return std::string(what->name) + " at " + std::to_string(bits) + " bits with " +
           std::to_string(number);
}

std::vector<Plan> plans_for(const Export& what, const Samples& samples, bool once_a_depth) {
    std::vector<Plan> plans;
    for (const int bits : {24, 8, 32, 16, 4, 1}) {
        for (const int32_t number : {2, 1, 0, 3}) {
            const Plan plan{&what, bits, number};
            Pool pool;
            Call call = plan.prepare(pool, samples);
            call.make();
            const bool works = call.succeeded() && call.problem().empty();
            discard_leftovers();
            if (works)
                plans.push_back(plan);
            if (!has_numbers(what) || (works && once_a_depth))
                break;
        }
        if (!has_depth(what))
            break;
    }
    return plans;
}

bool works_elsewhere_only(const Export& what) {
    return what.name == "PcdRead"; // needs another library
}

} // namespace kirvo_test
