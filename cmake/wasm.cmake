# WebAssembly with Debian's Emscripten.
execute_process(COMMAND em-config EMSCRIPTEN_ROOT
                OUTPUT_VARIABLE EMSCRIPTEN_ROOT_PATH OUTPUT_STRIP_TRAILING_WHITESPACE)
if(NOT EMSCRIPTEN_ROOT_PATH)
    message(FATAL_ERROR "WebAssembly is compiled by Debian's emscripten package")
endif()
set(ENV{NODE_PATH} /usr/share/nodejs) # where Debian keeps the modules of Emscripten's tools
include(${EMSCRIPTEN_ROOT_PATH}/cmake/Modules/Platform/Emscripten.cmake)
