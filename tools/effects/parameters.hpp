// The comma-separated values behind an effect's option: described once, for the parser, the help
// and the shells' completions.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct Parameter {
    enum class Kind { whole, real, colour, size, file, mode, choice };

    std::string name;
    Kind kind;
    double least, most;             // of numbers; of modes the highest number
    std::vector<std::string> words; // names of modes in the order of their numbers; of choices all
    bool optional = false;
};

constexpr double no_bound = 2147483647;

Parameter whole(const char* name, double least = -no_bound - 1, double most = no_bound);
Parameter real(const char* name, double least = 0, double most = no_bound);
Parameter colour();
Parameter size(const char* name = "WxH");
Parameter file();
// Names beside the numbers from 0; names behind the highest number have none.
Parameter mode(const char* name, std::vector<std::string> words);
Parameter mode(const char* name, std::vector<std::string> words, int highest);
Parameter choice(std::vector<std::string> words);
Parameter choice(const char* name, std::vector<std::string> words);
Parameter maybe(Parameter parameter);

// "WxH", "Wx", "xH" or "P%".
struct Size {
    int32_t width = 0, height = 0; // 0: as the other wants
    double percent = 0;            // 0: none

    Size of(int32_t old_width, int32_t old_height) const;
};
Size parse_size(const std::string& text);
std::vector<std::string> split(const std::string& text); // at its commas

// Values that fit their parameters.
class Values {
  public:
    // Throws UsageError, which names the option and says what would be right.
    Values(const std::string& option, const std::vector<Parameter>& parameters,
           const std::string& text);

    size_t count() const { return values_.size(); }
    const std::string& text(size_t i) const { return values_.at(i).text; }
    int32_t integer(size_t i, int32_t otherwise = 0) const {
        return i < count() ? static_cast<int32_t>(values_[i].number) : otherwise;
    }
    double real(size_t i) const { return values_.at(i).number; }
    uint32_t colour(size_t i) const { return static_cast<uint32_t>(values_.at(i).number); }

  private:
    struct Value {
        std::string text;
        double number;
    };
    static Value parsed(const std::string& option, const Parameter& parameter,
                        const std::string& text, bool alone);

    std::vector<Value> values_;
};

// "X,Y[,SIZE]", of many the first; of a choice its words, "90|180|270".
std::string signature(const std::vector<Parameter>& parameters);
// "-100 to 100"; "MODE: 0 set, 1 fade, 2 turn; VALUE: 0 to 359"
std::string ranges(const std::vector<Parameter>& parameters);
