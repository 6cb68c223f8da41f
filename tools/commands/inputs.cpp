#include "commands/naming.hpp"

#include "system/names.hpp"

#include <algorithm>
#include <set>

namespace fs = std::filesystem;

namespace {

// All the pictures below a folder by their extensions, in the order of their names.
std::vector<Found> pictures_below(const std::string& top, const fs::path& except) {
    std::vector<Found> found;
    std::error_code error;
    fs::recursive_directory_iterator each(path_of(top), error);
    if (error)
        throw Failure(top, error.message());
    for (; each != fs::recursive_directory_iterator(); each.increment(error)) {
        if (each->is_directory(error)) {
            if (!except.empty() && fs::equivalent(each->path(), except, error))
                each.disable_recursion_pending();
            continue;
        }
        const std::string name = text_of(each->path());
        const fs::path folder = each->path().parent_path().lexically_relative(path_of(top));
        if (is_readable(name) && each->is_regular_file(error))
            found.push_back({name, folder == "." ? "" : text_of(folder)});
    }
    std::sort(found.begin(), found.end(),
              [](const Found& a, const Found& b) { return a.name < b.name; });
    return found;
}

std::string identity(const std::string& name) {
    std::error_code error;
    const fs::path real = fs::canonical(path_of(name), error);
    return error ? name : text_of(real);
}

} // namespace

std::vector<Found> inputs_of(const std::vector<std::string>& names, bool recursive,
                             const std::string& except_below) {
    std::vector<Found> all, once;
    for (const std::string& pattern : names) {
        for (const std::string& name : expanded(pattern)) {
            std::error_code error;
            if (name == "-" || !recursive || !fs::is_directory(path_of(name), error)) {
                all.push_back({name, ""});
                continue;
            }
            for (Found& each : pictures_below(name, path_of(except_below)))
                all.push_back(std::move(each));
        }
    }
    std::set<std::string> seen;
    for (Found& each : all) {
        if (seen.insert(identity(each.name)).second)
            once.push_back(std::move(each));
    }
    return once;
}
