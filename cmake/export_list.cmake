# The list of exports for tests and fuzzers, made when the build is configured: exports.inc, a line
# for each function. Targets that use it link with kirvo_export_list.
include_guard()
find_package(Python3 REQUIRED COMPONENTS Interpreter)
set(export_lister ${PROJECT_SOURCE_DIR}/tests/support/list_exports.py)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
             include/kirvo.h interface/kirvo.txt interface/description.py interface/header.py
             ${export_lister})
execute_process(
    COMMAND ${Python3_EXECUTABLE} ${export_lister} ${PROJECT_BINARY_DIR}/generated/exports.inc
    COMMAND_ERROR_IS_FATAL ANY)
add_library(kirvo_export_list INTERFACE)
target_include_directories(kirvo_export_list INTERFACE ${PROJECT_BINARY_DIR}/generated)
