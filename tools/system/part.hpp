// A file that is being made: under a name of its own beside its place, gone unless it is completed.
#pragma once

#include "system/interruption.hpp"

#include <functional>
#include <string>
#include <system_error>

class Part {
  public:
    // Makes the file, which nobody else can open. Throws std::system_error.
    explicit Part(const std::filesystem::path& folder);
    ~Part();
    Part(const Part&) = delete;
    Part& operator=(const Part&) = delete;

    const std::filesystem::path& name() const { return perishable_.name(); }
    void write(const void* bytes, size_t count);
    // Closes the file, so that it can be written by name.
    void close();
    // Gives it its lasting name in place of whatever bears it, whose rights it takes over.
    void become(const std::filesystem::path& target);

  private:
    Perishable perishable_;
    std::ptrdiff_t file_; // the system's number or handle
};

// Who is told of a part's name before the file is made: whoever would have to delete it.
void announce_parts_to(std::function<void(const std::filesystem::path&)> listener);
