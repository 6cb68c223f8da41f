# The viewer KirvoView (viewer), for Windows: on the two libraries' public interfaces and the tool's
# catalogue of effects.

if(NOT WIN32)
    return()
endif()

# The catalogue, whose calls of the library are noted.
add_library(kirvo_view_catalogue OBJECT ${KIRVO_CATALOGUE})
target_compile_options(kirvo_view_catalogue PRIVATE ${KIRVO_RECORDED})

file(GLOB view_sources CONFIGURE_DEPENDS viewer/*.cpp)
add_executable(kirvo_view WIN32 ${view_sources} ${KIRVO_CALLS} tools/pictures/meaning.cpp
                                tools/pictures/known.cpp)
set_target_properties(kirvo_view PROPERTIES OUTPUT_NAME KirvoView)
target_compile_definitions(kirvo_view PRIVATE UNICODE _UNICODE)
target_link_options(kirvo_view PRIVATE -municode)
target_link_libraries(kirvo_view PRIVATE kirvo_view_catalogue comctl32 comdlg32 shell32 shlwapi
                                         uxtheme)
foreach(target IN ITEMS kirvo_view kirvo_view_catalogue)
    # Windows 7 and later; small before fast: what takes time happens in the libraries.
    target_compile_definitions(${target} PRIVATE _WIN32_WINNT=0x0601 NOMINMAX)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Os -fno-rtti
                                             -ffunction-sections -fdata-sections)
    target_include_directories(${target} PRIVATE viewer tools)
    target_link_libraries(${target} PRIVATE kirvo kirvo_files)
endforeach()
kirvo_program_resources(kirvo_view "Picture viewer" viewer/viewer.manifest)
install(TARGETS kirvo_view)
