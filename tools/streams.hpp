// Files named on the command line, where "-" stands for a standard stream.
#pragma once

#include "temporary.hpp"

#include <optional>

// A picture to read. Standard input is taken in whole, since readers want to look around in it.
class Input {
  public:
    explicit Input(const std::string& name);
    const std::string& path() const { return path_; }

  private:
    std::optional<TemporaryFile> copy_;
    std::string path_;
};

// A file to write, whole or not at all: it bears another name until it is complete.
class Output {
  public:
    // Throws Failure when something is there that may not be replaced.
    Output(const std::string& name, bool replace);
    // Where to write.
    const std::string& path() const { return part_.name(); }
    void complete();

  private:
    std::string name_;
    bool replace_;
    TemporaryFile part_;
};

// Throws as Output does; asked before long work.
void check_replaceable(const std::string& name, bool replace);

// "-" in words.
std::string shown(const std::string& name, const char* stream);
