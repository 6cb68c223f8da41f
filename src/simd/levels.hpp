// The levels that a processor may have, lowest first: the one place that names them. Each is a file
// level_NAME.cpp; its instructions are allowed in cmake/library.cmake, its presence is found out in
// cpu_*.cpp.
#pragma once

#if defined(__wasm__)
#define KIRVO_LEVELS(each) each(scalar) each(wasm)
#else
#define KIRVO_LEVELS(each) each(scalar) each(sse2) each(avx2) each(avx512)
#endif
