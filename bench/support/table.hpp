// What is printed in the end: medians beside each other, and their ratios.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace kirvo_bench {

class Table {
  public:
    // One repetition of the row topic/operation/library.
    void add(const std::string& name, double milliseconds, double megapixels);
    void print() const;

  private:
    struct Row {
        std::vector<double> milliseconds;
        double megapixels = 0;
    };
    static void print(const std::string& operation, const std::string& library, const Row& row,
                      double ours);

    std::map<std::string, std::map<std::string, Row>> rows_;
};

} // namespace kirvo_bench
