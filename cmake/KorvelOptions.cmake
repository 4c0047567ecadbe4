# What all targets share: language level, warnings, sanitizers, and the function that adds a room.
option(KORVEL_TESTS "Build the tests" ON)
option(KORVEL_BENCH "Build the benchmarks" ON)
option(KORVEL_FUZZ "Build the fuzz targets, and everything for them (clang only)" OFF)
set(KORVEL_SANITIZE "" CACHE STRING "Value for -fsanitize=, empty for none")

option(KORVEL_PRECOMPILE "Precompile the headers that cost most: standard library, widgets, test framework" ON)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
# The control is a shared library made of the rooms, so all of them are position independent and hidden. Programs are
# compiled in the same way because they share precompiled headers.
if(NOT WIN32)
  add_compile_options(-fPIC)
endif()
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")

find_program(KORVEL_CCACHE ccache)
if(KORVEL_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # Paths are relative to the tree's root, so that clones share the cache. ccache reads the compiler's list of
  # dependencies instead of preprocessing each source again.
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CMAKE_COMMAND}" -E env "CCACHE_BASEDIR=${PROJECT_SOURCE_DIR}" CCACHE_NOHASHDIR=1
    CCACHE_DEPEND=1 CCACHE_SLOPPINESS=pch_defines,time_macros "${KORVEL_CCACHE}")
endif()

# mold links faster than the default linker. It does not support Windows.
include(CheckLinkerFlag)
check_linker_flag(CXX -fuse-ld=mold KORVEL_HAS_MOLD)
if(KORVEL_HAS_MOLD AND NOT WIN32)
  add_link_options(-fuse-ld=mold)
endif()

# Generated sources are not checked. clang-tidy takes the nearest file of this name, and refuses one without any check.
file(WRITE "${CMAKE_BINARY_DIR}/.clang-tidy" "Checks: '-*,misc-definitions-in-headers'\n")

add_library(korvel_flags INTERFACE)
target_compile_options(korvel_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Woverloaded-virtual -Werror
  # gcc 12 reports false overlaps, overflows and uninitialised members in inlined library code, depending on the level
  # of optimisation. clang, clang-tidy and the sanitizers find real ones.
  $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict;-Wno-array-bounds;-Wno-stringop-overflow;-Wno-stringop-overread;-Wno-maybe-uninitialized;-Wno-mismatched-new-delete>)
if(WIN32)
  # Files of more than 2 GB, and Qt's definitions for its users; in all sources, since precompiled headers need equal
  # definitions.
  add_compile_definitions(_FILE_OFFSET_BITS=64 MINGW_HAS_SECURE_API=1)
  # The package contains no paths of the machine that built it.
  add_compile_options(-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)
endif()
if(KORVEL_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all)
  add_link_options(-fsanitize=address,undefined)
endif()
if(KORVEL_SANITIZE)
  add_compile_options(-fsanitize=${KORVEL_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${KORVEL_SANITIZE})
endif()

# korvel_precompiled_headers(NAME [LINK libraries...] [OPTIONS options...] HEADERS headers...): headers that are
# compiled once for all targets that name them in korvel_precompiled(). gcc accepts them only with equal options.
function(korvel_precompiled_headers name)
  cmake_parse_arguments(PRE "" "" "LINK;OPTIONS;HEADERS" ${ARGN})
  if(NOT KORVEL_PRECOMPILE)
    return()
  endif()
  # A target needs a source.
  set(source "${CMAKE_BINARY_DIR}/precompiled_headers.cpp")
  file(CONFIGURE OUTPUT "${source}" CONTENT "namespace korvel {}\n" @ONLY)
  add_library(korvel_${name} OBJECT EXCLUDE_FROM_ALL "${source}")
  target_compile_options(korvel_${name} PRIVATE ${PRE_OPTIONS})
  target_link_libraries(korvel_${name} PRIVATE korvel_flags ${PRE_LINK})
  target_precompile_headers(korvel_${name} PRIVATE ${PRE_HEADERS})
endfunction()

# korvel_precompiled(TARGET NAME)
function(korvel_precompiled target name)
  if(KORVEL_PRECOMPILE)
    target_precompile_headers(${target} REUSE_FROM korvel_${name})
  endif()
endfunction()

set(KORVEL_STANDARD_HEADERS <algorithm> <array> <chrono> <filesystem> <functional> <map> <memory> <optional> <span>
  <stdexcept> <string> <string_view> <system_error> <utility> <vector>)
korvel_precompiled_headers(standard_headers HEADERS ${KORVEL_STANDARD_HEADERS})

# korvel_room(NAME SOURCES... [LINK ...]): one engine room as a static library, included as <room/file.h>.
function(korvel_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;LINK;PRIVATE_LINK" ${ARGN})
  add_library(korvel_${name} STATIC ${ROOM_SOURCES})
  target_include_directories(korvel_${name} PUBLIC "${PROJECT_SOURCE_DIR}")
  target_link_libraries(korvel_${name} PUBLIC ${ROOM_LINK} PRIVATE korvel_flags ${ROOM_PRIVATE_LINK})
  korvel_precompiled(korvel_${name} standard_headers)
endfunction()

# korvel_embed_text(TARGET FILE SYMBOL): makes the text of FILE available to TARGET as `extern const std::string_view
# SYMBOL` in namespace korvel::embedded, declared by the user of the text.
function(korvel_embed_text target file symbol)
  set(generated "${CMAKE_CURRENT_BINARY_DIR}/${symbol}.cpp")
  add_custom_command(
    OUTPUT "${generated}"
    COMMAND "${CMAKE_COMMAND}" -DINPUT=${CMAKE_CURRENT_SOURCE_DIR}/${file} -DOUTPUT=${generated} -DSYMBOL=${symbol}
            -P "${PROJECT_SOURCE_DIR}/cmake/EmbedText.cmake"
    DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${file}" "${PROJECT_SOURCE_DIR}/cmake/EmbedText.cmake"
    VERBATIM)
  target_sources(${target} PRIVATE "${generated}")
endfunction()
