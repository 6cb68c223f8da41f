#include "support/exports.hpp"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <tuple>
#include <type_traits>
#include <utility>

namespace kirvo_test {

namespace {

// Addresses of more than one object of their type, and those whose type does not say the size.
struct Memory {
    std::string_view function, parameter;
    uint16_t bytes;
    uint8_t bytes_per_size;
};

constexpr Memory memories[] = {
    {"DibNumColors", "header", 40, 0},
    {"PaletteSize", "header", 40, 0},
    {"JpgCodSetQtable", "luminance", 128, 0},
    {"JpgCodSetQtable", "chrominance", 128, 0},
    {"JpgCodSetQtableEx", "luminance", 128, 0},
    {"JpgCodSetQtableEx", "chrominance", 128, 0},
    {"JpgCodSetComment", "text", 0, 1},
    {"JpgDecGetQtable", "luma", 128, 0},
    {"JpgDecGetQtable", "chroma", 128, 0},
    {"JpgDecGetQtableEx", "table", 128, 0},
    {"DibColorMapEx", "table", 256, 0},
    {"Dib24Mix3X3SetMask", "weights", 36, 0},
    {"Dib24Mix5X5SetMask", "weights", 100, 0},
    {"DibHistgram", "red", 1024, 0},
    {"DibHistgram", "green", 1024, 0},
    {"DibHistgram", "blue", 1024, 0},
    {"IcoGetInfo", "records", 0, 1},
    {"IcoGetInfoEx", "records", 0, 2},
};

// Files that are written; all others are read.
constexpr std::string_view writers[] = {"DibWriteEx", "Dib24Write", "Targa24Write", "JpgCodMainEx",
                                        "JpgCodMainEx_M"};

constexpr std::string_view images[] = {"dib", "to", "from", "first", "second"};
constexpr std::string_view positions[] = {"x",      "y",         "left",    "top", "x0",
                                          "x1",     "x2",        "y1",      "y2",  "to_left",
                                          "to_top", "from_left", "from_top"};
constexpr std::string_view extents[] = {"width", "height", "new_width", "new_height"};
constexpr std::string_view sizes[] = {"size", "length"};

template<size_t n>
constexpr bool contains(const std::string_view (&names)[n], std::string_view name) {
    return std::find(names, names + n, name) != names + n;
}

template<typename T>
constexpr Parameter memory_at(Kind kind, std::string_view function, std::string_view name) {
    for (const Memory& memory : memories) {
        if (memory.function == function && memory.parameter == name)
            return {kind, sizeof(void*), memory.bytes, memory.bytes_per_size, name};
    }
    if constexpr (std::is_void_v<T> || std::is_const_v<T>)
        throw "add to `memories` how many bytes this parameter points at, or it to `images`";
    else
        return {kind, sizeof(void*), sizeof(T), 0, name};
}

template<typename T>
constexpr Parameter parameter(std::string_view function, std::string_view name) {
    const auto plain = [&](Kind kind) { return Parameter{kind, sizeof(T), 0, 0, name}; };
    if constexpr (std::is_same_v<T, double>) {
        return plain(Kind::real);
    } else if constexpr (std::is_integral_v<T>) {
        return plain(contains(extents, name)                            ? Kind::extent
                     : contains(positions, name) && std::is_signed_v<T> ? Kind::position
                     : contains(sizes, name)                            ? Kind::size
                                                                        : Kind::number);
    } else if constexpr (std::is_same_v<T, LPCSTR>) {
        return plain(contains(writers, function) ? Kind::file_written : Kind::file_read);
    } else if constexpr (std::is_same_v<T, HWND>) {
        return plain(Kind::window);
    } else if constexpr (std::is_same_v<T, HGLOBAL*>) {
        return {Kind::output_handle, sizeof(T), sizeof(HGLOBAL), 0, name};
    } else if constexpr (std::is_same_v<T, HGLOBAL>) {
        if (contains(images, name))
            return plain(Kind::image);
        if (name == "data")
            return plain(Kind::stream);
        return memory_at<void>(Kind::output, function, name);
    } else {
        using Pointed = std::remove_pointer_t<T>;
        static_assert(std::is_pointer_v<T>, "add to `parameter` what this type is");
        return memory_at<Pointed>(std::is_const_v<Pointed> ? Kind::input : Kind::output, function,
                                  name);
    }
}

// The n-th word of a text.
constexpr std::string_view word(std::string_view text, size_t n) {
    for (; n != 0; --n)
        text.remove_prefix(text.find(' ') + 1);
    return text.substr(0, text.find(' '));
}

template<typename Function>
struct Signature;

template<typename R, typename... Arguments>
struct Signature<R(WINAPI*)(Arguments...)> {
    static constexpr size_t count = sizeof...(Arguments);
    static_assert(count <= Export::most_parameters, "raise Export::most_parameters");
    using Parameters = std::array<Parameter, count>;

    static constexpr Parameters parameters(std::string_view function, std::string_view names) {
        return parameters(function, names, std::make_index_sequence<count>());
    }

    static constexpr Result result(size_t codes) {
        if constexpr (std::is_void_v<R>)
            return Result::none;
        else if constexpr (std::is_same_v<R, HGLOBAL>)
            return Result::handle;
        else if constexpr (std::is_same_v<R, HPALETTE>)
            return Result::palette;
        else {
            static_assert(std::is_integral_v<R>, "add to `result` what this type is");
            return codes != 0 ? Result::code : Result::number;
        }
    }

    static Value call(void (*function)(), const Value* arguments) {
        return call(reinterpret_cast<R(WINAPI*)(Arguments...)>(reinterpret_cast<void*>(function)),
                    arguments, std::make_index_sequence<count>());
    }

  private:
    template<size_t... i>
    static constexpr Parameters parameters([[maybe_unused]] std::string_view function,
                                           [[maybe_unused]] std::string_view names,
                                           std::index_sequence<i...>) {
        return {parameter<Arguments>(function, word(names, i))...};
    }

    template<typename T>
    static T argument(const Value& value) {
        if constexpr (std::is_same_v<T, double>)
            return value.real;
        else if constexpr (std::is_pointer_v<T>)
            return static_cast<T>(const_cast<void*>(value.pointer));
        else
            return static_cast<T>(value.number);
    }

    template<size_t... i>
    static Value call(R(WINAPI* function)(Arguments...), [[maybe_unused]] const Value* arguments,
                      std::index_sequence<i...>) {
        if constexpr (std::is_void_v<R>) {
            function(argument<Arguments>(arguments[i])...);
            return {0};
        } else {
            const R result = function(argument<Arguments>(arguments[i])...);
            if constexpr (std::is_pointer_v<R>)
                return {.pointer = result};
            else
                return {static_cast<uint64_t>(result)};
        }
    }
};

#define KIRVO_EXPORT(name, names, ...)                                                             \
    constexpr auto parameters_of_##name = Signature<decltype(&::name)>::parameters(#name, names);  \
    constexpr auto codes_of_##name = std::to_array<int32_t>({INT32_MAX __VA_OPT__(, ) __VA_ARGS__});
#include "exports.inc"
#undef KIRVO_EXPORT

} // namespace

bool Export::documents(int32_t code) const {
    return std::find(codes.begin(), codes.end(), code) != codes.end();
}

size_t Export::find(std::string_view parameter) const {
    for (size_t i = 0; i < parameters.size(); ++i) {
        if (parameters[i].name == parameter)
            return i;
    }
    return none;
}

size_t Export::status_parameter() const { return std::min(find("status"), find("error")); }

std::span<const Export> exports() {
#define KIRVO_EXPORT(name, names, ...)                                                             \
    {#name,                                                                                        \
     Signature<decltype(&::name)>::result(codes_of_##name.size() - 1),                             \
     parameters_of_##name,                                                                         \
     std::span(codes_of_##name).subspan(1),                                                        \
     reinterpret_cast<void (*)()>(reinterpret_cast<void*>(&::name)),                               \
     Signature<decltype(&::name)>::call},
    static const Export all[] = {
#include "exports.inc"
    };
#undef KIRVO_EXPORT
    return all;
}

const Export& export_named(std::string_view name) {
    for (const Export& function : exports()) {
        if (function.name == name)
            return function;
    }
    std::abort();
}

} // namespace kirvo_test
