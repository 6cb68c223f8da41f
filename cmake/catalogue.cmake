# The tool's catalogue of effects, for programs that also want to know which calls of the library it
# makes: compiled with the flags KIRVO_RECORDED, these are noted by the sources KIRVO_CALLS.

file(GLOB KIRVO_CATALOGUE CONFIGURE_DEPENDS tools/effects/*.cpp)
list(APPEND KIRVO_CATALOGUE tools/line/colours.cpp tools/line/numbers.cpp tools/line/suggestions.cpp
     tools/pictures/image.cpp tools/system/errors.cpp)
file(GLOB KIRVO_CALLS CONFIGURE_DEPENDS tools/calls/*.cpp)
set(KIRVO_RECORDED -include ${PROJECT_SOURCE_DIR}/tools/calls/recorded.hpp)
