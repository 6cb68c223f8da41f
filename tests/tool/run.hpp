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
inline int exit_code(int result) {
    return result;
}
#else
constexpr const char* program = "./kirvo";
inline int exit_code(int result) {
    return WIFEXITED(result) ? WEXITSTATUS(result) : -1;
}
#endif

struct Outcome {
    int code;
    std::string text; // what it wrote to both streams
};

inline int run_command(const std::string& command) {
    return exit_code(std::system(command.c_str()));
}

inline Outcome kirvo(const std::string& arguments) {
    const TempFile output(".txt");
    const int code =
        run_command(std::string(program) + " " + arguments + " >" + output.name() + " 2>&1");
    const std::vector<uint8_t> bytes = output.read();
    return {code, std::string(bytes.begin(), bytes.end())};
}

inline bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

} // namespace kirvo_test
