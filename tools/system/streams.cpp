#include "system/streams.hpp"

#include "system/errors.hpp"
#include "system/names.hpp"
#include "system/terminal.hpp"

#include <cerrno>
#include <cstring>
#include <fstream>

namespace fs = std::filesystem;

namespace {

// Where a file lies that a link may lead to.
fs::path real_path(const std::string& name) {
    std::error_code error;
    const fs::path path = path_of(name);
    if (!fs::is_symlink(path, error))
        return path;
    const fs::path real = fs::canonical(path, error);
    return error ? path : real;
}

fs::path folder_of(const std::string& name) {
    const fs::path folder = real_path(name).parent_path();
    return folder.empty() ? fs::path(".") : folder;
}

// Runs what may throw a system's error, which becomes a failure of the file.
template<typename Call>
auto about(const std::string& name, Call call) {
    try {
        return call();
    } catch (const std::system_error& error) {
        throw Failure(name, error.code().message());
    }
}

} // namespace

std::string shown(const std::string& name, const char* stream) {
    return name == "-" ? stream : name;
}

std::string standard_input() {
    make_binary(stdin);
    std::string bytes;
    static char buffer[1 << 16];
    while (const size_t got = std::fread(buffer, 1, sizeof buffer, stdin))
        bytes.append(buffer, got);
    if (std::ferror(stdin))
        throw Failure("standard input", std::strerror(errno));
    return bytes;
}

std::string why_unreadable(const std::string& name) {
    std::error_code error;
    if (fs::is_directory(path_of(name), error))
        return std::make_error_code(std::errc::is_a_directory).message();
    errno = 0;
    const std::ifstream file(path_of(name), std::ios::binary);
    return file ? "" : std::strerror(errno);
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

bool make_folder(const fs::path& name) {
    std::error_code error;
    const bool made = fs::create_directories(name, error);
    if (!fs::is_directory(name))
        throw Failure(text_of(name), "the folder cannot be made: " + error.message());
    return made;
}

NewFolder::NewFolder(const fs::path& name) {
    if (make_folder(name))
        made_.emplace(name);
}

NewFolder::~NewFolder() {
    std::error_code error;
    if (made_)
        fs::remove(made_->name(), error); // which leaves a folder that holds something
}

Output::Output(const std::string& name, bool replace) : name_(name), replace_(replace) {
    check_replaceable(name, replace);
    if (name != "-")
        about(name, [&] { part_.emplace(folder_of(name)); });
    else
        make_binary(stdout);
}

void Output::write(const void* bytes, size_t count) {
    if (part_)
        about(name_, [&] { part_->write(bytes, count); });
    else if (std::fwrite(bytes, 1, count, stdout) != count)
        throw Failure("standard output", std::strerror(errno));
}

std::string Output::passing_name() {
    part_->close();
    return text_of(part_->name());
}

void Output::complete() {
    if (!part_) {
        if (std::fflush(stdout) != 0)
            throw Failure("standard output", std::strerror(errno));
        return;
    }
    check_replaceable(name_, replace_);
    about(name_, [&] { part_->become(real_path(name_)); });
}
