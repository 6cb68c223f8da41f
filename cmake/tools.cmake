# The command line `kirvo` (tools/*.cpp) and the generator of sample pictures (tools/sample).

add_library(kirvo_scene STATIC tools/sample/scene.cpp)
target_include_directories(kirvo_scene PUBLIC tools/sample)
target_compile_options(kirvo_scene PRIVATE -Wall -Wextra -Wconversion)
add_executable(kirvo_sample tools/sample/main.cpp)
target_compile_options(kirvo_sample PRIVATE -Wall -Wextra -Wconversion)
target_link_libraries(kirvo_sample PRIVATE kirvo_scene)

# The tool needs libraries of headers only; the library itself does without them.
foreach(header IN ITEMS CLI/CLI.hpp nlohmann/json.hpp)
    cmake_path(GET header PARENT_PATH folder)
    find_path(KIRVO_${folder}_INCLUDE ${header} HINTS /usr/include NO_CMAKE_FIND_ROOT_PATH)
endforeach()
if(NOT KIRVO_CLI_INCLUDE OR NOT KIRVO_nlohmann_INCLUDE)
    message(WARNING "The command line is not built: it needs libcli11-dev and nlohmann-json3-dev")
    return()
endif()

file(GLOB tool_sources CONFIGURE_DEPENDS tools/*.cpp)
if(tool_sources)
    # Links to their folders keep the rest of the system's headers away from the cross compilers.
    file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/include)
    foreach(folder IN ITEMS CLI nlohmann)
        file(CREATE_LINK ${KIRVO_${folder}_INCLUDE}/${folder} ${PROJECT_BINARY_DIR}/include/${folder}
             SYMBOLIC)
    endforeach()

    add_executable(kirvo_tool ${tool_sources})
    set_target_properties(kirvo_tool PROPERTIES OUTPUT_NAME kirvo)
    target_include_directories(kirvo_tool SYSTEM PRIVATE ${PROJECT_BINARY_DIR}/include)
    target_compile_options(kirvo_tool PRIVATE -Wall -Wextra)
    target_link_libraries(kirvo_tool PRIVATE kirvo)
    install(TARGETS kirvo_tool)
endif()
