#include "system/part.hpp"

#include "system/part_file.hpp"

#include <cstdio>
#include <random>
#include <utility>

namespace fs = std::filesystem;

namespace {

std::function<void(const fs::path&)> listener;

// A name that nobody can foresee.
fs::path new_name(const fs::path& folder) {
    std::random_device random;
    char name[40];
    std::snprintf(name, sizeof name, "kirvo-%08x%08x.part", static_cast<unsigned>(random()),
                  static_cast<unsigned>(random()));
    fs::path path = folder / name;
    if (listener)
        listener(path);
    return path;
}

} // namespace

Part::Part(const fs::path& folder)
    : perishable_(new_name(folder)), file_(part_file::create(name())) {}

Part::~Part() {
    const Uninterrupted now;
    close();
    part_file::remove(name());
}

void Part::write(const void* bytes, size_t count) {
    part_file::write(file_, static_cast<const char*>(bytes), count);
}

void Part::close() {
    if (file_ != part_file::none)
        part_file::close(std::exchange(file_, part_file::none));
}

void Part::become(const fs::path& target) {
    const Uninterrupted now;
    part_file::take_over(file_, name(), target);
    close();
    part_file::rename(name(), target);
}

void announce_parts_to(std::function<void(const fs::path&)> whom) { listener = std::move(whom); }
