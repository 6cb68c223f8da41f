# What the reference's live pages run (docs/live): the command line's catalogue of effects and what
# writes its calls as code, upon the library, as one script that pages load from a disk too.

add_executable(kirvo_live docs/live/live.cpp ${KIRVO_CATALOGUE} ${KIRVO_CALLS}
                          $<TARGET_OBJECTS:kirvo_objects>)
target_include_directories(kirvo_live PRIVATE include tools)
target_compile_options(kirvo_live PRIVATE -Wall -Wextra -fexceptions ${KIRVO_RECORDED})
target_link_options(kirvo_live PRIVATE --no-entry -fexceptions -sALLOW_MEMORY_GROWTH
                    -sMAXIMUM_MEMORY=4GB -sSINGLE_FILE -sMODULARIZE -sEXPORT_NAME=KirvoLive
                    -sENVIRONMENT=web -sEXPORTED_RUNTIME_METHODS=ccall
                    -sEXPORTED_FUNCTIONS=_malloc,_free)
