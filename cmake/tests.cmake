# Test programs: tests/<room>/*_test.cpp becomes kirvo_<room>_tests, which knows the library as its
# users do; tests/internal/<room>/*_test.cpp becomes kirvo_internal_<room>_tests, linked with the
# library's objects. GoogleTest is built from Debian's source package, for every target alike.

set(KIRVO_GTEST_SOURCE /usr/src/googletest CACHE PATH "GoogleTest's source")
if(NOT EXISTS ${KIRVO_GTEST_SOURCE}/CMakeLists.txt)
    message(WARNING "The tests are not built: they need Debian's googletest package")
    return()
endif()
set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
set(gtest_disable_pthreads ${WIN32} CACHE BOOL "" FORCE)
add_subdirectory(${KIRVO_GTEST_SOURCE} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
if(WIN32)
    target_include_directories(gtest SYSTEM BEFORE PUBLIC ${PROJECT_SOURCE_DIR}/tests/support/mingw)
endif()

set(KIRVO_TEST_FLAGS -O1 -Wall -Wextra)
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/reports)

# The helpers of the tests, once for each side of the library's interface.
file(GLOB support_sources CONFIGURE_DEPENDS tests/support/*.cpp)
foreach(side IN ITEMS public internal)
    add_library(kirvo_${side}_test_support STATIC ${support_sources})
    target_include_directories(kirvo_${side}_test_support PUBLIC tests)
    target_compile_options(kirvo_${side}_test_support PRIVATE ${KIRVO_TEST_FLAGS})
    target_precompile_headers(kirvo_${side}_test_support PRIVATE <gtest/gtest.h> <kirvo.h>)
    target_link_libraries(kirvo_${side}_test_support PUBLIC gtest)
endforeach()
target_link_libraries(kirvo_public_test_support PUBLIC kirvo)
target_link_libraries(kirvo_internal_test_support PUBLIC kirvo_objects)

# Each folder with a *_test.cpp in it is one program and one CTest test.
file(GLOB_RECURSE test_sources CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR} tests/*_test.cpp)
foreach(source IN LISTS test_sources)
    cmake_path(GET source PARENT_PATH folder)
    string(REGEX REPLACE "^tests/" "" name ${folder})
    string(REPLACE "/" "_" name ${name})
    set(program kirvo_${name}_tests)
    if(NOT TARGET ${program})
        set(side public)
        if(name MATCHES "^internal_")
            set(side internal)
        endif()
        add_executable(${program})
        target_compile_options(${program} PRIVATE ${KIRVO_TEST_FLAGS})
        target_precompile_headers(${program} REUSE_FROM kirvo_${side}_test_support)
        target_link_libraries(${program} PRIVATE kirvo_${side}_test_support)
        add_test(NAME ${program}
                 COMMAND ${program} --gtest_brief=1 --gtest_output=xml:reports/${program}.xml
                 WORKING_DIRECTORY ${PROJECT_BINARY_DIR})
        set_tests_properties(${program} PROPERTIES TIMEOUT 900)
    endif()
    target_sources(${program} PRIVATE ${source})
endforeach()
if(TARGET kirvo_tool_tests)
    add_dependencies(kirvo_tool_tests kirvo_tool) # which they run
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
find_package(Python3 REQUIRED COMPONENTS Interpreter)
file(GENERATE OUTPUT ${PROJECT_BINARY_DIR}/interface.json CONTENT "{
    \"source\": \"${PROJECT_SOURCE_DIR}\",
    \"system\": \"${CMAKE_SYSTEM_NAME}\",
    \"library\": \"$<TARGET_FILE:kirvo>\",
    \"c_compiler\": \"${CMAKE_C_COMPILER}\",
    \"cpp_compiler\": \"${CMAKE_CXX_COMPILER}\",
    \"nm\": \"${CMAKE_NM}\",
    \"objdump\": \"${CMAKE_OBJDUMP}\",
    \"objects\": [\"$<JOIN:$<TARGET_OBJECTS:kirvo_objects>,\", \">\"]
}
")
set(checks header_c99 header_cpp17 exports imports)
if(NOT KIRVO_SANITIZE)
    list(APPEND checks baseline)
endif()
if(WIN32)
    list(APPEND checks size version)
endif()
foreach(check IN LISTS checks)
    add_test(NAME kirvo_check_${check}
             COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tests/interface/check.py ${check}
                     ${PROJECT_BINARY_DIR}/interface.json)
endforeach()

# What other programs have encoded, against what they decode.
if(NOT WIN32 AND NOT KIRVO_SANITIZE)
    add_test(NAME kirvo_jpeg_real_files
             COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tests/jpeg/real_files.py
                     $<TARGET_FILE:kirvo> $<TARGET_FILE:kirvo_sample>)
endif()
