#include "calls/code.hpp"

#include "calls/language.hpp"
#include "system/errors.hpp"

#include <cstdio>
#include <map>

namespace {

// Puts the calls of one list of steps into words.
class Writer {
  public:
    explicit Writer(Language language) : language_(language), grammar_(grammar_of(language)) {}

    std::string text(const std::vector<Step>& steps) {
        std::string current = "dib";
        for (const Step& step : steps) {
            names_.clear();
            names_[step.calls.first] = current;
            body_ += std::string("\n") + grammar_.comment + step.option.substr(2) + " " +
                     step.values + "\n";
            for (const calls::Call& call : step.calls.calls)
                add(call);
            const auto last = names_.find(step.calls.last);
            current = last != names_.end() ? last->second : current;
            release_all_but(current);
        }
        const std::string first = std::string(grammar_.comment) + "dib is the picture, a " +
                                  (language_ == Language::cpp ? "kirvo::Image" : "packed DIB") +
                                  "; the result is " + current + "\n";
        return first + tables_in_front() + grammar_.head(images_, opens_) + tables_behind() +
               body_ + grammar_.tail;
    }

  private:
    // Pascal declares constants before variables, the others tables where they like.
    std::string tables_in_front() const { return language_ == Language::delphi ? tables_ : ""; }
    std::string tables_behind() const { return language_ == Language::delphi ? "" : tables_; }

    void add(const calls::Call& call) {
        if (!call.file.empty()) {
            names_[call.image] = new_image();
            body_ += grammar_.open(names_[call.image], call.file);
            opens_ = true;
            return;
        }
        Sentence sentence = {call.name, {}, call.answer, ""};
        for (const calls::Argument& argument : call.arguments)
            sentence.arguments.push_back(
                std::visit([&](const auto& value) { return word(value); }, argument));
        if (call.answer == calls::Answer::image) {
            sentence.result = new_image();
            names_[call.image] = sentence.result;
        }
        body_ += before_ + grammar_.call(sentence) + behind_;
        before_.clear();
        behind_.clear();
    }

    std::string new_image() {
        images_.push_back("dib" + std::to_string(images_.size() + 2));
        return images_.back();
    }

    void release_all_but(const std::string& kept) {
        for (const auto& [handle, name] : names_) {
            if (name != kept)
                body_ += grammar_.release(name);
        }
    }

    std::string word(int32_t number) const { return std::to_string(number); }
    std::string word(uint32_t number) const {
        char digits[16];
        std::snprintf(digits, sizeof digits, "%08X", static_cast<unsigned>(number));
        return grammar_.hex_before + std::string(digits) + grammar_.hex_behind;
    }
    std::string word(double number) const {
        char digits[32];
        std::snprintf(digits, sizeof digits, "%.15g", number);
        const std::string text = digits;
        return text.find_first_of(".e") == std::string::npos ? text + ".0" : text;
    }
    std::string word(const calls::ImageArgument& image) const {
        const auto found = names_.find(image.handle);
        return (found != names_.end() ? found->second : "dib") + grammar_.handle_behind;
    }
    std::string word(const calls::StatusOutput&) const { return grammar_.status; }
    std::string word(const calls::Output& output) {
        const std::string name = new_image();
        names_[output.handle] = name;
        before_ += grammar_.output_before(name);
        behind_ += grammar_.output_behind(name);
        return grammar_.output(name);
    }
    std::string word(const calls::Table& table) {
        const std::string name = "table" + std::to_string(++table_count_);
        std::string numbers;
        for (const uint8_t byte : table.bytes)
            numbers += (numbers.empty() ? "" : ",") + std::to_string(byte);
        tables_ += grammar_.table(name, numbers);
        return grammar_.table_before + name + grammar_.table_behind;
    }

    Language language_;
    const Grammar& grammar_;
    std::map<HGLOBAL, std::string> names_;
    std::vector<std::string> images_;
    std::string tables_, body_;
    std::string before_, behind_; // the call that is being made
    int table_count_ = 0;
    bool opens_ = false; // a second picture
};

std::string shell_word(const std::string& text) {
    const bool plain =
        !text.empty() && text.find_first_of(" &()^;,=%!'+|<>\"") == std::string::npos;
    return plain ? text : "\"" + text + "\"";
}

} // namespace

std::string code_of(Language language, const std::vector<Step>& steps) {
    return steps.empty() ? "" : Writer(language).text(steps);
}

std::string command_line_of(const std::vector<Step>& steps, const std::string& in,
                            const std::string& out) {
    std::string line = "kirvo convert " + shell_word(in) + " " + shell_word(out);
    for (const Step& step : steps) {
        if (step.place)
            throw Failure(step.option, "was done to a part of the picture, and the command line "
                                       "works on whole pictures");
        line += " " + step.option + (step.values.empty() ? "" : " " + shell_word(step.values));
    }
    return line;
}

std::string changed_name(const std::string& name, bool written) {
    const size_t folder = name.find_last_of("\\/") + 1, dot = name.find_last_of('.'); // 0: in none
    const size_t end = dot != std::string::npos && dot > folder ? dot : name.size();
    return name.substr(0, end) + "-changed" + (written ? name.substr(end) : ".png");
}
