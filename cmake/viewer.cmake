# The viewer KirvoView (viewer), for Windows: on the two libraries' public interfaces and the tool's
# catalogue of effects. What shows the calls as code knows no system, and is tested everywhere.

# The catalogue, whose calls of the library are noted.
add_library(kirvo_view_catalogue OBJECT EXCLUDE_FROM_ALL ${KIRVO_CATALOGUE})
target_compile_options(kirvo_view_catalogue PRIVATE ${KIRVO_RECORDED})
target_include_directories(kirvo_view_catalogue PRIVATE viewer tools)
target_link_libraries(kirvo_view_catalogue PRIVATE kirvo kirvo_files)
if(NOT WIN32)
    return()
endif()

# All but its beginning, which its tests have a beginning of their own for.
file(GLOB view_sources CONFIGURE_DEPENDS viewer/*.cpp)
list(FILTER view_sources EXCLUDE REGEX "/viewer/main\\.cpp$")
add_library(kirvo_view_parts OBJECT EXCLUDE_FROM_ALL ${view_sources} ${KIRVO_CALLS}
                                    tools/pictures/meaning.cpp tools/pictures/known.cpp)
target_link_libraries(kirvo_view_parts PUBLIC comctl32 comdlg32 shell32 shlwapi uxtheme)

add_executable(kirvo_view WIN32 viewer/main.cpp)
set_target_properties(kirvo_view PROPERTIES OUTPUT_NAME KirvoView)
target_link_options(kirvo_view PRIVATE -municode)
target_link_libraries(kirvo_view PRIVATE kirvo_view_parts kirvo_view_catalogue)
foreach(target IN ITEMS kirvo_view kirvo_view_parts)
    target_compile_definitions(${target} PRIVATE UNICODE _UNICODE)
endforeach()
foreach(target IN ITEMS kirvo_view kirvo_view_parts kirvo_view_catalogue)
    # Windows 7 and later; small before fast: what takes time happens in the libraries.
    target_compile_definitions(${target} PRIVATE _WIN32_WINNT=0x0601 NOMINMAX)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Os -fno-rtti
                                             -ffunction-sections -fdata-sections)
    target_include_directories(${target} PRIVATE viewer tools)
    target_link_libraries(${target} PRIVATE kirvo kirvo_files)
endforeach()
kirvo_program_resources(kirvo_view "Picture viewer" viewer/viewer.manifest)
install(TARGETS kirvo_view)
