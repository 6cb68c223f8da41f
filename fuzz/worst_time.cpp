// Which inputs take the readers longest, for their bytes and their pixels.
//
//     kirvo_worst_time SECONDS [NAME ...]   searches so long for each reader, or those named, keeps
//                                           the slowest inputs in fuzz/slowest and what they take in
//                                           fuzz/slowest/bounds.txt
//     kirvo_worst_time                      fails when one takes three times what is written there
//
// An input takes a time that every call may take, and beyond it so much for each byte, or for each
// pixel where it has more pixels than bytes.
#include "files.hpp"
#include "jpeg.hpp"
#include "structure.hpp"

#include "exif.hpp"
#include "image/dib.hpp"
#include "support/stopwatch.hpp"
#include "support/world_files.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

using namespace kirvo_fuzz;
namespace files = std::filesystem;

namespace {

constexpr double every_call = 20e-3; // milliseconds
constexpr double spare = 3;
constexpr size_t longest_input = 65536, shortest_input = 256;
constexpr uint64_t largest_picture = 1 << 20; // bytes: less than a huge page
constexpr size_t kept = 16;
const files::path slowest = files::path(KIRVO_FUZZ_FOLDER) / "slowest";

double pixels_of(HGLOBAL image) {
    const kirvo::OwnedBlock owner(image);
    if (!owner)
        return 0;
    const kirvo::LockedDib dib(owner.get());
    return static_cast<double>(dib.width()) * dib.height();
}

// A reader gives the pixels that it has made, or begun to make. Its searches begin with inputs of
// the fuzzer of its name, and with the files of the world that end like this.
struct Reader {
    const char* name;
    double (*read)(const char* file, const Bytes& bytes);
    Target::Mutate mutate;
    const char* ending = nullptr;
    bool has_companion = false; // the input's text up to its first zero byte
};

// How many numbers there are, and how large, decides how long the companion takes, and the shape of
// the picture how long its rows do.
void mutate_q0(Bytes& input, Random& random) {
    const auto end = std::find(input.begin(), input.end(), 0);
    if (end == input.end() || random.once_in(2)) {
        const int32_t width = random.once_in(2) ? random.between(1, 4) : random.between(1, 5000);
        const auto pixels = static_cast<int32_t>((input.end() - end) / 3);
        const std::string text =
            std::to_string(width) + ' ' + std::to_string(pixels / width) + '\0';
        input.erase(input.begin(), end);
        input.insert(input.begin(), text.begin(), text.end());
    } else if (random.once_in(2)) {
        input.insert(input.end(), static_cast<size_t>(random.between(1, 20000)), random.byte());
    } else {
        static constexpr uint8_t characters[] = {' ', '0', '9', '-', '\n', '\t', 'x'};
        input.insert(input.begin(), random.pick(characters));
    }
}

// Tables outlive a decode: without those of reset_decoder, a stream that does without its own would
// be slow in a search and fail at once in a test.
double read_jpeg(const char* file, const Bytes& bytes) {
    reset_decoder();
    const kirvo::OwnedBlock data = block_of(bytes);
    int32_t error;
    const double made = pixels_of(JpgDecMainHGLOBAL(data.get(), static_cast<int32_t>(bytes.size()),
                                                    nullptr, nullptr, &error));
    JpgDecSpec spec = {};
    if (made == 0 && JpgDecGetSpecEx(file, &spec) == KIRVO_OK)
        return static_cast<double>(spec.width) * spec.height;
    return made;
}

double read_icon(const char* file, const Bytes&) {
    uint8_t records[600];
    uint32_t width, height, bits;
    int32_t status;
    HGLOBAL mask = nullptr;
    IcoGetInfo(file, records, sizeof records);
    const double pixels = pixels_of(IcoGetData(file, 0, &width, &height, &bits, &status, &mask));
    GlobalFree(mask);
    return pixels;
}

// KirvoFiles' own readers; all that a file claims counts, for they give what there is of it.
template<kirvo_files::Status (*read)(kirvo_files::Job& job)>
double read_with_files(const char*, const Bytes& bytes) {
    kirvo_files::OpenOptions options;
    options.flags = KIRVO_FILES_KEEP_GOING;
    kirvo_files::Known known;
    kirvo_files::Job job{{bytes.data(), bytes.size()}, options, false, known, {}, false};
    read(job);
    return static_cast<double>(known.numbers.width) * known.numbers.height;
}

// As a TIFF file's EXIF is read, taken out, brought up to date and put into another.
double read_exif(const char*, const Bytes& input) {
    const kirvo_files::Bytes bytes(input.data(), input.size());
    kirvo_files::Known known;
    kirvo_files::read_exif(known, bytes);
    const kirvo_files::Tiff tiff(bytes);
    kirvo_files::Buffer taken, file;
    if (tiff.good() && kirvo_files::exif_of_tiff(bytes, tiff.first_directory(), taken) &&
        file.append("II*\0\x08\0\0\0\0\0\0\0\0\0", 14)) {
        kirvo_files::update_exif(taken, 640, 480, true);
        kirvo_files::add_to_tiff(file, taken.bytes(), {}, {});
    }
    return 0;
}

const Reader readers[] = {
    {"jpeg_whole", read_jpeg, mutate_jpeg},
    {"jpeg_file",
     [](const char* file, const Bytes&) {
         JpgDecSpec spec;
         JpgDecGetSpecEx(file, &spec);
         return 0.0;
     },
     mutate_jpeg},
    {"bmp",
     [](const char* file, const Bytes&) {
         uint32_t width, height;
         int32_t status;
         return pixels_of(Dib24Read(file, &width, &height, &status));
     },
     mutate_bmp},
    {"dib",
     [](const char* file, const Bytes&) {
         uint32_t width, height, bits;
         int32_t status;
         return pixels_of(DibReadEx(file, &width, &height, &bits, &status));
     },
     mutate_bmp, ".bmp"},
    {"targa",
     [](const char* file, const Bytes& bytes) {
         uint32_t width, height;
         int32_t status;
         const double made = pixels_of(Targa24Read(file, &width, &height, &status));
         return made != 0 || bytes.size() < 18
                    ? made
                    : double{256} * (256 * bytes[13] + bytes[12]) * bytes[15] +
                          (256.0 * bytes[13] + bytes[12]) * bytes[14];
     },
     mutate_targa},
    {"icon", read_icon, mutate_icon},
    {"q0",
     [](const char* file, const Bytes&) {
         uint32_t width, height, bits;
         int32_t status;
         return pixels_of(Q0Read(file, &width, &height, &bits, &status));
     },
     mutate_q0, nullptr, true},
    {"raw",
     [](const char* file, const Bytes&) {
         uint32_t width, height, bits;
         int32_t status;
         return pixels_of(RawRead(file, &width, &height, &bits, &status));
     },
     mutate_raw},
    {"files_bmp", read_with_files<kirvo_files::read_bmp>, mutate_bmp},
    {"files_targa", read_with_files<kirvo_files::read_targa>, mutate_targa},
    {"files_icon", read_with_files<kirvo_files::read_icon>, mutate_icon},
    {"files_exif", read_exif, mutate_tiff},
    {"files_jpeg", read_with_files<kirvo_files::read_jpeg>, mutate_jpeg, ".jpg"},
    {"files_png", read_with_files<kirvo_files::read_png>, mutate_png, ".png"},
    {"files_tiff", read_with_files<kirvo_files::read_tiff>, mutate_tiff, ".tif"},
    {"files_gif", read_with_files<kirvo_files::read_gif>, mutate_gif, ".gif"},
    {"files_webp", read_with_files<kirvo_files::read_webp>, mutate_webp, ".webp"},
};

// In nanoseconds beyond what every call may take.
struct Cost {
    double of_byte, of_pixel;
};

Cost cost_of(const Reader& reader, const Bytes& bytes, int runs) {
    static const File file("slowest"), companion("slowest.IPR");
    const auto text_end =
        reader.has_companion ? std::find(bytes.begin(), bytes.end(), 0) : bytes.begin();
    companion.write({bytes.begin(), text_end});
    file.write({text_end, bytes.end()});
    double pixels = 0;
    const double time =
        kirvo_test::milliseconds_of([&] { pixels = reader.read(file.name(), bytes); }, runs);
    // What is below is next to nothing, but tells a search where to go on.
    const double beyond = (time > every_call ? time - every_call : time / 1e3) * 1e6;
    const double count = static_cast<double>(bytes.size());
    return pixels > count ? Cost{0, beyond / pixels}
                          : Cost{beyond / std::max(count, double{shortest_input}), 0};
}

Bytes read_bytes(const files::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// The slowest inputs by one of the two measures, the slowest first.
class Slowest {
  public:
    explicit Slowest(double Cost::*measure) : measure_(measure) {}

    double worst() const { return inputs_.empty() ? 0 : inputs_.begin()->first; }
    const Bytes& first() const { return inputs_.begin()->second; }
    bool empty() const { return inputs_.empty(); }
    bool may_belong(const Cost& cost) const {
        return cost.*measure_ > 0 &&
               (inputs_.size() < kept || cost.*measure_ > inputs_.rbegin()->first);
    }
    void offer(const Reader& reader, const Bytes& input) {
        const Cost cost = cost_of(reader, input, 9); // a busy machine makes one run slow
        if (may_belong(cost))
            inputs_.emplace(cost.*measure_, input);
        if (inputs_.size() > kept)
            inputs_.erase(std::prev(inputs_.end()));
    }
    const Bytes& draw(Random& random) const {
        const auto last = static_cast<int32_t>(inputs_.size()) - 1;
        return std::next(inputs_.begin(), random.between(0, last))->second;
    }

  private:
    double Cost::*measure_;
    std::multimap<double, Bytes, std::greater<>> inputs_;
};

// Pictures of a plain colour and of noise, by KirvoFiles, where it writes such files.
std::vector<Bytes> sound_files(const char* ending) {
    std::vector<Bytes> found;
    const int32_t format = ending != nullptr ? KirvoFilesFormatOf(ending) : 0;
    if ((KirvoFilesAbilities(format) & KIRVO_FILES_WRITES) == 0)
        return found;
    for (const bool noise : {false, true})
        for (const int32_t side : {100, 500}) {
            const kirvo::OwnedBlock image(DibMemAllocEx(side, side, 24));
            const kirvo::LockedBlock block(image.get());
            if (noise)
                Random(1).fill(block.data() + 40, block.size() - 40);
            for (const int32_t compression : {2, 3, 4}) {
                KirvoFilesSaveOptions options = {};
                options.size = sizeof options;
                options.format = format;
                options.compression = compression;
                options.flags = compression == 2 ? KIRVO_FILES_WEBP_LOSSLESS : 0;
                HGLOBAL made = nullptr;
                uint32_t count = 0;
                if (KirvoFilesSaveMemory(image.get(), nullptr, &options, &made, &count, nullptr) !=
                    KIRVO_FILES_OK)
                    continue;
                const kirvo::OwnedBlock owner(made);
                found.push_back(bytes_of(made));
                found.back().resize(std::min<size_t>(count, longest_input));
            }
        }
    return found;
}

// Some part of it once more, up to many times.
void repeat_part(Bytes& input, Random& random) {
    if (input.size() < 2)
        return;
    const auto last = static_cast<int32_t>(input.size()) - 1;
    const int32_t from = random.between(0, last), to = random.between(from, last);
    const Bytes part(input.begin() + from, input.begin() + to + 1);
    for (int32_t times = random.between(1, 40); times != 0 && input.size() < longest_input; --times)
        input.insert(input.begin() + from, part.begin(), part.end());
}

Cost search(const Reader& reader, double seconds) {
    Random random(1);
    Slowest by_byte(&Cost::of_byte), by_pixel(&Cost::of_pixel);
    const auto offer = [&](const Bytes& input) {
        const Cost cost = cost_of(reader, input, 1);
        for (Slowest* one : {&by_byte, &by_pixel})
            if (one->may_belong(cost))
                one->offer(reader, input);
    };
    for (const char* folder : {"corpus", "regressions", "slowest"}) {
        const files::path inputs = files::path(KIRVO_FUZZ_FOLDER) / folder / reader.name;
        if (files::is_directory(inputs))
            for (const auto& entry : files::directory_iterator(inputs))
                offer(read_bytes(entry.path()));
    }
    for (const kirvo_test::WorldFile& one : kirvo_test::world_files())
        if (reader.ending != nullptr && files::path(one.name).extension() == reader.ending)
            offer(one.bytes);
    for (const Bytes& sound : sound_files(reader.ending))
        offer(sound);
    const double end = kirvo_test::milliseconds() + seconds * 1e3;
    uint64_t tried = 0;
    for (; kirvo_test::milliseconds() < end; ++tried) {
        const Slowest& from = (by_pixel.empty() || random.once_in(2)) ? by_byte : by_pixel;
        Bytes input = from.empty() ? Bytes{} : from.draw(random);
        for (int32_t changes = random.between(1, 4); changes != 0; --changes) {
            if (random.once_in(3))
                repeat_part(input, random);
            else
                reader.mutate(input, random);
        }
        input.resize(std::min(input.size(), longest_input));
        offer(input);
    }
    files::remove_all(slowest / reader.name);
    files::create_directories(slowest / reader.name);
    for (const auto& [name, one] : {std::pair("byte", &by_byte), std::pair("pixel", &by_pixel)})
        if (!one->empty())
            std::ofstream(slowest / reader.name / name, std::ios::binary)
                .write(reinterpret_cast<const char*>(one->first().data()),
                       static_cast<std::streamsize>(one->first().size()));
    std::printf("%-12s %8.1f ns a byte, %8.1f ns a pixel at most; %llu inputs\n", reader.name,
                by_byte.worst(), by_pixel.worst(), static_cast<unsigned long long>(tried));
    return {by_byte.worst(), by_pixel.worst()};
}

bool check(const Reader& reader, const Cost& bound) {
    bool good = true;
    for (const auto& entry : files::directory_iterator(slowest / reader.name)) {
        const Cost cost = cost_of(reader, read_bytes(entry.path()), 25);
        std::printf("%-12s %8.1f ns a byte, %8.1f ns a pixel\n", reader.name, cost.of_byte,
                    cost.of_pixel);
        // Where there is next to nothing, three times as much is next to nothing, too.
        good = good && cost.of_byte <= std::max(spare * bound.of_byte, 10.0) &&
               cost.of_pixel <= std::max(spare * bound.of_pixel, 10.0);
    }
    return good;
}

std::map<std::string, Cost> read_bounds() {
    std::map<std::string, Cost> bounds;
    std::ifstream file(slowest / "bounds.txt");
    std::string name;
    for (Cost bound; file >> name >> bound.of_byte >> bound.of_pixel;)
        bounds[name] = bound;
    return bounds;
}

} // namespace

int main(int argc, char** argv) {
    kirvo::limit_allocation(largest_picture);
    kirvo_files::limit_allocation(largest_picture);
    std::map<std::string, Cost> bounds = read_bounds();
    bool good = true;
    for (const Reader& reader : readers) {
        if (argc < 2)
            good = check(reader, bounds[reader.name]) && good;
        else if (argc == 2 ||
                 std::find(argv + 2, argv + argc, std::string(reader.name)) != argv + argc)
            bounds[reader.name] = search(reader, std::atof(argv[1]));
    }
    if (argc > 1) {
        std::ofstream file(slowest / "bounds.txt");
        for (const auto& [name, bound] : bounds)
            file << name << ' ' << bound.of_byte << ' ' << bound.of_pixel << '\n';
    }
    if (!good)
        std::printf("an input takes more than three times what it took\n");
    return good ? 0 : 1;
}
