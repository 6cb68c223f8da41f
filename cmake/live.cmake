# What the reference's live pages run (docs/live): the command line's catalogue of effects and what
# writes its calls as code, upon the library, as one script that pages load from a disk too.

add_executable(kirvo_live docs/live/live.cpp ${KIRVO_CATALOGUE} ${KIRVO_CALLS}
                          $<TARGET_OBJECTS:kirvo_objects>)
target_include_directories(kirvo_live PRIVATE include tools)
# Without copies of memory in one instruction, variables of a thread are plain ones: there is one thread.
target_compile_options(kirvo_live PRIVATE -Wall -Wextra -fexceptions -mno-bulk-memory
                                          ${KIRVO_RECORDED})
target_link_options(kirvo_live PRIVATE --no-entry -fexceptions -sALLOW_MEMORY_GROWTH
                    -sMAXIMUM_MEMORY=4GB -sSINGLE_FILE -sMODULARIZE -sEXPORT_NAME=KirvoLive
                    -sENVIRONMENT=web -sEXPORTED_RUNTIME_METHODS=ccall
                    -sEXPORTED_FUNCTIONS=_malloc,_free)
# Debian keeps the modules of Emscripten's tools where they do not look.
set_target_properties(kirvo_live PROPERTIES
    RULE_LAUNCH_LINK "${CMAKE_COMMAND} -E env NODE_PATH=/usr/share/nodejs")
