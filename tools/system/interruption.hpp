// What ctrl-C and its like leave behind: nothing.
#pragma once

#include <cstddef>
#include <filesystem>

// From now on an interruption ends the processes and deletes the files named here, then the
// program.
void clean_up_when_interrupted();

constexpr size_t most_workers = 60;

// A file, or a folder if it is empty by then, that must not outlive the program.
class Perishable {
  public:
    explicit Perishable(const std::filesystem::path& name);
    ~Perishable();
    Perishable(const Perishable&) = delete;
    Perishable& operator=(const Perishable&) = delete;

    const std::filesystem::path& name() const { return name_; }

  private:
    std::filesystem::path name_; // whoever handles an interruption can neither lock nor allocate
    size_t slot_;
};

// A process that must not outlive the program: its number, on Windows its handle.
class Mortal {
  public:
    explicit Mortal(std::ptrdiff_t process);
    ~Mortal();
    Mortal(const Mortal&) = delete;
    Mortal& operator=(const Mortal&) = delete;

  private:
    size_t slot_;
};

// Makes interruptions wait, for as long as it lives.
class Uninterrupted {
  public:
    Uninterrupted();
    ~Uninterrupted();
    Uninterrupted(const Uninterrupted&) = delete;
    Uninterrupted& operator=(const Uninterrupted&) = delete;
};
