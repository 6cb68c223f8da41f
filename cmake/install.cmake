# What `cmake --install` puts where, and the zip for Windows that CPack makes of it. Nothing installed
# knows the folder that it lies in.

include(CMakePackageConfigHelpers)

install(TARGETS kirvo kirvo_files EXPORT Kirvo COMPONENT libraries)
install(FILES include/kirvo.h include/kirvo_files.h include/kirvo.hpp TYPE INCLUDE)
if(WIN32)
    install(FILES kirvo.def kirvo_files.def TYPE LIB)
    if(KIRVO_LLVM_DLLTOOL)
        install(FILES ${PROJECT_BINARY_DIR}/Kirvo.lib ${PROJECT_BINARY_DIR}/KirvoFiles.lib TYPE LIB)
    endif()
endif()

# For find_package(Kirvo) and pkg-config.
set(config_folder ${CMAKE_INSTALL_LIBDIR}/cmake/Kirvo)
install(EXPORT Kirvo NAMESPACE Kirvo:: FILE KirvoTargets.cmake DESTINATION ${config_folder})
configure_package_config_file(packaging/KirvoConfig.cmake.in KirvoConfig.cmake
                              INSTALL_DESTINATION ${config_folder}
                              PATH_VARS CMAKE_INSTALL_LIBDIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KirvoConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/KirvoConfig.cmake ${PROJECT_BINARY_DIR}/KirvoConfigVersion.cmake
        DESTINATION ${config_folder})

file(RELATIVE_PATH prefix_from_pkgconfig
     /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
get_target_property(library_name kirvo OUTPUT_NAME)
if(NOT library_name)
    set(library_name kirvo)
endif()
get_target_property(files_library_name kirvo_files OUTPUT_NAME)
configure_file(packaging/kirvo.pc.in kirvo.pc @ONLY)
configure_file(packaging/kirvofiles.pc.in kirvofiles.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kirvo.pc ${PROJECT_BINARY_DIR}/kirvofiles.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# Documents: a README of what is in the package, and what that links to; the reference and guide as
# pages when they have been built.
set(readme packaging/README.debian.md)
if(WIN32)
    set(readme packaging/README.windows.md)
endif()
install(FILES ${readme} DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME README.md)
install(FILES CHANGELOG.md SECURITY.md LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES docs/contact-sheet.jpg docs/SAFETY.md DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/build/docs/html DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs
        OPTIONAL)
install(DIRECTORY bindings examples DESTINATION ${CMAKE_INSTALL_DOCDIR}
        PATTERN __pycache__ EXCLUDE
        PATTERN javascript/*.js* EXCLUDE) # parts of a package of its own

# Builds what is installed.
add_custom_target(kirvo_installed DEPENDS kirvo kirvo_files)
foreach(target IN ITEMS kirvo_tool kirvo_papers kirvo_view)
    if(TARGET ${target})
        add_dependencies(kirvo_installed ${target})
    endif()
endforeach()

if(NOT WIN32)
    return() # debian/ makes packages of what is installed
endif()
math(EXPR bits "8 * ${CMAKE_SIZEOF_VOID_P}")
set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_NAME kirvo)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "the Kirvo authors")
set(CPACK_PACKAGE_FILE_NAME kirvo-${PROJECT_VERSION}-win${bits})
set(CPACK_VERBATIM_VARIABLES ON)
include(CPack)
