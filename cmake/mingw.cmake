# What both Windows toolchains share.
set(CMAKE_C_COMPILER ${kirvo_triple}-gcc-win32)
set(CMAKE_CXX_COMPILER ${kirvo_triple}-g++-win32)
set(CMAKE_RC_COMPILER ${kirvo_triple}-windres)
set(CMAKE_C_FLAGS_INIT "${kirvo_machine_flags}")
set(CMAKE_CXX_FLAGS_INIT "${kirvo_machine_flags}")

# One file each, no runtime DLLs to ship, no symbols.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -s -Wl,--gc-sections")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static -s -Wl,--gc-sections")

set(CMAKE_FIND_ROOT_PATH /usr/${kirvo_triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_CROSSCOMPILING_EMULATOR
    "${CMAKE_CURRENT_LIST_DIR}/../script/wine;${kirvo_wine_bits}")
