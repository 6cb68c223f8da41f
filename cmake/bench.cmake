# kirvo_bench: bench/*_bench.cpp, one file per room, and what they share. Measures the library as
# its users know it beside public libraries that do the same work.

find_package(benchmark REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(KIRVO_PEERS REQUIRED IMPORTED_TARGET libturbojpeg libjpeg GraphicsMagick)
find_path(KIRVO_OPENCV_INCLUDE opencv2/imgproc.hpp PATH_SUFFIXES opencv4 REQUIRED)
find_library(KIRVO_OPENCV_CORE opencv_core REQUIRED)
find_library(KIRVO_OPENCV_IMGPROC opencv_imgproc REQUIRED)

file(GLOB bench_sources CONFIGURE_DEPENDS bench/*_bench.cpp bench/support/*.cpp)
add_executable(kirvo_bench ${bench_sources})
target_compile_options(kirvo_bench PRIVATE -Wall -Wextra)
target_include_directories(kirvo_bench PRIVATE bench)
target_include_directories(kirvo_bench SYSTEM PRIVATE ${KIRVO_OPENCV_INCLUDE})
target_link_libraries(kirvo_bench PRIVATE
    kirvo kirvo_scene benchmark::benchmark PkgConfig::KIRVO_PEERS
    ${KIRVO_OPENCV_CORE} ${KIRVO_OPENCV_IMGPROC})
