// Files named on the command line, where "-" stands for a standard stream.
#pragma once

#include "system/part.hpp"

#include <optional>
#include <string>

// All of standard input.
std::string standard_input();

// A file to write, whole or not at all: it bears another name until it is complete.
class Output {
  public:
    // Throws Failure when something is there that may not be replaced.
    Output(const std::string& name, bool replace);
    void write(const void* bytes, size_t count);
    // For writers that want a name: the file under its passing one, closed.
    std::string passing_name();
    void complete();

  private:
    std::string name_;
    bool replace_;
    std::optional<Part> part_; // none for standard output
};

// Makes a folder that is missing; false where it is there. Throws Failure.
bool make_folder(const std::filesystem::path& name);

// A folder to write into, made where it is missing, and gone again where nothing came into it.
class NewFolder {
  public:
    explicit NewFolder(const std::filesystem::path& name);
    ~NewFolder();
    NewFolder(const NewFolder&) = delete;
    NewFolder& operator=(const NewFolder&) = delete;

  private:
    std::optional<Perishable> made_; // unless it was there
};

// Throws as Output does; asked before long work.
void check_replaceable(const std::string& name, bool replace);

// Why a file cannot be read, in the system's words; empty where it can.
std::string why_unreadable(const std::string& name);

// "-" in words.
std::string shown(const std::string& name, const char* stream);
