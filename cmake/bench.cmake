# kirvo_bench: bench/*_bench.cpp, one file per room, and what they share. Measures the library as
# its users know it beside public libraries that do the same work. On Windows the only peer is
# libjpeg-turbo, which KIRVO_TURBOJPEG holds, built for that target; the rows of other rooms stand
# alone there, without their *_peers_bench.cpp.

add_executable(kirvo_bench)
target_compile_options(kirvo_bench PRIVATE -Wall -Wextra)
target_include_directories(kirvo_bench PRIVATE bench tests)
target_link_libraries(kirvo_bench PRIVATE kirvo kirvo_scene)

file(GLOB bench_sources CONFIGURE_DEPENDS bench/*_bench.cpp bench/support/*.cpp)
set(comparison bench/support/main_compare.cpp bench/support/two_libraries.cpp)
list(TRANSFORM comparison PREPEND ${PROJECT_SOURCE_DIR}/)
list(REMOVE_ITEM bench_sources ${comparison})
if(WIN32)
    set(KIRVO_TURBOJPEG "" CACHE PATH "Folder with turbojpeg.h and libturbojpeg.a")
    list(FILTER bench_sources EXCLUDE REGEX "(_peers_bench|/(reduce|hostile)_bench|_posix)\\.cpp$")
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
    add_library(kirvo_bench_peers INTERFACE)
    target_include_directories(kirvo_bench_peers SYSTEM INTERFACE ${KIRVO_OPENCV_INCLUDE})
    target_link_libraries(kirvo_bench_peers INTERFACE
        PkgConfig::KIRVO_PEERS ${KIRVO_OPENCV_CORE} ${KIRVO_OPENCV_IMGPROC})
    target_link_libraries(kirvo_bench PRIVATE benchmark::benchmark kirvo_bench_peers)
endif()
target_sources(kirvo_bench PRIVATE ${bench_sources})

# kirvo_compare: our rows on two builds of the library, which it loads instead of being linked.
if(NOT WIN32 AND CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
    include(${CMAKE_CURRENT_LIST_DIR}/export_list.cmake)
    list(FILTER bench_sources EXCLUDE REGEX "/(main_posix|one_library)\\.cpp$")
    add_executable(kirvo_compare ${bench_sources} ${comparison})
    target_compile_options(kirvo_compare PRIVATE -Wall -Wextra)
    target_include_directories(kirvo_compare PRIVATE bench tests include)
    target_link_libraries(kirvo_compare PRIVATE
        kirvo_scene kirvo_bench_peers kirvo_export_list ${CMAKE_DL_LIBS})
endif()
