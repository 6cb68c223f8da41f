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
set(bundle ${KIRVO_ESBUILD} --bundle --target=es2022 --minify-whitespace --minify-syntax --log-level=warning
           --loader:.wasm=binary --alias:kirvo.wasm=$<TARGET_FILE:kirvo_wasm>)
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
