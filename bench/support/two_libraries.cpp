// This file defines every function of the library, each as a jump to the same function of the
// library that is in use, so that the same rows measure both. It does not see their declarations.
#include "support/two_libraries.hpp"

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <iterator>

#define EACH_FUNCTION                                                                              \
    FUNCTION(GlobalAlloc)                                                                          \
    FUNCTION(GlobalLock)                                                                           \
    FUNCTION(GlobalUnlock)                                                                         \
    FUNCTION(GlobalFree)                                                                           \
    FUNCTION(GlobalSize)                                                                           \
    FUNCTION(GetPaletteEntries)                                                                    \
    FUNCTION(DeleteObject)                                                                         \
    FUNCTION(KirvoSetWindowHost)
#define KIRVO_EXPORT(name, ...) FUNCTION(name)

#define FUNCTION(name)                                                                             \
    extern "C" {                                                                                   \
    [[gnu::used, gnu::visibility("hidden")]] void* kirvo_address_of_##name;                        \
    [[gnu::naked]] void name() { __asm__("jmp *kirvo_address_of_" #name "(%rip)"); }               \
    }
EACH_FUNCTION
#include "exports.inc"
#undef FUNCTION

namespace kirvo_bench {

int library_in_use();

namespace {

struct Function {
    const char* name;
    void** address;
};

const Function functions[] = {
#define FUNCTION(name) {#name, &kirvo_address_of_##name},
    EACH_FUNCTION
#include "exports.inc"
#undef FUNCTION
};

constexpr size_t function_count = std::size(functions);

void* addresses[2][function_count];
int in_use = 0;

[[noreturn]] void call_of_nothing() {
    std::fprintf(stderr, "A row calls a function that one of the libraries does not have\n");
    std::exit(1);
}

void load(const char* file, void* (&to)[function_count]) {
    void* library = dlopen(file, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        std::fprintf(stderr, "%s\n", dlerror());
        std::exit(1);
    }
    for (size_t i = 0; i < function_count; ++i) {
        to[i] = dlsym(library, functions[i].name);
        if (to[i] == nullptr)
            to[i] = reinterpret_cast<void*>(call_of_nothing);
    }
    if (dlsym(library, "GetVerKirvoDll") == nullptr) {
        std::fprintf(stderr, "%s is not this library\n", file);
        std::exit(1);
    }
}

} // namespace

int library_in_use() { return in_use; }

void load_libraries(const char* first, const char* second) {
    load(first, addresses[0]);
    load(second, addresses[1]);
    if (addresses[0][0] == addresses[1][0]) {
        std::fprintf(stderr, "%s and %s are one file\n", first, second);
        std::exit(1);
    }
    use_library(0);
}

void use_library(int number) {
    in_use = number;
    for (size_t i = 0; i < function_count; ++i)
        *functions[i].address = addresses[number][i];
}

} // namespace kirvo_bench
