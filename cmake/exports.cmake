# What the shared library exports: the names of kirvo.def, undecorated on every target, and away
# from Windows the stand-ins of the Win32 functions beside them.

if(WIN32)
    # In 32-bit objects a stdcall function is called _Name@bytes. The definition file made here
    # carries the decorated names; the linker and dlltool strip them (--kill-at), so that the DLL
    # exports `Name`, and the import library maps a caller's _Name@bytes to it.
    set(exports ${PROJECT_BINARY_DIR}/exports.def)
    add_custom_command(
        OUTPUT ${exports}
        COMMAND ${CMAKE_COMMAND}
            -D "DEF=${PROJECT_SOURCE_DIR}/kirvo.def" -D "OUT=${exports}" -D "NM=${CMAKE_NM}"
            -D "OBJECTS=$<TARGET_OBJECTS:kirvo_objects>"
            -P ${CMAKE_CURRENT_LIST_DIR}/decorate_exports.cmake
        DEPENDS kirvo.def cmake/decorate_exports.cmake $<TARGET_OBJECTS:kirvo_objects>
        VERBATIM)
    target_sources(kirvo PRIVATE ${exports})
    target_link_options(kirvo PRIVATE -Wl,--kill-at)
    add_custom_command(
        TARGET kirvo POST_BUILD
        COMMAND ${CMAKE_DLLTOOL} --kill-at --input-def ${exports} --dllname $<TARGET_FILE_NAME:kirvo>
                --output-lib $<TARGET_LINKER_FILE:kirvo>
        VERBATIM)

    # The same in the form of Microsoft's linker.
    find_program(KIRVO_LLVM_DLLTOOL NAMES llvm-dlltool llvm-dlltool-14)
    if(KIRVO_LLVM_DLLTOOL)
        set(machine i386)
        if(CMAKE_SIZEOF_VOID_P EQUAL 8)
            set(machine i386:x86-64)
        endif()
        add_custom_command(
            TARGET kirvo POST_BUILD
            COMMAND ${KIRVO_LLVM_DLLTOOL} -k -m ${machine} -d ${exports} -D $<TARGET_FILE_NAME:kirvo>
                    -l ${PROJECT_BINARY_DIR}/Kirvo.lib
            VERBATIM)
    endif()
else()
    # A linker script that names what is exported and hides the rest, template instances of the
    # standard library included.
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
                 kirvo.def cmake/standins.def)
    file(STRINGS kirvo.def names REGEX "^ *[A-Za-z0-9_]+ *$")
    file(STRINGS cmake/standins.def standins REGEX "^ *[A-Za-z0-9_]+ *$")
    list(APPEND names ${standins})
    list(REMOVE_ITEM names EXPORTS)
    list(TRANSFORM names STRIP)
    list(JOIN names "; " names)
    file(CONFIGURE OUTPUT exports.map CONTENT "{ global: @names@; local: *; };\n" @ONLY)
    target_link_options(kirvo PRIVATE -Wl,--version-script=${PROJECT_BINARY_DIR}/exports.map)
    set_property(TARGET kirvo APPEND PROPERTY LINK_DEPENDS ${PROJECT_BINARY_DIR}/exports.map)
endif()
