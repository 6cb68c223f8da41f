# 32-bit Windows with Debian's MinGW-w64. Callers guarantee a stack aligned to 4 bytes only and may
# have changed the x87 control word: realign on entry, compute in SSE2.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(kirvo_triple i686-w64-mingw32)
set(kirvo_machine_flags "-msse2 -mfpmath=sse -mstackrealign -mincoming-stack-boundary=2")
set(kirvo_wine_bits 32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
