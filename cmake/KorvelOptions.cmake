# Everything that every target of the tree shares: language level, warnings, sanitizers, and the helper that makes a room.
option(KORVEL_TESTS "Build the tests" ON)
option(KORVEL_BENCH "Build the benchmarks" ON)
option(KORVEL_FUZZ "Build the fuzz targets, and everything for them (clang only)" OFF)
set(KORVEL_SANITIZE "" CACHE STRING "Value for -fsanitize=, empty for none")

option(KORVEL_PRECOMPILE "Precompile the headers that cost most: test framework and widgets" ON)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
# The control is a shared library made of the rooms, so all of them are position independent and hidden.
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")

find_program(KORVEL_CCACHE ccache)
if(KORVEL_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${KORVEL_CCACHE}")
endif()

# Generated sources are nobody's to mend. clang-tidy takes the nearest file of this name, and refuses one without any check.
file(WRITE "${CMAKE_BINARY_DIR}/.clang-tidy" "Checks: '-*,misc-definitions-in-headers'\n")

add_library(korvel_flags INTERFACE)
target_compile_options(korvel_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Woverloaded-virtual -Werror
  # Inlined library code makes gcc 12 see overlaps, overflows and unset members that are not there, which ones depends on the
  # level of optimisation. clang, clang-tidy and the sanitizers find the real ones.
  $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict;-Wno-array-bounds;-Wno-stringop-overflow;-Wno-stringop-overread;-Wno-maybe-uninitialized;-Wno-mismatched-new-delete>)
if(WIN32)
  # What is packed names no folders of the machine that it was built on.
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

# korvel_precompile(TARGET HEADERS...): most of a build's time is spent in these headers.
function(korvel_precompile target)
  if(KORVEL_PRECOMPILE)
    target_precompile_headers(${target} PRIVATE ${ARGN})
  endif()
endfunction()

# korvel_room(NAME SOURCES... [LINK ...]): one engine room as a static library, included as <room/file.h>.
function(korvel_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;LINK;PRIVATE_LINK" ${ARGN})
  add_library(korvel_${name} STATIC ${ROOM_SOURCES})
  target_include_directories(korvel_${name} PUBLIC "${PROJECT_SOURCE_DIR}")
  target_link_libraries(korvel_${name} PUBLIC ${ROOM_LINK} PRIVATE korvel_flags ${ROOM_PRIVATE_LINK})
endfunction()

# korvel_embed_text(TARGET FILE SYMBOL): makes the text of FILE available to TARGET as `extern const std::string_view SYMBOL`
# in namespace korvel::embedded, declared by the user of the text.
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
