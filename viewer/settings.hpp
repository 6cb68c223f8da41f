// What the program remembers: one INI file, beside the program where one lies there already,
// otherwise in the person's folder for programs' data.
#pragma once

#include "theme.hpp"

#include <string>
#include <vector>

struct Options {
    Theme theme = Theme::system;
    int language = 0; // of the code pane
    bool code = false, histogram = false, maximised = false;
    RECT window = {}; // empty where there was none yet
    size_t undo_megabytes = sizeof(void*) == 4 ? 256 : 1024;
    std::vector<std::wstring> recent; // the latest first
};

Options read_options();
void write_options(const Options& options);
void remember_recent(Options& options, const std::wstring& name);
void forget_recent(Options& options, const std::wstring& name);
