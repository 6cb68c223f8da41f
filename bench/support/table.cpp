#include "support/table.hpp"

#include <algorithm>
#include <cstdio>

namespace kirvo_bench {

namespace {

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const size_t middle = values.size() / 2;
    return values.size() % 2 != 0 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

} // namespace

void Table::add(const std::string& name, double milliseconds, double megapixels) {
    const size_t slash = name.rfind('/');
    Row& row = rows_[name.substr(0, slash)][name.substr(slash + 1)];
    row.milliseconds.push_back(milliseconds);
    row.megapixels = megapixels;
}

void Table::print() const {
    std::printf("%-40s %-16s %10s %10s %10s\n", "operation", "library", "median ms", "MP/s",
                "ratio");
    for (const auto& [operation, libraries] : rows_) {
        const auto ours = libraries.find("ours");
        if (ours != libraries.end())
            print(operation, "ours", ours->second, 0);
        for (const auto& [library, row] : libraries)
            if (library != "ours")
                print(operation, library, row,
                      ours == libraries.end() ? 0 : median(ours->second.milliseconds));
    }
    std::printf("\nratio: time of the peer / our time\n");
}

void Table::print(const std::string& operation, const std::string& library, const Row& row,
                  double ours) {
    const double time = median(row.milliseconds);
    std::printf("%-40s %-16s %10.4f %10.0f", operation.c_str(), library.c_str(), time,
                row.megapixels / time * 1000);
    if (ours > 0)
        std::printf(" %9.2fx", time / ours);
    std::printf("\n");
}

} // namespace kirvo_bench
