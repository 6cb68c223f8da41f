# kirvo_bench: bench/*_bench.cpp, one file per room, and what they share. Measures the library as
# its users know it beside public libraries that do the same work. On Windows the only peer is
# libjpeg-turbo, which KIRVO_TURBOJPEG holds, built for that target.

add_executable(kirvo_bench)
target_compile_options(kirvo_bench PRIVATE -Wall -Wextra)
target_include_directories(kirvo_bench PRIVATE bench tests)
target_link_libraries(kirvo_bench PRIVATE kirvo kirvo_scene)

file(GLOB bench_sources CONFIGURE_DEPENDS bench/*_bench.cpp bench/support/*.cpp)
if(WIN32)
    set(KIRVO_TURBOJPEG "" CACHE PATH "Folder with turbojpeg.h and libturbojpeg.a")
    list(FILTER bench_sources INCLUDE REGEX "/(jpeg_[a-z]+_bench|support/[^/]+)\\.cpp$")
    list(FILTER bench_sources EXCLUDE REGEX "_posix\\.cpp$")
    target_include_directories(kirvo_bench SYSTEM PRIVATE ${KIRVO_TURBOJPEG})
    target_link_libraries(kirvo_bench PRIVATE ${KIRVO_TURBOJPEG}/libturbojpeg.a)
else()
    list(FILTER bench_sources EXCLUDE REGEX "_win32\\.cpp$")
    list(APPEND bench_sources tests/support/hostile_streams.cpp tests/support/jpeg_builder.cpp)
    find_package(benchmark REQUIRED)
    find_package(PkgConfig REQUIRED)
    pkg_check_modules(KIRVO_PEERS REQUIRED IMPORTED_TARGET libturbojpeg libjpeg GraphicsMagick)
    find_path(KIRVO_OPENCV_INCLUDE opencv2/imgproc.hpp PATH_SUFFIXES opencv4 REQUIRED)
    find_library(KIRVO_OPENCV_CORE opencv_core REQUIRED)
    find_library(KIRVO_OPENCV_IMGPROC opencv_imgproc REQUIRED)
    target_include_directories(kirvo_bench SYSTEM PRIVATE ${KIRVO_OPENCV_INCLUDE})
    target_link_libraries(kirvo_bench PRIVATE
        benchmark::benchmark PkgConfig::KIRVO_PEERS
        ${KIRVO_OPENCV_CORE} ${KIRVO_OPENCV_IMGPROC})
endif()
target_sources(kirvo_bench PRIVATE ${bench_sources})
