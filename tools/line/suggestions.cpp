#include "line/suggestions.hpp"

#include <algorithm>
#include <numeric>

namespace {

// Letters to insert, delete, replace or exchange with their neighbour.
size_t distance(const std::string& from, const std::string& to) {
    std::vector<size_t> before, above(to.size() + 1), row(to.size() + 1);
    std::iota(above.begin(), above.end(), size_t{0});
    for (size_t i = 1; i <= from.size(); ++i) {
        row[0] = i;
        for (size_t j = 1; j <= to.size(); ++j) {
            row[j] = std::min(
                {above[j] + 1, row[j - 1] + 1, above[j - 1] + (from[i - 1] == to[j - 1] ? 0 : 1)});
            if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1])
                row[j] = std::min(row[j], before[j - 2] + 1);
        }
        before = above;
        std::swap(above, row);
    }
    return above[to.size()];
}

} // namespace

std::string suggestion(const std::string& typed, const std::vector<std::string>& words) {
    size_t nearest = std::max<size_t>(1, typed.size() / 3) + 1;
    std::string best;
    for (const std::string& word : words) {
        const bool begun = typed.size() > 3 && word.starts_with(typed);
        const size_t away = begun ? 1 : distance(typed, word);
        if (away < nearest) {
            nearest = away;
            best = word;
        }
    }
    return best.empty() ? "" : "; did you mean " + best + "?";
}
