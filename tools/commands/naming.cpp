#include "commands/naming.hpp"

#include "system/names.hpp"

#include <map>

namespace fs = std::filesystem;

namespace {

bool is_folder(const std::string& name) {
    std::error_code error;
    return name.ends_with('/') || name.ends_with(fs::path::preferred_separator) ||
           fs::is_directory(path_of(name), error);
}

bool is_there(const std::string& name) {
    std::error_code error;
    return fs::exists(path_of(name), error);
}

bool is_pattern(const std::string& name) {
    return !is_there(name) && name.find('{') < name.find('}');
}

// Whether the last operand is where outputs go.
bool ends_with_place(const Operands& operands) {
    if (operands.names.size() < 2)
        return false;
    const std::string& last = operands.names.back();
    const bool several =
        operands.names.size() > 2 || (operands.recursive && is_folder(operands.names.front()));
    return is_folder(last) || is_pattern(last) ||
           (several && last != "-" && !is_there(last) && extension(last).empty());
}

std::string stem(const std::string& input) {
    return input == "-" ? "stdin" : text_of(path_of(input).stem());
}

std::string ending_of(const std::string& input, const std::string& to) {
    if (input == "-" && to.empty())
        throw UsageError("standard input has no extension: name the format with --to");
    if (!to.empty())
        return to;
    const bool read_only = is_readable(input) && written_format(input) == KIRVO_FILES_UNKNOWN;
    return read_only ? "png" : extension(input);
}

// Where each input goes.
class Naming {
  public:
    Naming(const Operands& operands, const std::string& to) : operands_(operands), to_(to) {}

    Job job(const Found& input, size_t number) const {
        Job job;
        job.input = input.name;
        job.folder = input.folder;
        job.number = number;
        job.in_place = operands_.in_place;
        if (operands_.in_place)
            job.output = input.name;
        else if (is_pattern(operands_.output))
            by_pattern(job);
        else if (operands_.output.empty() || goes_into_folder())
            by_folder(job);
        else
            job.output = operands_.output;
        return job;
    }

    // A folder, or a name that is to be one.
    bool goes_into_folder() const {
        const std::string& name = operands_.output;
        return is_folder(name) || extension(name).empty() ||
               KirvoFilesFormatOf(name.c_str()) == KIRVO_FILES_UNKNOWN;
    }

  private:
    void by_pattern(Job& job) const {
        job.output = operands_.output;
        job.makes_folders = true;
        job.is_pattern = job.output.find("{width}") != std::string::npos ||
                         job.output.find("{height}") != std::string::npos;
        const std::string named = named_by(job.output, job, 0, 0);
        if (!job.is_pattern)
            job.output = named;
    }

    void by_folder(Job& job) const {
        const fs::path beside = path_of(job.input).parent_path();
        const fs::path folder =
            operands_.output.empty() ? beside : path_of(operands_.output) / path_of(job.folder);
        const std::string ending = ending_of(job.input, to_);
        const std::string name =
            stem(job.input) + operands_.suffix + (ending.empty() ? "" : "." + ending);
        job.output = text_of(folder / path_of(name));
        job.makes_folders = !operands_.output.empty();
    }

    const Operands& operands_;
    const std::string& to_;
};

std::vector<Job> two_names(const Operands& operands) {
    Job job;
    job.input = operands.names[0];
    job.output = operands.names[1];
    return {job};
}

void check_operands(const Operands& operands) {
    const bool elsewhere = !operands.output.empty() || !operands.suffix.empty();
    if (operands.in_place && elsewhere)
        throw UsageError("--in-place replaces the inputs: it goes with neither -o nor --suffix");
    if (operands.suffix.find_first_of("/\\") != std::string::npos)
        throw UsageError("--suffix: a part of a name has no slash");
}

void check_no_folder(const std::string& name) {
    std::error_code error;
    if (fs::is_directory(path_of(name), error))
        throw Failure(name, std::make_error_code(std::errc::is_a_directory).message() +
                                "; -r takes the pictures in it");
}

void check_outputs(const std::vector<Job>& jobs, const std::string& to) {
    std::map<std::string, std::string> sources;
    for (const Job& job : jobs) {
        if (!job.in_place || !extension(job.output).empty()) // else its content tells
            check_writable(job.output, to);
        if (job.in_place && !to.empty() && format_for(job.output, to) != format_for(job.output, ""))
            throw UsageError(job.input + ": --in-place keeps a file's format; to change it, name "
                                         "an output or a folder with -o");
        const std::string target = job.is_pattern ? named_by(job.output, job, 0, 0) : job.output;
        const auto [other, is_new] = sources.emplace(target, job.input);
        if (!is_new)
            throw UsageError(other->second + " and " + job.input + " would both become " + target);
    }
}

} // namespace

std::string named_by(const std::string& pattern, const Job& job, int32_t width, int32_t height) {
    const std::map<std::string, std::string> words = {
        {"name", stem(job.input)},
        {"ext", job.input == "-" ? "" : extension(job.input)},
        {"folder", job.folder.empty() ? "." : job.folder},
        {"number", std::to_string(job.number)},
        {"width", width == 0 ? "{width}" : std::to_string(width)},
        {"height", height == 0 ? "{height}" : std::to_string(height)},
    };
    std::string name;
    for (size_t at = 0; at < pattern.size();) {
        const size_t open = pattern.find('{', at), close = pattern.find('}', open);
        name += pattern.substr(at, open - at);
        if (open == std::string::npos)
            break;
        const std::string word =
            close == std::string::npos ? "" : pattern.substr(open + 1, close - open - 1);
        if (!words.contains(word))
            throw UsageError(pattern + ": in braces stand name, ext, folder, number, width or "
                                       "height");
        name += words.at(word);
        at = close + 1;
    }
    return name;
}

std::vector<Job> jobs_of(const Operands& given, const std::string& to) {
    Operands operands = given;
    check_operands(operands);
    const bool has_place =
        operands.in_place || !operands.output.empty() || !operands.suffix.empty();
    if (!has_place && ends_with_place(operands)) {
        operands.output = operands.names.back();
        operands.names.pop_back();
    } else if (!has_place && operands.names.size() == 2) {
        const std::vector<Job> jobs = two_names(operands);
        check_outputs(jobs, to);
        return jobs;
    } else if (!has_place) {
        throw UsageError(operands.names.size() < 2
                             ? "where to? Name an output, or a folder with -o"
                             : "several inputs want a folder: -o DIR, or a folder behind them");
    }
    const Naming naming(operands, to);
    const std::vector<Found> found = inputs_of(operands.names, operands.recursive, operands.output);
    std::vector<Job> jobs;
    for (const Found& input : found) {
        check_no_folder(input.name);
        jobs.push_back(naming.job(input, jobs.size() + 1));
    }
    if (jobs.size() > 1 && jobs[0].output == operands.output && !jobs[0].is_pattern)
        throw UsageError("-o " + operands.output +
                         " is one file: for several name a folder, or a pattern with {name}");
    check_outputs(jobs, to);
    return jobs;
}
