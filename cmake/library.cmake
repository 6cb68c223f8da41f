# The library: one object library (`kirvo_objects`, also linked by the tests of internals) and the
# shared library made from it (`kirvo`: libkirvo.so or Kirvo.dll).

file(GLOB_RECURSE kirvo_sources CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}
     src/*.cpp)
if(WIN32)
    list(FILTER kirvo_sources EXCLUDE REGEX "_posix\\.cpp$")
else()
    list(FILTER kirvo_sources EXCLUDE REGEX "_win32\\.cpp$")
endif()
if(EMSCRIPTEN)
    list(FILTER kirvo_sources EXCLUDE REGEX "/cpu_x86\\.cpp$|/level_(sse|avx)")
else()
    list(FILTER kirvo_sources EXCLUDE REGEX "_wasm\\.cpp$")
endif()

# The DLLs are kept small where that takes no time: in files that work once a call, at the speed of a
# disk, or whose rows go to the kernels. The 32-bit one is so by other means, too.
if(WIN32 AND CMAKE_SIZEOF_VOID_P EQUAL 4)
    set(kirvo_small_dll TRUE)
endif()
string(CONCAT kirvo_small_files "^src/(formats|platform)/|"
       "^src/image/(dib|duplicate|masks|palette|pixel_api|progress|rect_operation|window)\\.|"
       "^src/effects/compose/interleave\\.|^src/effects/filter/(blur|sharpen)\\.|"
       "^src/effects/geometry/(rotate|turn)\\.|^src/reduce/(palettes|reduction)\\.|"
       "^src/effects/tone/(gamma|hue|levels|point|range_filter)\\.|"
       "^src/jpeg/(de|en)code/(api|encoder|headers|info_api|markers|scan|settings|state)\\.")

# The names of the levels' files decide which instructions they may use.
foreach(source IN LISTS kirvo_sources)
    set(source_flags)
    if(source MATCHES "/level_avx2\\.cpp$")
        set(source_flags -mavx2)
    elseif(source MATCHES "/level_avx512\\.cpp$")
        # GCC 12 warns of its own AVX-512 headers.
        set(source_flags -mavx512f -mavx512bw -mavx512dq -mavx512vl -mavx512vbmi
                      -mavx512vpopcntdq -Wno-uninitialized
                      $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    endif()
    if(source_flags AND WIN32)
        # The 64-bit Windows stack is aligned to 16 bytes and GCC does not realign it for wider
        # spills; unaligned moves cost the same on aligned data.
        list(APPEND source_flags -Wa,-muse-unaligned-vector-move)
    endif()
    if(source MATCHES "/level_[a-z0-9]+\\.cpp$")
        # What is worth vectors has them; the rest of a row is short.
        list(APPEND source_flags -fno-tree-vectorize)
        if(NOT WIN32)
            # A loop across lines of the cache may take a quarter more. The DLL is kept small instead.
            list(APPEND source_flags -falign-loops=64)
        elseif(kirvo_small_dll)
            # Sums put together anew, or for their last use, fill the eight vectors of 32-bit code.
            list(APPEND source_flags -fno-tree-ter -fno-tree-reassoc)
        endif()
    endif()
    if(WIN32 AND source MATCHES "${kirvo_small_files}")
        list(APPEND source_flags -Os)
    endif()
    set_source_files_properties(${source} PROPERTIES COMPILE_OPTIONS "${source_flags}")
endforeach()

# 0x01000402 for 1.0.4.2
math(EXPR KIRVO_VERSION "${PROJECT_VERSION_MAJOR} << 24 | ${PROJECT_VERSION_MINOR} << 16 |
    ${PROJECT_VERSION_PATCH} << 8 | ${PROJECT_VERSION_TWEAK}" OUTPUT_FORMAT HEXADECIMAL)

add_library(kirvo_objects OBJECT ${kirvo_sources})
set_target_properties(kirvo_objects PROPERTIES POSITION_INDEPENDENT_CODE ON)
target_compile_definitions(kirvo_objects PUBLIC KIRVO_BUILDING)
target_include_directories(kirvo_objects PUBLIC include src)
target_compile_options(kirvo_objects PRIVATE
    -Wall -Wextra -Wconversion $<$<BOOL:${KIRVO_WERROR}>:-Werror>
    -fno-exceptions -fno-rtti -fno-threadsafe-statics -fno-math-errno
    -ftree-vectorize $<$<CXX_COMPILER_ID:GNU>:-fvect-cost-model=dynamic> -ffunction-sections)
if(NOT WIN32)
    # Windows objects would keep zeroed variables as data: file size for nothing.
    target_compile_options(kirvo_objects PRIVATE -fdata-sections)
endif()
if(kirvo_small_dll)
    # Nothing is thrown through the library, and 32-bit Windows does not unwind by tables.
    target_compile_options(kirvo_objects PRIVATE -fno-asynchronous-unwind-tables)
    # Where jumps lead need not lie evenly: one part in seventy of the DLL is padding for it.
    target_compile_options(kirvo_objects PRIVATE -falign-jumps=1 -falign-labels=1)
endif()
set(kirvo_system_libraries ${CMAKE_DL_LIBS})
if(WIN32)
    set(kirvo_system_libraries gdi32 comdlg32)
endif()
target_link_libraries(kirvo_objects PUBLIC ${kirvo_system_libraries})

set(KIRVO_LIBRARY_TYPE SHARED)
if(NOT BUILD_SHARED_LIBS AND NOT WIN32)
    set(KIRVO_LIBRARY_TYPE STATIC)
endif()
add_library(kirvo ${KIRVO_LIBRARY_TYPE} $<TARGET_OBJECTS:kirvo_objects>)
add_library(Kirvo::kirvo ALIAS kirvo) # the name that find_package(Kirvo) gives
target_include_directories(kirvo INTERFACE
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:include>)
target_link_libraries(kirvo PRIVATE ${kirvo_system_libraries})
include(${CMAKE_CURRENT_LIST_DIR}/exports.cmake)
if(KIRVO_LIBRARY_TYPE STREQUAL SHARED)
    kirvo_exports(kirvo kirvo_objects kirvo.def cmake/standins.def)
endif()

if(KIRVO_COVERAGE)
    target_compile_options(kirvo_objects PRIVATE -O1 --coverage)
    target_link_options(kirvo_objects INTERFACE --coverage)
    target_link_options(kirvo PRIVATE --coverage)
endif()

if(WIN32)
    enable_language(RC)
    set(library_name Kirvo)
    set(library_description ${PROJECT_DESCRIPTION})
    configure_file(cmake/version.rc.in version.rc @ONLY)
    target_sources(kirvo PRIVATE ${PROJECT_BINARY_DIR}/version.rc)
    set_target_properties(kirvo PROPERTIES OUTPUT_NAME Kirvo PREFIX "" IMPORT_PREFIX lib
                          ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
elseif(KIRVO_LIBRARY_TYPE STREQUAL SHARED)
    # One file under one name, as on Windows: a copy of it serves wherever it lies. A distribution's
    # are numbered.
    if(KIRVO_SONAMES)
        set(kirvo_numbers VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
        set_target_properties(kirvo PROPERTIES ${kirvo_numbers})
    endif()
    target_link_options(kirvo PRIVATE -Wl,--gc-sections -Wl,--as-needed -Wl,-Bsymbolic)
    if(NOT KIRVO_SANITIZE)
        target_link_options(kirvo PRIVATE -Wl,--no-undefined)
    endif()
endif()
