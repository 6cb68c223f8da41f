# The command line `kirvo` (tools) and the generator of sample pictures (tools/sample).

add_library(kirvo_scene STATIC tools/sample/lettering.cpp tools/sample/noise.cpp
                               tools/sample/portrait.cpp tools/sample/scene.cpp)
target_include_directories(kirvo_scene PUBLIC tools/sample)
target_compile_options(kirvo_scene PRIVATE -Wall -Wextra -Wconversion)
add_executable(kirvo_sample tools/sample/main.cpp)
target_compile_options(kirvo_sample PRIVATE -Wall -Wextra -Wconversion)
target_link_libraries(kirvo_sample PRIVATE kirvo_scene)

# What Windows shows of a program, and its manifest; by default one that gives it names in UTF-8 of
# any length.
function(kirvo_program_resources target description)
    if(NOT WIN32)
        return()
    endif()
    get_target_property(name ${target} OUTPUT_NAME)
    set(KIRVO_MANIFEST ${PROJECT_SOURCE_DIR}/examples/program.manifest)
    if(ARGC GREATER 2)
        set(KIRVO_MANIFEST ${PROJECT_SOURCE_DIR}/${ARGV2})
    endif()
    configure_file(cmake/program.rc.in ${target}.rc @ONLY)
    target_sources(${target} PRIVATE ${PROJECT_BINARY_DIR}/${target}.rc)
    set_source_files_properties(${PROJECT_BINARY_DIR}/${target}.rc PROPERTIES
                                OBJECT_DEPENDS ${KIRVO_MANIFEST})
endfunction()

# The tool needs libraries of headers only; the library itself does without them.
foreach(header IN ITEMS CLI/CLI.hpp nlohmann/json.hpp)
    cmake_path(GET header PARENT_PATH folder)
    find_path(KIRVO_${folder}_INCLUDE ${header} HINTS /usr/include NO_CMAKE_FIND_ROOT_PATH)
endforeach()
if(NOT KIRVO_CLI_INCLUDE OR NOT KIRVO_nlohmann_INCLUDE)
    message(WARNING "The command line is not built: it needs libcli11-dev and nlohmann-json3-dev")
    return()
endif()

file(GLOB_RECURSE tool_sources CONFIGURE_DEPENDS tools/*.cpp)
list(FILTER tool_sources EXCLUDE REGEX "/tools/(calls|sample)/")
set(other_system win32)
if(WIN32)
    set(other_system posix)
endif()
list(FILTER tool_sources EXCLUDE REGEX "_${other_system}\\.cpp$")
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
    target_include_directories(kirvo_tool PRIVATE tools)
    target_compile_options(kirvo_tool PRIVATE -Wall -Wextra)
    # Each folder is compiled as one file: reading CLI11 for each of its files takes five times as long.
    # (g++ takes what is local to these files for that of a header.)
    set_target_properties(kirvo_tool PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
    target_compile_options(kirvo_tool PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
    foreach(source IN LISTS tool_sources)
        cmake_path(GET source PARENT_PATH folder)
        cmake_path(GET folder FILENAME folder)
        set_source_files_properties(${source} PROPERTIES UNITY_GROUP ${folder})
    endforeach()
    target_link_libraries(kirvo_tool PRIVATE kirvo kirvo_files)
    kirvo_program_resources(kirvo_tool "Kirvo's command line")
    # An installed tool finds the library beside it, wherever that is.
    set_target_properties(kirvo_tool PROPERTIES INSTALL_RPATH $ORIGIN/../${CMAKE_INSTALL_LIBDIR})
    install(TARGETS kirvo_tool)

    # The manual page and the completions, which the tool writes itself, under the names that
    # the shells look for.
    if(NOT CMAKE_CROSSCOMPILING)
        set(papers ${PROJECT_BINARY_DIR}/papers)
        file(MAKE_DIRECTORY ${papers})
        add_custom_command(
            OUTPUT ${papers}/kirvo.1 ${papers}/kirvo ${papers}/_kirvo ${papers}/kirvo.fish
            COMMAND kirvo_tool --man >${papers}/kirvo.1
            COMMAND kirvo_tool --completions bash >${papers}/kirvo
            COMMAND kirvo_tool --completions zsh >${papers}/_kirvo
            COMMAND kirvo_tool --completions fish >${papers}/kirvo.fish
            DEPENDS kirvo_tool)
        add_custom_target(kirvo_papers ALL DEPENDS ${papers}/kirvo.1)
        install(FILES ${papers}/kirvo.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
        install(FILES ${papers}/kirvo
                DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
        install(FILES ${papers}/_kirvo DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
        install(FILES ${papers}/kirvo.fish
                DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
    endif()
endif()
