// Every function of kirvo.def as data: what it is called with, which codes its documentation names,
// and a way to call it with values. A new export joins by standing in kirvo.def and kirvo.h; where
// a parameter's type and name do not tell what it takes, exports.cpp stops compiling and says what
// to add.
//
//     for (const Export& function : exports()) {
//         Value arguments[Export::most_parameters] = {};   // all zero and null
//         Value result = function.call(arguments);
//     }
//
// calls.hpp makes the arguments. Nothing here needs a test framework.
#pragma once

#include <cstdint>
#include <kirvo.h>
#include <span>
#include <string_view>

namespace kirvo_test {

// What an argument is.
enum class Kind : uint8_t {
    image,         // handle of a packed DIB
    stream,        // handle of a block with (a part of) a JPEG stream
    window,        // HWND
    file_read,     // name of a file that is read
    file_written,  // name of a file that is written
    position,      // in pixels, from an edge
    extent,        // in pixels
    size,          // bytes of the block or memory that the argument before it names
    number,        // any other integer
    real,          // double
    input,         // address of bytes that are read
    output,        // address of bytes that are written
    output_handle, // address of a handle that is written
};

struct Parameter {
    Kind kind;
    uint8_t width;          // bytes of the argument itself
    uint16_t bytes;         // input, output: bytes at the address
    uint8_t bytes_per_size; // input, output: so many more for each unit of the next argument
    std::string_view name;
};

// What a result is.
enum class Result : uint8_t {
    none,
    number,  // any number
    code,    // one of the codes when it is negative
    handle,  // a new block or null; with a parameter "status" or "error" it has the code
    palette, // a logical palette or null
};

// An argument or a result.
union Value {
    uint64_t number; // results are sign-extended
    double real;
    const void* pointer;
};

struct Export {
    static constexpr size_t most_parameters = 12;

    std::string_view name;
    Result result;
    std::span<const Parameter> parameters;
    std::span<const int32_t> codes; // those that its documentation names
    void (*function)();
    Value (*caller)(void (*function)(), const Value* arguments);

    Value call(const Value* arguments) const { return caller(function, arguments); }
    bool documents(int32_t code) const;
    // Index of a parameter; that of the status if there is one; none when there is no such.
    static constexpr size_t none = SIZE_MAX;
    size_t find(std::string_view parameter) const;
    size_t status_parameter() const;
};

// All of them, in the order of kirvo.def.
std::span<const Export> exports();
// The one of that name, which must exist.
const Export& export_named(std::string_view name);

} // namespace kirvo_test
