# The fuzz targets (fuzz/*.cpp but the shared files). With KIRVO_FUZZ each is a fuzzer of its own,
# kirvo_fuzz_<name>; otherwise all are one program that replays the corpora and the regressions.

include(${CMAKE_CURRENT_LIST_DIR}/export_list.cmake)
set(fuzz_shared fuzz/support.cpp fuzz/jpeg.cpp fuzz/files.cpp fuzz/structure.cpp)
set(fuzz_worlds fuzz/world.cpp fuzz/world_wide.cpp)
foreach(name IN ITEMS calls exports jpeg_reference temp_file temp_folder)
    list(APPEND fuzz_shared tests/support/${name}.cpp)
endforeach()
file(GLOB fuzz_targets CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR} fuzz/*.cpp)
list(REMOVE_ITEM fuzz_targets ${fuzz_shared} ${fuzz_worlds} fuzz/libfuzzer.cpp
     fuzz/replay_test.cpp fuzz/worst_time.cpp)
if(KIRVO_FUZZ_WIDE)
    list(APPEND fuzz_shared fuzz/world_wide.cpp)
else()
    list(APPEND fuzz_shared fuzz/world.cpp)
endif()

# The stand-in for the external Photo CD library, found by the name that it was linked with.
add_library(kirvo_fuzz_standin MODULE tests/formats/standin/photo_cd.cpp)
target_include_directories(kirvo_fuzz_standin PRIVATE include tests)
set_target_properties(kirvo_fuzz_standin PROPERTIES
    PREFIX "" OUTPUT_NAME PCDLIB32 SUFFIX .DLL
    LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/fuzz_standin)
target_link_options(kirvo_fuzz_standin PRIVATE -Wl,-soname,PCDLIB32.DLL)

add_library(kirvo_fuzz_support STATIC ${fuzz_shared})
target_include_directories(kirvo_fuzz_support PUBLIC tests)
target_link_libraries(kirvo_fuzz_support PUBLIC kirvo_objects kirvo_files_objects kirvo_export_list)
target_compile_options(kirvo_fuzz_support PUBLIC -Wall -Wextra)
if(KIRVO_FUZZ_WIDE)
    # What is counted is the libraries' code.
    target_compile_options(kirvo_fuzz_support PUBLIC
        -fno-sanitize-coverage=inline-8bit-counters,pc-table -ffunction-sections -fdata-sections)
    # Everything that is linked in asks the world of fuzz/world_wide.cpp.
    foreach(function IN ITEMS malloc calloc realloc free open fcntl fstat read lseek write close
                              dlopen dlsym dlclose)
        target_link_options(kirvo_fuzz_support INTERFACE -Wl,--wrap=${function})
    endforeach()
    # Without the counters of what a target cannot reach, which would be looked at after each case.
    target_link_options(kirvo_fuzz_support INTERFACE -Wl,--gc-sections -Wl,-z,start-stop-gc)
else()
    target_compile_options(kirvo_fuzz_support PUBLIC -O1)
endif()
target_compile_definitions(kirvo_fuzz_support PUBLIC
    "KIRVO_FUZZ_PHOTO_CD=\"$<TARGET_FILE:kirvo_fuzz_standin>\"")
add_dependencies(kirvo_fuzz_support kirvo_fuzz_standin)

if(NOT KIRVO_FUZZ)
    add_executable(kirvo_fuzz_replay ${fuzz_targets} fuzz/replay_test.cpp)
    target_compile_definitions(kirvo_fuzz_replay PRIVATE
        "KIRVO_FUZZ_FOLDER=\"${PROJECT_SOURCE_DIR}/fuzz\"")
    target_link_libraries(kirvo_fuzz_replay PRIVATE kirvo_fuzz_support gtest)
    add_test(NAME kirvo_fuzz_replay
             COMMAND kirvo_fuzz_replay --gtest_brief=1
                     --gtest_output=xml:reports/kirvo_fuzz_replay.xml
             WORKING_DIRECTORY ${PROJECT_BINARY_DIR})
    if(NOT KIRVO_SANITIZE AND NOT KIRVO_COVERAGE)
        add_executable(kirvo_worst_time fuzz/worst_time.cpp)
        target_compile_definitions(kirvo_worst_time PRIVATE
            "KIRVO_FUZZ_FOLDER=\"${PROJECT_SOURCE_DIR}/fuzz\"" "KIRVO_WORLD=\"${world}\"")
        target_link_libraries(kirvo_worst_time PRIVATE kirvo_fuzz_support)
        add_test(NAME kirvo_worst_time COMMAND kirvo_worst_time)
        set_tests_properties(kirvo_worst_time PROPERTIES RUN_SERIAL TRUE) # it measures
    endif()
    return()
endif()

# A test of a fuzzer replays its corpora, the grown one too, and goes on for some seconds. Its seed
# is fixed, so that no change is refused for what chance finds elsewhere; script/fuzz draws others.
enable_testing()
set(KIRVO_FUZZ_SECONDS 8 CACHE STRING "Seconds that a test fuzzes each target")
add_custom_target(kirvo_fuzzers ALL)
foreach(source IN LISTS fuzz_targets)
    cmake_path(GET source STEM name)
    set(fuzzer kirvo_fuzz_${name})
    add_executable(${fuzzer} ${source} fuzz/libfuzzer.cpp)
    target_link_libraries(${fuzzer} PRIVATE kirvo_fuzz_support)
    target_link_options(${fuzzer} PRIVATE -fsanitize=fuzzer)
    add_dependencies(kirvo_fuzzers ${fuzzer})
    add_test(NAME ${fuzzer}
             COMMAND ${PROJECT_SOURCE_DIR}/fuzz/run $<TARGET_FILE:${fuzzer}> ${KIRVO_FUZZ_SECONDS}
                     -seed=1)
    set_tests_properties(${fuzzer} PROPERTIES TIMEOUT 600)
endforeach()
