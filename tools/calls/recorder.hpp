// Notes which functions of the library are called, and with what.
//
// The catalogue's sources are compiled with calls/recorded.hpp before them, so that each of their
// calls passes through called(). What is shown as code is hence what was done. The owner of images
// comes before that: its own calls are the same in every source, and are not noted.
#pragma once

#include "kirvo.hpp"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <type_traits>
#include <variant>
#include <vector>

namespace calls {

struct ImageArgument {
    HGLOBAL handle;
};
struct Output { // an image that the call has made
    HGLOBAL handle;
};
struct StatusOutput {};
struct Table {
    std::vector<uint8_t> bytes;
};
using Argument =
    std::variant<int32_t, uint32_t, double, ImageArgument, Output, StatusOutput, Table>;

enum class Answer { image, status, nothing };

struct Call {
    const char* name;
    std::vector<Argument> arguments;
    Answer answer = Answer::nothing;
    HGLOBAL image = nullptr; // the answer, where it is one
    std::string file = {};   // of a picture opened beside the first one
};

// The calls of a step, from the picture that it begins with to its result.
struct List {
    std::vector<Call> calls;
    HGLOBAL first = nullptr, last = nullptr;
};

// Where calls of this thread are noted: null, or a list that is being made.
extern thread_local std::vector<Call>* noted;

inline Argument argument(int32_t number) { return number; }
inline Argument argument(uint32_t number) { return number; }
inline Argument argument(double number) { return number; }
inline Argument argument(HGLOBAL handle) { return ImageArgument{handle}; }
inline Argument argument(int32_t*) { return StatusOutput{}; }
inline Argument argument(HGLOBAL* made) { return Output{made != nullptr ? *made : nullptr}; }
inline Argument argument(const uint8_t* table) { return Table{{table, table + 256}}; }

void note(const char* name, Answer answer, HGLOBAL image,
          std::initializer_list<Argument> arguments);

// Calls the function and notes it, unless it was refused.
template<typename Result, typename... Wanted, typename... Given>
Result called(const char* name, Result(WINAPI* function)(Wanted...), Given... given) {
    if constexpr (std::is_void_v<Result>) {
        function(given...);
        if (noted != nullptr)
            note(name, Answer::nothing, nullptr, {argument(static_cast<Wanted>(given))...});
    } else if constexpr (std::is_same_v<Result, HGLOBAL>) {
        const HGLOBAL image = function(given...);
        if (noted != nullptr && image != nullptr)
            note(name, Answer::image, image, {argument(static_cast<Wanted>(given))...});
        return image;
    } else {
        const Result status = function(given...);
        if (noted != nullptr && status == KIRVO_OK)
            note(name, Answer::status, nullptr, {argument(static_cast<Wanted>(given))...});
        return status;
    }
}

} // namespace calls
