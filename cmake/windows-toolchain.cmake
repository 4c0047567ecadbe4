# Debian's compiler for Windows, with the threads of C++ (the -posix variant): for 64 bits, unless windows32-toolchain.cmake
# has named another processor and its options.
if(NOT DEFINED KORVEL_WINDOWS_PROCESSOR)
  set(KORVEL_WINDOWS_PROCESSOR x86_64)
  set(KORVEL_WINDOWS_FLAGS "")
endif()
set(windows_triplet "${KORVEL_WINDOWS_PROCESSOR}-w64-mingw32")
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR "${KORVEL_WINDOWS_PROCESSOR}")
set(CMAKE_C_COMPILER "${windows_triplet}-gcc-posix")
set(CMAKE_CXX_COMPILER "${windows_triplet}-g++-posix")
set(CMAKE_RC_COMPILER "${windows_triplet}-windres")
set(CMAKE_C_FLAGS_INIT "${KORVEL_WINDOWS_FLAGS}")
set(CMAKE_CXX_FLAGS_INIT "${KORVEL_WINDOWS_FLAGS}")

# Headers, libraries and packages of Debian itself are for another system: only what was built for Windows may be found.
set(CMAKE_FIND_ROOT_PATH "/usr/${windows_triplet}" "$ENV{KORVEL_WINDOWS_LIBRARIES}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Programs for Windows run on a Windows of the build's own.
set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/../scripts/windows/wine")
