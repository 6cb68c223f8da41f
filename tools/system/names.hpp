// Names of files as the program keeps them: UTF-8 on Windows, the system's own bytes elsewhere.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

// The command line's words after the program's name.
std::vector<std::string> words_of_the_command_line(int argc, char** argv);

// A name as a path, of any length, and back.
std::filesystem::path path_of(const std::string& name);
std::string text_of(const std::filesystem::path& path);

// The files that a pattern with * and ? names, where the shell leaves that to the program; else the
// pattern itself.
std::vector<std::string> expanded(const std::string& pattern);
