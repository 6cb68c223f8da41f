# What `cmake --install` puts where, and the packages that CPack makes of it: a zip for Windows, a
# Debian package elsewhere. Nothing installed knows the folder that it lies in.

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

# Documents, in the places where README.md links to them; the reference when it has been built.
install(FILES README.md CHANGELOG.md SECURITY.md LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES docs/contact-sheet.jpg DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs)
install(DIRECTORY docs/guide DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs)
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

set(CPACK_PACKAGE_NAME kirvo)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "the Kirvo authors")
set(CPACK_PACKAGE_CONTACT "the Kirvo authors <kirvo@packages.invalid>")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
if(WIN32)
    math(EXPR bits "8 * ${CMAKE_SIZEOF_VOID_P}")
    set(CPACK_GENERATOR ZIP)
    set(CPACK_PACKAGE_FILE_NAME kirvo-${PROJECT_VERSION}-win${bits})
else()
    set(CPACK_GENERATOR DEB)
    set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
    set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/debian.cmake)
    set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
    set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
    set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "image processing on packed DIBs")
    set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Libraries, headers, CMake and pkg-config files, command line and documents of
Kirvo: BMP, Targa, icon and other files, a JPEG encoder and decoder, colour
reduction and some sixty image operations over one image model, the packed
DIB; and KirvoFiles, which opens and saves BMP, JPEG, PNG, TIFF, WebP, GIF,
Targa and icon files with their metadata. Every result is settled to the bit and the same as that of the library
for Windows.")
    set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/triggers)
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
endif()
include(CPack)
