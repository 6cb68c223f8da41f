# 64-bit Windows with Debian's MinGW-w64.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(kirvo_triple x86_64-w64-mingw32)
set(kirvo_machine_flags "")
set(kirvo_wine_bits 64)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
