#include "system/names.hpp"

std::vector<std::string> words_of_the_command_line(int argc, char** argv) {
    return {argv + (argc > 0 ? 1 : 0), argv + argc};
}

std::filesystem::path path_of(const std::string& name) { return name; }

std::string text_of(const std::filesystem::path& path) { return path.native(); }

std::vector<std::string> expanded(const std::string& pattern) { return {pattern}; }
