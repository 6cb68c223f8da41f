# kirvo_exports(TARGET OBJECTS DEF...): what a shared library exports: the names of the module
# definitions, undecorated on every target. On Windows only the first counts; the others name stand-ins
# of Win32 functions.
function(kirvo_exports target objects def)
    if(WIN32)
        # In 32-bit objects a stdcall function is called _Name@bytes. The definition file made here
        # carries the decorated names; the linker and dlltool strip them (--kill-at), so that the DLL
        # exports `Name`, and the import library maps a caller's _Name@bytes to it.
        set(exports ${PROJECT_BINARY_DIR}/${target}_exports.def)
        add_custom_command(
            OUTPUT ${exports}
            COMMAND ${CMAKE_COMMAND}
                -D "DEF=${PROJECT_SOURCE_DIR}/${def}" -D "OUT=${exports}" -D "NM=${CMAKE_NM}"
                -D "OBJECTS=$<TARGET_OBJECTS:${objects}>"
                -P ${PROJECT_SOURCE_DIR}/cmake/decorate_exports.cmake
            DEPENDS ${def} cmake/decorate_exports.cmake $<TARGET_OBJECTS:${objects}>
            VERBATIM)
        target_sources(${target} PRIVATE ${exports})
        target_link_options(${target} PRIVATE -Wl,--kill-at)
        add_custom_command(
            TARGET ${target} POST_BUILD
            COMMAND ${CMAKE_DLLTOOL} --kill-at --input-def ${exports}
                    # Names alone: the library remembers what it is told here.
                    --temp-prefix ${target} --dllname $<TARGET_FILE_NAME:${target}>
                    --output-lib $<TARGET_LINKER_FILE_NAME:${target}>
            WORKING_DIRECTORY ${PROJECT_BINARY_DIR}
            VERBATIM)

        # The same in the form of Microsoft's linker.
        find_program(KIRVO_LLVM_DLLTOOL NAMES llvm-dlltool llvm-dlltool-14)
        if(KIRVO_LLVM_DLLTOOL)
            set(machine i386)
            if(CMAKE_SIZEOF_VOID_P EQUAL 8)
                set(machine i386:x86-64)
            endif()
            add_custom_command(
                TARGET ${target} POST_BUILD
                COMMAND ${KIRVO_LLVM_DLLTOOL} -k -m ${machine} -d ${exports}
                        -D $<TARGET_FILE_NAME:${target}>
                        -l ${PROJECT_BINARY_DIR}/$<TARGET_FILE_BASE_NAME:${target}>.lib
                VERBATIM)
        endif()
    else()
        # A linker script that names what is exported and hides the rest, template instances of the
        # standard library included.
        set(names)
        foreach(file IN ITEMS ${def} ${ARGN})
            set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
            file(STRINGS ${file} lines REGEX "^ *[A-Za-z0-9_]+ *$")
            list(APPEND names ${lines})
        endforeach()
        list(REMOVE_ITEM names EXPORTS)
        list(TRANSFORM names STRIP)
        list(JOIN names "; " names)
        set(map ${PROJECT_BINARY_DIR}/${target}_exports.map)
        file(CONFIGURE OUTPUT ${map} CONTENT "{ global: @names@; local: *; };\n" @ONLY)
        target_link_options(${target} PRIVATE -Wl,--version-script=${map})
        set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${map})
    endif()
endfunction()
