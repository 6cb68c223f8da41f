// Hostile and odd picture files, made by tests/world/recipes.py when the build is configured.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace kirvo_test {

struct WorldFile {
    std::string name;
    std::vector<uint8_t> bytes;
};

inline const std::vector<WorldFile>& world_files() {
    static const std::vector<WorldFile> files = [] {
        std::vector<WorldFile> found;
        for (const auto& entry : std::filesystem::directory_iterator(KIRVO_WORLD)) {
            std::ifstream file(entry.path(), std::ios::binary);
            found.push_back({entry.path().string(), {std::istreambuf_iterator<char>(file), {}}});
        }
        return found;
    }();
    return files;
}

} // namespace kirvo_test
