#include "convert.hpp"

#include "records.hpp"
#include "settings.hpp"
#include "streams.hpp"
#include "terminal.hpp"
#include "watch.hpp"

#include <chrono>
#include <cstdio>
#include <map>

namespace fs = std::filesystem;

namespace {

struct Job {
    std::string input, output;
};

std::string name_in_folder(const Conversion& conversion, const std::string& input) {
    const std::string& to = conversion.writing.to;
    const std::string ending = to.empty() ? extension(input) : to;
    if (input == "-" && to.empty())
        throw UsageError("standard input has no extension: name the format with --to");
    const fs::path stem = input == "-" ? fs::path("stdin") : path_of(input).stem();
    const std::string name = text_of(path_of(conversion.folder) / stem) + "." + ending;
    check_writable(name);
    return name;
}

std::vector<Job> jobs_of(const Conversion& conversion) {
    const std::vector<std::string>& files = conversion.files;
    std::vector<Job> jobs;
    if (conversion.in_place) {
        for (const std::string& file : files)
            jobs.push_back({file, file});
    } else if (!conversion.folder.empty()) {
        std::map<std::string, std::string> sources;
        for (const std::string& file : files) {
            const Job job = {file, name_in_folder(conversion, file)};
            const auto [other, is_new] = sources.emplace(job.output, file);
            if (!is_new)
                throw UsageError(other->second + " and " + file + " would both become " +
                                 job.output);
            jobs.push_back(job);
        }
    } else if (files.size() == 2) {
        jobs.push_back({files[0], files[1]});
    } else {
        throw UsageError(files.size() < 2 ? "where to? Name an output, or a folder with -o"
                                          : "several inputs want a folder: -o DIR");
    }
    for (const Job& job : jobs)
        check_writable(job.output, conversion.writing.to);
    if (jobs.size() > 1 && !conversion.reading.mask_path.empty())
        throw UsageError("--mask saves one mask: convert the icons one by one");
    return jobs;
}

void make_folder(const std::string& folder) {
    if (folder.empty())
        return;
    const fs::path path = path_of(folder);
    if (const std::string ending = extension(folder);
        !fs::exists(path) && (ending == "bmp" || ending == "jpg" || ending == "tga"))
        throw UsageError("-o names a folder; to write one file: kirvo convert INPUT OUTPUT");
    std::error_code error;
    fs::create_directories(path, error);
    if (!fs::is_directory(path))
        throw Failure(folder, "the folder cannot be made");
}

void check_target(const Conversion& conversion, const Job& job) {
    if (conversion.in_place)
        return;
    std::error_code error;
    if (fs::equivalent(path_of(job.input), path_of(job.output), error))
        throw Failure(job.output, "it is the input itself; --in-place replaces inputs");
    check_replaceable(job.output, settings.force);
}

// Text beside a picture that goes to standard output goes to standard error.
std::FILE* text_stream(const Job& job) {
    clear_bar();
    return job.output == "-" ? stderr : stdout;
}

void print_histogram(std::FILE* out, const Histogram& counts) {
    std::fprintf(out, "%u colours\nvalue red green blue\n", counts.colours);
    for (int i = 0; i < 256; ++i)
        std::fprintf(out, "%d %u %u %u\n", i, counts.red[i], counts.green[i], counts.blue[i]);
}

Json as_json(const Histogram& counts) {
    return {{"colours", counts.colours},
            {"red", counts.red},
            {"green", counts.green},
            {"blue", counts.blue}};
}

Image timed_reading(const Conversion& conversion, const Job& job, Json& record) {
    const auto begun = std::chrono::steady_clock::now();
    Image image = read_image(job.input, conversion.reading);
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - begun;
    const double megapixels = 1e-6 * image.width() * image.height();
    if (conversion.show_time && settings.json)
        record["milliseconds to read"] = 1e3 * elapsed.count();
    else if (conversion.show_time)
        std::fprintf(text_stream(job), "decoded %.1f megapixels in %.0f ms: %.0f MP/s\n",
                     megapixels, 1e3 * elapsed.count(), megapixels / elapsed.count());
    return image;
}

Image stepped(Image image, const Step& step) {
    const Watch watch(step.effect->option + 2);
    return step.effect->apply(std::move(image), Arguments(step.effect->option, step.value));
}

Json convert_one(const Conversion& conversion, const Job& job) {
    check_target(conversion, job);
    Json record = {{"file", json_name(job.input)}, {"output", json_name(job.output)}};
    set_histogram_receiver([&](const Histogram& counts) {
        if (settings.json)
            record["histogram"] = as_json(counts);
        else
            print_histogram(text_stream(job), counts);
    });
    Image image = timed_reading(conversion, job, record);
    for (const Step& step : conversion.steps) {
        try {
            image = stepped(std::move(image), step);
        } catch (const Failure& failure) {
            throw failure.about(job.input + ": " + failure.subject());
        }
    }
    record["width"] = image.width();
    record["height"] = image.height();
    WriteOptions writing = conversion.writing;
    writing.replace = conversion.in_place;
    write_image(job.output, std::move(image), writing);
    if (job.output != "-")
        record["bytes"] = fs::file_size(path_of(job.output));
    return record;
}

} // namespace

bool convert(const Conversion& conversion) {
    const std::vector<Job> jobs = jobs_of(conversion);
    if (settings.json && jobs.front().output == "-")
        throw UsageError("a picture and --json both want standard output");
    make_folder(conversion.folder);
    expect_work(jobs.size() * (conversion.steps.size() + 2));
    Json records = Json::array();
    size_t failed = 0;
    for (const Job& job : jobs) {
        if (jobs.size() > 1)
            work_on(text_of(path_of(job.input).filename()));
        try {
            records.push_back(convert_one(conversion, job));
        } catch (const UsageError&) {
            throw; // it would be none for the next input either
        } catch (const std::exception& error) {
            ++failed;
            complain(error.what());
            records.push_back(error_record(job.input, error));
        }
    }
    clear_bar();
    if (settings.json)
        print_json(records);
    if (jobs.size() > 1 && !settings.quiet)
        std::fprintf(stderr, "%zu converted, %zu failed\n", jobs.size() - failed, failed);
    return failed == 0;
}
