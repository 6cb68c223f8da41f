#include "commands/conversion.hpp"

#include "commands/naming.hpp"
#include "pictures/alpha.hpp"
#include "running/watch.hpp"
#include "system/names.hpp"
#include "system/settings.hpp"
#include "system/streams.hpp"

#include <chrono>
#include <cstdio>

namespace fs = std::filesystem;

namespace {

std::string line_of(const char* format, auto... values) {
    char text[128];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

std::string in_words(const Histogram& counts) {
    std::string text = line_of("%u colours\nvalue red green blue\n", counts.colours);
    for (int i = 0; i < 256; ++i)
        text += line_of("%d %u %u %u\n", i, counts.red[i], counts.green[i], counts.blue[i]);
    return text;
}

Json as_json(const Histogram& counts) {
    return {{"colours", counts.colours},
            {"red", counts.red},
            {"green", counts.green},
            {"blue", counts.blue}};
}

Picture read(const Conversion& conversion, const Job& job, Outcome& outcome) {
    ReadOptions how = conversion.reading;
    how.keep_alpha =
        !conversion.mask.empty() || keeps_alpha(format_for(job.output, conversion.writing.to));
    const auto begun = std::chrono::steady_clock::now();
    Picture picture = read_picture(job.input, how);
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - begun;
    const double megapixels = 1e-6 * picture.image.width() * picture.image.height();
    if (conversion.show_time) {
        outcome.record["milliseconds"] = 1e3 * elapsed.count();
        outcome.text += line_of("decoded %.1f megapixels in %.0f ms: %.0f MP/s\n", megapixels,
                                1e3 * elapsed.count(), megapixels / elapsed.count());
    }
    return picture;
}

bool is_damaged(const Known& known) {
    for (uint32_t i = 0; i < known.description().notes; ++i) {
        const int32_t kind = KirvoFilesNote(known.handle(), i);
        if (kind == KIRVO_FILES_NOTE_ENDS_EARLY || kind == KIRVO_FILES_NOTE_DAMAGED)
            return true;
    }
    return false;
}

// Pixels that are averaged do so by how much of them is seen.
void apply(const Step& step, Picture& picture) {
    const Watch watch(step.effect->name());
    const auto applied = [&](Image& image) {
        image = step.effect->apply(std::move(image), step.values);
    };
    if (!picture.alpha || !step.effect->moves)
        return applied(picture.image);
    picture.image = to_24_bits(std::move(picture.image));
    multiply(picture.image, picture.alpha);
    applied(picture.image);
    applied(picture.alpha);
    divide(picture.image, picture.alpha);
}

void apply_steps(const Conversion& conversion, const Job& job, Picture& picture) {
    for (const Step& step : conversion.steps) {
        try {
            apply(step, picture);
        } catch (const Failure& failure) {
            throw failure.about(job.input + ": " + failure.subject());
        }
    }
}

void save_mask(const Conversion& conversion, const Picture& picture) {
    if (conversion.mask.empty())
        return;
    if (!picture.alpha)
        throw Failure(conversion.mask, "the picture is opaque, it has no mask");
    write_image(conversion.mask, mask_of(picture.alpha));
}

// A file keeps its format when it is replaced, whatever its name says.
std::string format_in_place(const Job& job, Format format) {
    if (!(KirvoFilesAbilities(format) & KIRVO_FILES_WRITES))
        throw Failure(job.input,
                      format_name(format) + " files are not written: name another output");
    return extensions(format).front();
}

std::string output_of(const Job& job, const Image& image) {
    if (!job.is_pattern)
        return job.output;
    Job named = job;
    named.output = named_by(job.output, job, image.width(), image.height());
    named.is_pattern = false;
    check_target(named);
    return named.output;
}

void make_folder_of(const Job& job, const std::string& output) {
    const fs::path folder = path_of(output).parent_path();
    if (job.makes_folders && !folder.empty())
        make_folder(folder);
}

void tell(Outcome& outcome, const Job& job, const std::vector<std::string>& notes) {
    for (const std::string& note : notes) {
        outcome.notes.push_back(shown(job.input, "standard input") + ": " + note);
        outcome.record["notes"].push_back(note);
    }
}

void convert_picture(const Conversion& conversion, const Job& job, Outcome& outcome) {
    forget_effects();
    resize_by_nearest(conversion.nearest);
    set_histogram_receiver([&](const Histogram& counts) {
        outcome.record["histogram"] = as_json(counts);
        outcome.text += in_words(counts);
    });
    Picture picture = read(conversion, job, outcome);
    tell(outcome, job, told_notes(picture.known));
    WriteOptions writing = conversion.writing;
    writing.replace = job.in_place;
    if (job.in_place)
        writing.to = format_in_place(job, picture.known.description().format);
    save_mask(conversion, picture);
    apply_steps(conversion, job, picture);
    const std::string output = output_of(job, picture.image);
    std::error_code error;
    if (is_damaged(picture.known) && output != "-" && fs::exists(path_of(output), error))
        throw Failure(output, "a damaged picture replaces no file");
    outcome.record["output"] = output;
    outcome.record["width"] = picture.image.width();
    outcome.record["height"] = picture.image.height();
    make_folder_of(job, output);
    const Written written = write_picture(output, std::move(picture), writing);
    outcome.record["bytes"] = written.bytes;
    tell(outcome, job, written.notes);
}

void turn(const Conversion& conversion, const Job& job, Outcome& outcome) {
    const Watch watch("turning");
    const uint32_t flags = conversion.writing.strip ? KIRVO_FILES_STRIP : 0;
    make_folder_of(job, job.output);
    Output output(job.output, job.in_place || settings.force);
    const std::string passing = output.passing_name();
    Known known;
    int32_t status = 0;
    {
        const Uninterrupted now; // its own passing file would stay
        status = KirvoFilesTurn(job.input.c_str(), passing.c_str(), conversion.turning->way,
                                conversion.turning->edges, flags, known.receiver());
    }
    const std::string reason = known.text(KIRVO_FILES_TEXT_REASON);
    if (reason.starts_with(passing + ": ")) // a name that nobody knows
        throw Failure(job.output, reason.substr(passing.size() + 2), status);
    expect(status, known, job.input);
    if (!job.in_place && format_for(job.output, "") != KIRVO_FILES_JPEG)
        throw Failure(job.output, "what was turned is a JPEG: name it .jpg");
    output.complete();
    const KirvoFilesDescription turned = known.description();
    outcome.record["output"] = job.output;
    outcome.record["width"] = turned.width;
    outcome.record["height"] = turned.height;
    outcome.record["bytes"] = turned.fileBytes;
    tell(outcome, job, told_notes(known));
}

} // namespace

Step::Step(const Effect& e, const std::string& value)
    : effect(&e), text(value), values(e.option, e.parameters, value) {
    if (e.check != nullptr)
        e.check(values);
}

Outcome failed(const Job& job, const std::exception& error) {
    Outcome outcome;
    outcome.error = error.what();
    outcome.record = error_record(job.input, error);
    return outcome;
}

void check_target(const Job& job) {
    if (job.in_place || job.is_pattern)
        return;
    std::error_code error;
    if (fs::equivalent(path_of(job.input), path_of(job.output), error))
        throw Failure(job.output, "it is the input itself; --in-place replaces inputs");
    check_replaceable(job.output, settings.force);
}

Outcome convert_one(const Conversion& conversion, const Job& job) {
    Outcome outcome;
    outcome.record = {{"file", job.input}};
    try {
        check_target(job);
        if (conversion.turning)
            turn(conversion, job, outcome);
        else
            convert_picture(conversion, job, outcome);
        outcome.good = true;
    } catch (const std::exception& error) {
        Outcome failure = failed(job, error);
        failure.notes = outcome.notes;
        failure.text = outcome.text;
        return failure;
    }
    return outcome;
}
