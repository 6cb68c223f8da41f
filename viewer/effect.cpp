#include "effect.hpp"

#include <set>

bool works_on_parts(const Effect& effect) {
    static const std::set<std::string> whole_only = {"--crop",  "--resize",  "--fit",   "--rotate",
                                                     "--depth", "--palette", "--brush", "--key"};
    return !whole_only.contains(effect.option);
}
