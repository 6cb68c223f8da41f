# The library as WebAssembly, and the package for JavaScript around it: build/wasm/kirvo-wasm. There is
# no JavaScript of Emscripten's: bindings/javascript/machine.js starts the library.
set(javascript ${PROJECT_SOURCE_DIR}/bindings/javascript)

add_executable(kirvo_wasm $<TARGET_OBJECTS:kirvo_objects>)
set_target_properties(kirvo_wasm PROPERTIES OUTPUT_NAME kirvo SUFFIX .wasm
                                            LINK_DEPENDS ${javascript}/exports.json)
target_link_options(kirvo_wasm PRIVATE --no-entry -sALLOW_MEMORY_GROWTH -sMAXIMUM_MEMORY=4GB
                    -sEXPORTED_FUNCTIONS=@${javascript}/exports.json)

# The modules of the package, each one file.
find_program(KIRVO_ESBUILD esbuild REQUIRED)
set(package ${PROJECT_BINARY_DIR}/kirvo-wasm)
file(GLOB javascript_sources CONFIGURE_DEPENDS ${javascript}/*.js)
set(bundle ${KIRVO_ESBUILD} --bundle --target=esnext --minify-whitespace --minify-syntax --log-level=warning
           --loader:.wasm=binary --alias:kirvo.wasm=$<TARGET_FILE:kirvo_wasm>)
math(EXPR npm_patch "100 * ${PROJECT_VERSION_PATCH} + ${PROJECT_VERSION_TWEAK}") # npm knows three numbers
set(npm_version ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}.${npm_patch})
configure_file(${javascript}/package.json.in ${package}/package.json @ONLY)
add_custom_command(
    OUTPUT ${package}/kirvo.mjs ${package}/kirvo-embedded.mjs ${package}/kirvo.js
    COMMAND ${bundle} --format=esm --platform=neutral --external:node:* ${javascript}/beside.js
            --outfile=${package}/kirvo.mjs
    COMMAND ${bundle} --format=esm ${javascript}/embedded.js --outfile=${package}/kirvo-embedded.mjs
    COMMAND ${bundle} --format=iife ${javascript}/page.js --outfile=${package}/kirvo.js
    COMMAND ${CMAKE_COMMAND} -E copy $<TARGET_FILE:kirvo_wasm> ${javascript}/kirvo.d.ts
            ${javascript}/README.md ${PROJECT_SOURCE_DIR}/LICENSE ${package}
    DEPENDS kirvo_wasm ${javascript_sources} ${javascript}/kirvo.d.ts ${javascript}/README.md
    VERBATIM)
add_custom_target(kirvo_package ALL DEPENDS ${package}/kirvo.js)

if(KIRVO_TESTS)
    enable_testing()
    set(KIRVO_NATIVE_LIBRARY ${PROJECT_SOURCE_DIR}/build/native/libkirvo.so CACHE FILEPATH
        "The native library, whose results are those of WebAssembly")
    foreach(check IN ITEMS node layer types browser)
        add_test(NAME kirvo_javascript_${check}
                 COMMAND /usr/bin/python3 ${PROJECT_SOURCE_DIR}/tests/javascript/check.py ${check} ${package}
                         ${KIRVO_NATIVE_LIBRARY})
        set_tests_properties(kirvo_javascript_${check} PROPERTIES TIMEOUT 300)
    endforeach()
    include(cmake/googletest.cmake)
endif()

# Every kernel at both levels, in Node.
if(TARGET gtest)
    file(GLOB kernel_test_sources CONFIGURE_DEPENDS tests/kernels/*.cpp)
    add_executable(kirvo_kernel_tests ${kernel_test_sources})
    target_include_directories(kirvo_kernel_tests PRIVATE tests)
    target_link_libraries(kirvo_kernel_tests PRIVATE gtest kirvo_objects)
    target_link_options(kirvo_kernel_tests PRIVATE -sALLOW_MEMORY_GROWTH -sEXIT_RUNTIME -sNODERAWFS
                        -sSINGLE_FILE) # which it does not fetch, as it would from a file beside it
    set_target_properties(kirvo_kernel_tests PROPERTIES # Emscripten's tools find their modules
        RULE_LAUNCH_LINK "${CMAKE_COMMAND} -E env NODE_PATH=/usr/share/nodejs")
    add_test(NAME kirvo_kernel_tests
             COMMAND node $<TARGET_FILE:kirvo_kernel_tests> --gtest_brief=1
                     --gtest_output=xml:reports/kirvo_kernel_tests.xml
             WORKING_DIRECTORY ${PROJECT_BINARY_DIR})
    set_tests_properties(kirvo_kernel_tests PROPERTIES TIMEOUT 300)
endif()
