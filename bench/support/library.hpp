// The library that rows call: the one that is linked, or one of two that are compared.
#pragma once

#include <kirvo.h>

namespace kirvo_bench {

constexpr int most_libraries = 2;

int library_in_use();

// A block made on first use, once by each library: none takes blocks of another.
template<typename Make>
HGLOBAL kept(const Make& make) {
    static HGLOBAL made[most_libraries];
    HGLOBAL& block = made[library_in_use()];
    if (block == nullptr)
        block = make();
    return block;
}

} // namespace kirvo_bench
