#include "streams.hpp"

#include "image.hpp"
#include "terminal.hpp"

#include <memory>

namespace fs = std::filesystem;

namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

File open(const std::string& name, const char* mode) {
    File file(std::fopen(name.c_str(), mode), std::fclose);
    if (!file)
        throw Failure(name, KIRVO_CANNOT_OPEN);
    return file;
}

void copy(std::FILE* from, const std::string& from_name, std::FILE* to,
          const std::string& to_name) {
    static char buffer[1 << 16];
    while (const size_t got = std::fread(buffer, 1, sizeof buffer, from)) {
        if (std::fwrite(buffer, 1, got, to) != got)
            throw Failure(to_name, KIRVO_WRITE_ERROR);
    }
    if (std::ferror(from))
        throw Failure(from_name, KIRVO_READ_ERROR);
    if (std::fflush(to) != 0)
        throw Failure(to_name, KIRVO_WRITE_ERROR);
}

// The folder of a file that a link may lead to.
fs::path folder_of(const std::string& name) {
    if (name == "-")
        return fs::temp_directory_path();
    std::error_code error;
    const fs::path real = fs::canonical(path_of(name), error);
    return error ? path_of(name).parent_path() : real.parent_path();
}

} // namespace

std::string shown(const std::string& name, const char* stream) {
    return name == "-" ? stream : name;
}

Input::Input(const std::string& name) : path_(name) {
    if (name != "-")
        return;
    copy_.emplace(fs::temp_directory_path());
    path_ = copy_->name();
    make_binary(stdin);
    copy(stdin, "standard input", open(path_, "wb").get(), path_);
}

void check_replaceable(const std::string& name, bool replace) {
    if (name == "-") {
        if (is_terminal(stdout))
            throw Failure("standard output", "is a terminal, and a picture is no text");
        return;
    }
    std::error_code error;
    const fs::file_status status = fs::status(path_of(name), error);
    if (!fs::exists(status))
        return;
    if (!fs::is_regular_file(status))
        throw Failure(name, "there is something else than a file of this name");
    if (!replace)
        throw Failure(name, "the file exists; --force replaces it");
}

Output::Output(const std::string& name, bool replace)
    : name_(name), replace_(replace), part_(folder_of(name)) {
    check_replaceable(name, replace);
}

void Output::complete() {
    if (name_ == "-") {
        make_binary(stdout);
        return copy(open(path(), "rb").get(), path(), stdout, "standard output");
    }
    check_replaceable(name_, replace_);
    std::error_code error;
    fs::path target = path_of(name_);
    if (fs::exists(target, error)) { // its place and rights stay
        target = fs::canonical(target, error);
        fs::permissions(path_of(path()), fs::status(target, error).permissions(), error);
    }
    if (const std::error_code failed = part_.rename(target))
        throw Failure(name_, "cannot be replaced: " + failed.message());
}
