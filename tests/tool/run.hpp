// Runs the command line as a shell does.
#pragma once

#include "support/dib_builder.hpp"
#include "support/temp_file.hpp"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>

namespace kirvo_test {

#ifdef _WIN32
constexpr const char* program = "kirvo.exe";
// The command is UTF-8.
inline int start(const std::string& command) {
    return _wsystem(std::filesystem::path(std::u8string(command.begin(), command.end())).c_str());
}
inline int exit_code(int result) { return result; }
// Under load Wine now and then does not start a program, which its shell then says it does not
// find, or does not start the shell.
inline bool has_started(int code) {
    constexpr int no_such_command = 9009;
    return code != no_such_command && code != -1;
}
#else
constexpr const char* program = "./kirvo";
inline int start(const std::string& command) { return std::system(command.c_str()); }
inline int exit_code(int result) { return WIFEXITED(result) ? WEXITSTATUS(result) : -1; }
inline bool has_started(int) { return true; }
#endif

struct Outcome {
    int code;
    std::string text; // what it wrote to both streams
};

inline int run_command(const std::string& command) {
    int code = exit_code(start(command));
    for (int attempts = 5; attempts != 0 && !has_started(code); --attempts)
        code = exit_code(start(command));
    return code;
}

inline Outcome kirvo(const std::string& arguments) {
    const TempFile output(".txt");
    const int code =
        run_command(std::string(program) + " " + arguments + " >" + output.name() + " 2>&1");
    const std::vector<uint8_t> bytes = output.read();
    return {code, std::string(bytes.begin(), bytes.end())};
}

// The system's words for a file that is missing.
inline std::string no_such_file() {
#ifdef _WIN32
    return "";
#else
    return "No such file or directory";
#endif
}

inline bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

} // namespace kirvo_test
