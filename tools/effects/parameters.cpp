#include "effects/parameters.hpp"

#include "line/colours.hpp"
#include "line/numbers.hpp"
#include "line/suggestions.hpp"
#include "system/errors.hpp"

#include <algorithm>
#include <limits>
#include <set>

namespace {

using Kind = Parameter::Kind;

std::string digits(double number) {
    std::string text = std::to_string(number);
    text.erase(text.find_last_not_of('0') + 1);
    return text.back() == '.' ? text.substr(0, text.size() - 1) : text;
}

std::string joined(const std::vector<std::string>& words, const char* between) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : between) + word;
    return text;
}

std::string modes(const Parameter& parameter) {
    std::string text;
    for (size_t i = 0; i < parameter.words.size(); ++i)
        text += (text.empty() ? "" : ", ") +
                (static_cast<double>(i) <= parameter.most ? std::to_string(i) + " " : "") +
                parameter.words[i];
    return text;
}

// What would be right, in words.
std::string range(const Parameter& p) {
    switch (p.kind) {
    case Kind::whole:
    case Kind::real:
        if (p.most < no_bound)
            return digits(p.least) + " to " + digits(p.most);
        return p.least > -no_bound ? digits(p.least) + " or more" : "";
    case Kind::mode:
        return modes(p);
    case Kind::choice:
        return joined(p.words, "|") == p.name ? "" : joined(p.words, ", ");
    default:
        return "";
    }
}

std::string expectation(const Parameter& p) {
    switch (p.kind) {
    case Kind::whole:
        return range(p).empty() ? "a whole number" : range(p);
    case Kind::real:
        return range(p).empty() ? "a number" : range(p);
    case Kind::size:
        return "a size is written 800x600, 800x, x600 or 50%";
    case Kind::choice:
        return joined(p.words, ", ");
    default:
        return range(p);
    }
}

[[noreturn]] void refuse(const std::string& option, const Parameter& p, const std::string& text,
                         bool alone) {
    const std::string also =
        p.words.empty() ? "" : suggestion(text, p.words); // of modes and choices
    throw UsageError(option + ": " + (alone ? "" : p.name + ": ") + expectation(p) + ", not '" +
                     text + "'" + also);
}

size_t place_of(const Parameter& parameter, const std::string& text) {
    const auto found = std::find(parameter.words.begin(), parameter.words.end(), text);
    return static_cast<size_t>(found - parameter.words.begin());
}

// Not a number where the text is none that suits.
double number_of(const Parameter& parameter, const std::string& text) {
    const auto none = std::numeric_limits<double>::quiet_NaN();
    return parameter.kind == Kind::real || whole_number(text) ? real_number(text).value_or(none)
                                                              : none;
}

bool fits(const Parameter& parameter, const std::string& text) {
    return whole_number(text) || place_of(parameter, text) < parameter.words.size();
}

// A file's name may have commas: it goes on until what follows it fits its parameters.
void join_name(const std::vector<Parameter>& parameters, std::vector<std::string>& pieces) {
    if (parameters.empty() || parameters.front().kind != Kind::file)
        return;
    size_t behind = std::min(pieces.size(), parameters.size()) - 1;
    const auto are_good = [&](size_t count) {
        for (size_t i = 0; i < count; ++i) {
            if (!fits(parameters[i + 1], pieces[pieces.size() - count + i]))
                return false;
        }
        return true;
    };
    while (behind > 0 && !are_good(behind))
        --behind;
    std::string name = pieces.front();
    const size_t end = pieces.size() - behind;
    for (size_t i = 1; i < end; ++i)
        name += "," + pieces[i];
    pieces.erase(pieces.begin() + 1, pieces.begin() + static_cast<std::ptrdiff_t>(end));
    pieces.front() = name;
}

} // namespace

std::vector<std::string> split(const std::string& text) {
    std::vector<std::string> pieces;
    for (size_t start = 0; start <= text.size();) {
        const size_t comma = std::min(text.find(',', start), text.size());
        pieces.push_back(text.substr(start, comma - start));
        start = comma + 1;
    }
    return pieces;
}

Parameter whole(const char* name, double least, double most) {
    return {name, Kind::whole, least, most, {}};
}

Parameter real(const char* name, double least, double most) {
    return {name, Kind::real, least, most, {}};
}

Parameter colour() { return {"COLOUR", Kind::colour, 0, 0, {}}; }

Parameter size(const char* name) { return {name, Kind::size, 0, 0, {}}; }

Parameter file() { return {"FILE", Kind::file, 0, 0, {}}; }

Parameter mode(const char* name, std::vector<std::string> words) {
    const int highest = static_cast<int>(words.size()) - 1;
    return mode(name, std::move(words), highest);
}

Parameter mode(const char* name, std::vector<std::string> words, int highest) {
    return {name, Kind::mode, 0, static_cast<double>(highest), std::move(words)};
}

Parameter choice(std::vector<std::string> words) {
    const std::string name = joined(words, "|");
    return choice(name.c_str(), std::move(words));
}

Parameter choice(const char* name, std::vector<std::string> words) {
    return {name, Kind::choice, 0, 0, std::move(words)};
}

Parameter maybe(Parameter parameter) {
    parameter.optional = true;
    return parameter;
}

Size Size::of(int32_t old_width, int32_t old_height) const {
    const auto scaled = [](double length) {
        return static_cast<int32_t>(std::clamp(length + 0.5, 1.0, 1e9));
    };
    Size result = *this;
    if (percent > 0)
        return {scaled(old_width * percent / 100), scaled(old_height * percent / 100), 0};
    if (width == 0)
        result.width = scaled(static_cast<double>(old_width) * height / old_height);
    if (height == 0)
        result.height = scaled(static_cast<double>(old_height) * width / old_width);
    return result;
}

Size parse_size(const std::string& text) {
    const UsageError wrong("'" + text + "': a size is written 800x600, 800x, x600 or 50%");
    Size size;
    if (!text.empty() && text.back() == '%') {
        const auto percent = real_number(text.substr(0, text.size() - 1));
        if (!percent || !(*percent > 0 && *percent <= 10000))
            throw wrong;
        size.percent = *percent;
        return size;
    }
    const size_t by = text.find('x');
    if (by == std::string::npos || text.size() == 1)
        throw wrong;
    const auto length = [&](const std::string& digits) {
        const auto number = digits.empty() ? 0 : whole_number(digits);
        if (!number || *number < (digits.empty() ? 0 : 1))
            throw wrong;
        return *number;
    };
    size.width = length(text.substr(0, by));
    size.height = length(text.substr(by + 1));
    return size;
}

Values::Value Values::parsed(const std::string& option, const Parameter& p, const std::string& text,
                             bool alone) {
    Value value = {text, 0};
    const double number = number_of(p, text);
    const size_t place = place_of(p, text);
    switch (p.kind) {
    case Kind::whole:
    case Kind::real:
        if (!(number >= p.least) || (p.most < no_bound && number > p.most))
            refuse(option, p, text, alone);
        value.number = number;
        break;
    case Kind::mode:
        if (place < p.words.size())
            value.number = static_cast<double>(place);
        else if (number >= 0 && number <= p.most)
            value.number = number;
        else
            refuse(option, p, text, alone);
        break;
    case Kind::choice:
        if (place == p.words.size())
            refuse(option, p, text, alone);
        break;
    case Kind::colour:
        value.number = parse_colour(text);
        break;
    case Kind::size:
        parse_size(text);
        break;
    case Kind::file:
        if (text.empty())
            throw UsageError(option + ": a file's name is missing");
        break;
    }
    return value;
}

Values::Values(const std::string& option, const std::vector<Parameter>& parameters,
               const std::string& text) {
    if (parameters.empty())
        return;
    std::vector<std::string> pieces = split(text);
    join_name(parameters, pieces);
    const auto needed = static_cast<size_t>(
        std::count_if(parameters.begin(), parameters.end(),
                      [](const Parameter& parameter) { return !parameter.optional; }));
    if (pieces.size() < needed || pieces.size() > parameters.size())
        throw UsageError(option + ": " + signature(parameters) + " is wanted, not '" + text + "'");
    for (size_t i = 0; i < pieces.size(); ++i) {
        try {
            values_.push_back(parsed(option, parameters[i], pieces[i], parameters.size() == 1));
        } catch (const UsageError& error) {
            const std::string what = error.what();
            throw UsageError(what.starts_with(option) ? what : option + ": " + what);
        }
    }
}

std::string signature(const std::vector<Parameter>& parameters) {
    constexpr size_t many = 6, first = 4;
    std::string text, closing;
    for (const Parameter& parameter : parameters) {
        if (parameters.size() > many && &parameter == &parameters[first])
            return text + ",...";
        if (parameter.optional && closing.empty()) {
            text += "[";
            closing = "]";
        }
        text += (&parameter == &parameters.front() ? "" : ",") + parameter.name;
    }
    return text + closing;
}

std::string ranges(const std::vector<Parameter>& parameters) {
    std::string text;
    std::set<std::string> told;
    for (const Parameter& parameter : parameters) {
        const std::string one = range(parameter);
        if (one.empty() || !told.insert(parameter.name + one).second)
            continue;
        text +=
            (text.empty() ? "" : "; ") + (parameters.size() > 1 ? parameter.name + ": " : "") + one;
    }
    return text;
}
