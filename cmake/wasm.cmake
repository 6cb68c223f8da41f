# WebAssembly with Debian's Emscripten. Engines either compile a module or they do not: all of it may
# use vectors of 128 bits, and copies of memory in one instruction.
set(CMAKE_C_FLAGS_INIT "-msimd128 -mbulk-memory")
set(CMAKE_CXX_FLAGS_INIT ${CMAKE_C_FLAGS_INIT})
execute_process(COMMAND em-config EMSCRIPTEN_ROOT
                OUTPUT_VARIABLE EMSCRIPTEN_ROOT_PATH OUTPUT_STRIP_TRAILING_WHITESPACE)
if(NOT EMSCRIPTEN_ROOT_PATH)
    message(FATAL_ERROR "WebAssembly is compiled by Debian's emscripten package")
endif()
include(${EMSCRIPTEN_ROOT_PATH}/cmake/Modules/Platform/Emscripten.cmake)
