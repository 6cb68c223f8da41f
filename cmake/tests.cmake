# Test programs: tests/<room>/*_test.cpp becomes kirvo_<room>_tests, which knows the library as its
# users do; tests/internal/<room>/*_test.cpp becomes kirvo_internal_<room>_tests, linked with the
# library's objects.

include(${CMAKE_CURRENT_LIST_DIR}/googletest.cmake)
if(NOT TARGET gtest)
    return()
endif()
find_package(Python3 COMPONENTS Interpreter)
if(NOT Python3_FOUND)
    message(WARNING "The tests are not built: they need Debian's python3 package")
    return()
endif()
set(kirvo_wine ${CMAKE_CROSSCOMPILING_EMULATOR})
if(kirvo_wine)
    set(CMAKE_CROSSCOMPILING_EMULATOR
        ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tests/support/emulated.py ${kirvo_wine})
endif()
if(WIN32)
    target_include_directories(gtest SYSTEM BEFORE PUBLIC ${PROJECT_SOURCE_DIR}/tests/support/mingw)
endif()

set(KIRVO_TEST_FLAGS -O1 -Wall -Wextra)
if(KIRVO_SANITIZE)
    # What is undefined matters in the libraries; checking the tests for it doubles their build.
    list(APPEND KIRVO_TEST_FLAGS -fno-sanitize=undefined)
endif()
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/reports)

include(${CMAKE_CURRENT_LIST_DIR}/export_list.cmake)

# The helpers of the tests, once for each side of the library's interface.
file(GLOB support_sources CONFIGURE_DEPENDS tests/support/*.cpp)
foreach(side IN ITEMS public internal)
    add_library(kirvo_${side}_test_support STATIC ${support_sources})
    target_include_directories(kirvo_${side}_test_support PUBLIC tests)
    target_compile_options(kirvo_${side}_test_support PRIVATE ${KIRVO_TEST_FLAGS})
    target_precompile_headers(kirvo_${side}_test_support PRIVATE <gtest/gtest.h> <kirvo.h>)
    target_link_libraries(kirvo_${side}_test_support PUBLIC gtest kirvo_export_list)
endforeach()
target_link_libraries(kirvo_public_test_support PUBLIC kirvo)
target_link_libraries(kirvo_internal_test_support PUBLIC kirvo_objects)

# Hostile and odd files.
set(world ${PROJECT_BINARY_DIR}/world)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS tests/world/recipes.py)
execute_process(COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tests/world/recipes.py ${world}
                COMMAND_ERROR_IS_FATAL ANY)

# Each folder with a *_test.cpp in it is one program and one CTest test.
file(GLOB_RECURSE test_sources CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR} tests/*_test.cpp)
if(NOT TARGET kirvo_tool)
    list(FILTER test_sources EXCLUDE REGEX "^tests/tool/")
endif()
if(NOT TARGET kirvo_view)
    list(FILTER test_sources EXCLUDE REGEX "^tests/viewer/")
endif()
foreach(source IN LISTS test_sources)
    cmake_path(GET source PARENT_PATH folder)
    string(REGEX REPLACE "^tests/" "" name ${folder})
    string(REPLACE "/" "_" name ${name})
    set(program kirvo_${name}_tests)
    if(NOT TARGET ${program})
        set(side public)
        if(name MATCHES "^internal_" AND NOT name STREQUAL internal_pictures)
            set(side internal) # the second library is tested from inside on top of the first
        endif()
        add_executable(${program})
        target_compile_options(${program} PRIVATE ${KIRVO_TEST_FLAGS})
        target_precompile_headers(${program} REUSE_FROM kirvo_${side}_test_support)
        target_link_libraries(${program} PRIVATE kirvo_${side}_test_support)
        if(name STREQUAL "files")
            target_link_libraries(${program} PRIVATE kirvo_files)
        elseif(name STREQUAL "internal_pictures")
            target_link_libraries(${program} PRIVATE kirvo_files_objects)
        endif()
        add_test(NAME ${program}
                 COMMAND ${program} --gtest_brief=1 --gtest_output=xml:reports/${program}.xml
                 WORKING_DIRECTORY ${PROJECT_BINARY_DIR})
        set_tests_properties(${program} PROPERTIES TIMEOUT 900)
    endif()
    target_sources(${program} PRIVATE ${source})
endforeach()
target_compile_definitions(kirvo_safety_tests PRIVATE KIRVO_WORLD="${world}")
target_compile_definitions(kirvo_files_tests PRIVATE KIRVO_WORLD="${world}")
if(TARGET kirvo_tool)
    add_dependencies(kirvo_tool_tests kirvo_tool) # which they run
endif()
if(TARGET kirvo_view)
    add_dependencies(kirvo_viewer_tests kirvo_view)
    target_sources(kirvo_viewer_tests PRIVATE tests/viewer/driver.cpp)
    target_include_directories(kirvo_viewer_tests PRIVATE viewer tools)
    target_link_libraries(kirvo_viewer_tests PRIVATE kirvo_view_parts kirvo_view_catalogue kirvo_files
                                                     winspool)
    target_compile_definitions(kirvo_viewer_tests PRIVATE KIRVO_FUZZ="${PROJECT_SOURCE_DIR}/fuzz"
                               KIRVO_WORLD="${world}")
    set_tests_properties(kirvo_viewer_tests PROPERTIES
        RUN_SERIAL ON TIMEOUT 1800) # one keyboard, one clipboard; minutes of waiting for windows
    add_test(NAME kirvo_check_viewer
             COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tests/viewer/check.py
                     ${CMAKE_OBJDUMP} $<TARGET_FILE:kirvo_view>)
endif()

# What the viewer shows as code, built and run.
if(TARGET kirvo_view_catalogue AND NOT WIN32 AND NOT KIRVO_SANITIZE)
    add_executable(kirvo_view_code tests/viewer/code/steps.cpp ${KIRVO_CALLS} viewer/dib.cpp
                                   viewer/effect.cpp viewer/second_picture.cpp
                                   tools/pictures/known.cpp tools/pictures/meaning.cpp)
    target_compile_options(kirvo_view_code PRIVATE ${KIRVO_TEST_FLAGS})
    target_include_directories(kirvo_view_code PRIVATE viewer tools)
    target_link_libraries(kirvo_view_code PRIVATE kirvo_view_catalogue kirvo kirvo_files)
    foreach(language IN ITEMS c csharp pascal basic python line)
        add_test(NAME kirvo_view_code_${language}
                 COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tests/viewer/code.py ${language}
                         ${PROJECT_BINARY_DIR}/interface.json $<TARGET_FILE:kirvo_view_code>)
        set_tests_properties(kirvo_view_code_${language} PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 300)
    endforeach()
endif()

# Every kernel at every level: tests/kernels.
file(GLOB kernel_test_sources CONFIGURE_DEPENDS tests/kernels/*.cpp)
add_executable(kirvo_kernel_tests ${kernel_test_sources})
target_compile_options(kirvo_kernel_tests PRIVATE ${KIRVO_TEST_FLAGS})
if(NOT KIRVO_SANITIZE)
    target_compile_options(kirvo_kernel_tests PRIVATE -O2)
endif()
target_link_libraries(kirvo_kernel_tests PRIVATE kirvo_internal_test_support)
add_test(NAME kirvo_kernel_tests
         COMMAND kirvo_kernel_tests --gtest_brief=1
                 --gtest_output=xml:reports/kirvo_kernel_tests.xml
         WORKING_DIRECTORY ${PROJECT_BINARY_DIR})
set_tests_properties(kirvo_kernel_tests PROPERTIES TIMEOUT 300)

# Many operations in one process.
add_executable(kirvo_soak tests/soak/soak.cpp)
target_compile_options(kirvo_soak PRIVATE ${KIRVO_TEST_FLAGS})
target_precompile_headers(kirvo_soak REUSE_FROM kirvo_public_test_support)
target_link_libraries(kirvo_soak PRIVATE kirvo_public_test_support)
set(soak_count 20000)
if(KIRVO_SANITIZE OR CMAKE_SIZEOF_VOID_P EQUAL 8 AND WIN32)
    set(soak_count 4000)
endif()
add_test(NAME kirvo_soak COMMAND kirvo_soak ${soak_count} WORKING_DIRECTORY ${PROJECT_BINARY_DIR})
set_tests_properties(kirvo_soak PROPERTIES
    TIMEOUT 900 ENVIRONMENT "ASAN_OPTIONS=allocator_may_return_null=1")

# The same calls at every level of the processor, and on Windows as away from it.
if(NOT KIRVO_SANITIZE)
    add_executable(kirvo_agreement tests/agreement/agreement.cpp)
    target_compile_options(kirvo_agreement PRIVATE ${KIRVO_TEST_FLAGS})
    target_precompile_headers(kirvo_agreement REUSE_FROM kirvo_public_test_support)
    target_link_libraries(kirvo_agreement PRIVATE kirvo_public_test_support)
    add_test(NAME kirvo_agreement
             COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tests/agreement/compare.py 3000
                     ${kirvo_wine} $<TARGET_FILE:kirvo_agreement>)
    set_tests_properties(kirvo_agreement PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 900)
endif()

# Stand-ins for the external Photo CD library, one with a single function. Each lies in a folder of
# its own, away from the programs, so that a test decides which one is there, if any.
foreach(standin IN ITEMS photo_cd photo_cd_incomplete)
    add_library(kirvo_${standin} MODULE tests/formats/standin/photo_cd.cpp)
    target_include_directories(kirvo_${standin} PRIVATE include tests)
    target_compile_options(kirvo_${standin} PRIVATE ${KIRVO_TEST_FLAGS})
    set_target_properties(kirvo_${standin} PROPERTIES PREFIX "" OUTPUT_NAME PCDLIB32 SUFFIX .DLL
                          LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/${standin})
    if(WIN32)
        target_link_options(kirvo_${standin} PRIVATE -static -Wl,--kill-at)
    else()
        target_link_options(kirvo_${standin} PRIVATE -Wl,-soname,PCDLIB32.DLL)
    endif()
    add_dependencies(kirvo_formats_tests kirvo_${standin})
endforeach()
target_compile_definitions(kirvo_photo_cd_incomplete PRIVATE PHOTO_CD_INCOMPLETE)

# What was built, held against what was declared.
file(GENERATE OUTPUT ${PROJECT_BINARY_DIR}/interface.json CONTENT "{
    \"source\": \"${PROJECT_SOURCE_DIR}\",
    \"system\": \"${CMAKE_SYSTEM_NAME}\",
    \"pointer_bytes\": \"${CMAKE_SIZEOF_VOID_P}\",
    \"library\": \"$<TARGET_FILE:kirvo>\",
    \"files_library\": \"$<TARGET_FILE:kirvo_files>\",
    \"files_objects\": [\"$<JOIN:$<TARGET_OBJECTS:kirvo_files_objects>,\", \">\"],
    \"c_compiler\": \"${CMAKE_C_COMPILER}\",
    \"cpp_compiler\": \"${CMAKE_CXX_COMPILER}\",
    \"sanitized\": \"$<BOOL:${KIRVO_SANITIZE}>\",
    \"nm\": \"${CMAKE_NM}\",
    \"objdump\": \"${CMAKE_OBJDUMP}\",
    \"objects\": [\"$<JOIN:$<TARGET_OBJECTS:kirvo_objects>,\", \">\"]
}
")
set(checks header_c99 header_cpp17 exports names types imports rooms version)
if(NOT KIRVO_SANITIZE)
    list(APPEND checks baseline)
endif()
if(WIN32)
    list(APPEND checks size)
    if(CMAKE_SIZEOF_VOID_P EQUAL 4)
        list(APPEND checks stdcall)
    endif()
endif()
foreach(check IN LISTS checks)
    add_test(NAME kirvo_check_${check}
             COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tests/interface/check.py ${check}
                     ${PROJECT_BINARY_DIR}/interface.json)
    if(NOT check STREQUAL baseline)
        add_test(NAME kirvo_files_check_${check}
                 COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tests/interface/check.py ${check}
                         ${PROJECT_BINARY_DIR}/interface.json kirvo_files)
    endif()
endforeach()

# The declarations for other languages, where there are compilers.
set(checks current python csharp pascal basic)
if(WIN32)
    set(checks pascal)
elseif(KIRVO_SANITIZE)
    set(checks)
endif()
foreach(check IN LISTS checks)
    add_test(NAME kirvo_bindings_${check}
             COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tests/bindings/check.py
                     ${check} ${PROJECT_BINARY_DIR}/interface.json)
    set_tests_properties(kirvo_bindings_${check} PROPERTIES SKIP_RETURN_CODE 77)
    if(NOT check STREQUAL current)
        add_test(NAME kirvo_files_bindings_${check}
                 COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tests/bindings/check.py
                         ${check} ${PROJECT_BINARY_DIR}/interface.json kirvo_files)
        set_tests_properties(kirvo_files_bindings_${check} PROPERTIES SKIP_RETURN_CODE 77)
    endif()
endforeach()

# What the scripts say to people who are not root.
if(NOT CMAKE_CROSSCOMPILING AND NOT KIRVO_SANITIZE)
    add_test(NAME kirvo_scripts_no_install
             COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tests/scripts/no_install.py)
endif()

# The object layers: their own promises, and every effect in each of them.
set(checks cpp)
if(NOT WIN32 AND NOT KIRVO_SANITIZE)
    list(APPEND checks effects depths lines python csharp pascal basic)
endif()
foreach(check IN LISTS checks)
    add_test(NAME kirvo_layer_${check}
             COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tests/layers/check.py
                     ${check} ${PROJECT_BINARY_DIR}/interface.json)
    set_tests_properties(kirvo_layer_${check} PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 600)
endforeach()

# What other programs have encoded, against what they decode.
if(NOT WIN32 AND NOT KIRVO_SANITIZE)
    add_test(NAME kirvo_jpeg_real_files
             COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tests/jpeg/real_files.py
                     $<TARGET_FILE:kirvo> $<TARGET_FILE:kirvo_sample>)
endif()

# Files of other programs, as the second library and others read them. Pillow is Debian's.
find_program(KIRVO_DEBIAN_PYTHON python3 PATHS /usr/bin NO_DEFAULT_PATH)
if(NOT WIN32 AND NOT KIRVO_SANITIZE AND NOT KIRVO_COVERAGE AND KIRVO_DEBIAN_PYTHON)
    foreach(group IN ITEMS Written Jpeg Installed Orientation Metadata)
        string(TOLOWER ${group} name)
        add_test(NAME kirvo_files_real_${name}
                 COMMAND ${KIRVO_DEBIAN_PYTHON} ${PROJECT_SOURCE_DIR}/tests/files/real_files.py
                         ${group} ${PROJECT_BINARY_DIR})
    endforeach()
endif()

# The command line in a terminal.
set(terminal ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tests/tool/terminal.py)
if(TARGET kirvo_tool AND WIN32)
    add_test(NAME kirvo_tool_interruption
             COMMAND ${terminal} WindowsInterruption ${kirvo_wine}
                     $<TARGET_FILE:kirvo_tool>)
elseif(TARGET kirvo_tool AND NOT KIRVO_SANITIZE)
    foreach(group IN ITEMS Interruption ProgressBar Colours Completions ManualPage)
        string(TOLOWER ${group} name)
        add_test(NAME kirvo_tool_${name} COMMAND ${terminal} ${group} $<TARGET_FILE:kirvo_tool>)
    endforeach()
    add_test(NAME kirvo_tool_pictures
             COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tests/tool/pictures.py
                     $<TARGET_FILE:kirvo_tool>)
    add_test(NAME kirvo_tool_workers
             COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tests/tool/workers.py
                     $<TARGET_FILE:kirvo_tool>)
    set_tests_properties(kirvo_tool_workers PROPERTIES RUN_SERIAL TRUE) # it measures
    add_test(NAME kirvo_readme
             COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tests/tool/readme.py
                     $<TARGET_FILE:kirvo_tool> $<TARGET_FILE:kirvo_sample>)
endif()

# Hostile and odd files by the command line and by the classes of each language.
if(TARGET kirvo_tool AND NOT WIN32 AND NOT KIRVO_SANITIZE AND NOT KIRVO_COVERAGE)
    add_test(NAME kirvo_world
             COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tests/world/check.py
                     $<TARGET_FILE:kirvo_tool> ${world})
endif()
if(NOT WIN32 AND NOT KIRVO_SANITIZE AND NOT KIRVO_COVERAGE)
    foreach(language IN ITEMS cpp csharp pascal python vb)
        add_test(NAME kirvo_world_${language}
                 COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tests/world/layers.py
                         ${language} ${PROJECT_BINARY_DIR}/interface.json ${world})
        set_tests_properties(kirvo_world_${language} PROPERTIES SKIP_RETURN_CODE 77)
    endforeach()
endif()

# Thumbnails on a cluster of this machine.
if(TARGET kirvo_tool AND NOT WIN32 AND NOT KIRVO_SANITIZE)
    add_test(NAME kirvo_many_machines
             COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tests/examples/many_machines.py
                     ${PROJECT_BINARY_DIR} $<TARGET_FILE:kirvo_tool>)
    set_tests_properties(kirvo_many_machines PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 900)
endif()

# The guide's examples: each is a program that tests itself.
file(GLOB guide_examples CONFIGURE_DEPENDS docs/snippets/*.c docs/snippets/*.cpp)
if(WIN32)
    list(FILTER guide_examples EXCLUDE REGEX "_posix\\.c")
else()
    list(FILTER guide_examples EXCLUDE REGEX "_win32\\.c")
endif()
foreach(example IN LISTS guide_examples)
    cmake_path(GET example FILENAME name)
    string(REPLACE "." "_" name ${name})
    add_executable(kirvo_guide_${name} ${example})
    target_compile_options(kirvo_guide_${name} PRIVATE ${KIRVO_TEST_FLAGS})
    target_link_libraries(kirvo_guide_${name} PRIVATE kirvo kirvo_files)
    if(WIN32) # for sockets and the system's codecs
        target_link_libraries(kirvo_guide_${name} PRIVATE ws2_32 ole32 windowscodecs)
    endif()
    add_test(NAME kirvo_guide_${name} COMMAND kirvo_guide_${name}
             WORKING_DIRECTORY ${PROJECT_BINARY_DIR})
endforeach()

# The examples, on real pictures.
if(KIRVO_EXAMPLES)
    set(examples convert pieces photo thumbnails vignette)
    if(WIN32)
        list(APPEND examples window)
    endif()
    foreach(example IN LISTS examples)
        add_test(NAME kirvo_example_${example}
                 COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tests/examples/check.py
                         ${example} ${PROJECT_BINARY_DIR}/examples ${kirvo_wine})
    endforeach()
endif()
